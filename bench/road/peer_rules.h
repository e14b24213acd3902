/// The rules of a workload in the languages of other engines: what script/bench --peers compares
/// with. Each rule takes the same words as its FORMAT and gives them the same names, so that every
/// engine has the same fields to find; a rule bears the name of its FORMAT.
#pragma once

#include <string>
#include <vector>

namespace zem::bench {

/// `format_lines` as Workload::format_lines gives them: the general FORMAT, called Base, then
/// Event_1 and so on.
///
/// A rulebase of liblognorm (version 2), for lognormalizer and rsyslog's mmnormalize. It is matched
/// against the whole message.
[[nodiscard]] std::string lognorm_rulebase(const std::vector<std::string>& format_lines);

/// A pattern database of syslog-ng. Its own parser takes time stamp, host, program and process
/// number off the message, and a rule set for each program matches the rest, as its manual advises.
[[nodiscard]] std::string pattern_database(const std::vector<std::string>& format_lines);

}  // namespace zem::bench
