/// Format sets from texts: reads format-file text the way the daemon does, and hands the set's own
/// texts back as strings. Link zem_format_test_support.
#pragma once

#include <string>
#include <string_view>

#include "adapters/logfile/common/LogDriver.h"
#include "util/unique_fd.h"

namespace zem::test {

/// The two entries of the manual's example.
inline constexpr std::string_view kMailFormats =
    R"(/* messages of the mail daemon */
FORMAT Mail_Base
%t %s %s[%s]: %s*
date $1
hostname $2
sub_source $3
pid $4
msg $5
severity DEFAULT
END

// a more particular message
FORMAT Mail_Refused FOLLOWS Mail_Base
%t %s %s[%s]: refused connect from %s
origin $5
msg PRINTF("refused connect from %s", origin)
severity WARNING
END
)";

/// A set in file order, read with a clear `status`; reports go to whoever `efcn` and `wfcn` name.
class FormatSet : public LogDriver {
 public:
  explicit FormatSet(std::string_view text, std::string_view unmatched_log_path = {});

  [[nodiscard]] int result() const { return result_; }  ///< what ReadFmt returned
  [[nodiscard]] std::string names() const;              ///< in list order, one blank between them
  [[nodiscard]] std::string cds() const;
  [[nodiscard]] std::string fmt_text();

 private:
  [[nodiscard]] std::string path() const;

  util::UniqueFd file_;  ///< in memory; takes the text to read, then what the set writes
  int result_ = 0;
};

}  // namespace zem::test
