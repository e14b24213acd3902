/// The command line, and the places it leads to: program name, configuration file, configuration
/// directory. Nothing here touches the process; main carries the outcome out.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "util/result.h"

namespace zem::frame {

struct CommandLine {
  std::string program;            ///< argument 0 as it stands; empty when there is none
  std::string config_file;        ///< of -c; empty when not given
  bool foreground = false;        ///< -d or -n
  bool debug = false;             ///< -d
  bool keep_descriptors = false;  ///< -n
};

/// Nothing when an argument is not understood: the caller prints `usage_text` and leaves. Only the
/// first letter behind the "-" counts. A later -c replaces an earlier one; a -c without a file
/// behind it is ignored.
[[nodiscard]] std::optional<CommandLine> read_command_line(std::span<char* const> arguments);
[[nodiscard]] std::string usage_text(const std::string& program);

struct Places {
  std::string program_name;  ///< argument 0 without its directories
  std::string file;          ///< the sender configuration
  std::string directory;     ///< of the other configuration files
  std::string notice;        ///< for standard output; often empty
};

/// `home` is the value of ZEMADHOME, null when it is not set; an empty one counts as set.
[[nodiscard]] Places find_places(const CommandLine& line, const char* home);

/// Publishes the places in ZEMAD_ProgramName, ZEMAD_GlobalConfigFile and ZEMAD_GlobalConfigDir. A
/// text that does not fit is never cut: the error names it, with ENAMETOOLONG.
[[nodiscard]] util::Status publish(const Places& places);

}  // namespace zem::frame
