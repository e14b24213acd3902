#include "adapters/libzemad/command_line.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "adapters/libzemad/frame.h"
#include "util/text.h"

namespace zem::frame {
namespace {

constexpr const char* kBuiltInHome = "/etc/Korvane/zemad";

/// Takes the argument at `at`, and the one behind it where the option wants one; false when the
/// option is unknown.
bool take_option(std::span<char* const> arguments, std::size_t& at, CommandLine& line) {
  switch (arguments[at][1]) {
    case 'c':
      if (at + 1 < arguments.size()) line.config_file = arguments[++at];
      return true;
    case 'd':
      line.foreground = line.debug = true;
      return true;
    case 'n':
      line.foreground = line.keep_descriptors = true;
      return true;
    default:
      return false;
  }
}

std::string text_behind_last_slash(const std::string& path) {
  return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

Places places_of_file(const std::string& file) {
  const std::size_t slash = file.rfind('/');
  if (slash == std::string::npos)
    return {{}, file, ".", "No path given for the global configfile, using .\n"};
  return {{}, file, file.substr(0, slash), {}};
}

Places places_below(const std::string& home, const std::string& program_name) {
  const std::string directory = home + "/etc";
  return {{}, directory + "/" + program_name + ".conf", directory, {}};
}

Places places_without_name(const CommandLine& line, const std::string& program_name,
                           const char* home) {
  if (!line.config_file.empty()) return places_of_file(line.config_file);
  if (home != nullptr) return places_below(home, program_name);
  Places built_in = places_below(kBuiltInHome, program_name);
  built_in.notice = "ZEMADHOME environment variable not defined, using /etc/Korvane/zemad\n";
  return built_in;
}

util::Status copy_whole(const std::string& text, std::span<char> place, const char* what) {
  if (text.size() >= place.size())
    return util::Error{
        util::format_text("%s: at most %zu bytes are allowed in", what, place.size() - 1), text,
        ENAMETOOLONG};
  *std::ranges::copy(text, place.begin()).out = '\0';
  return {};
}

}  // namespace

std::optional<CommandLine> read_command_line(std::span<char* const> arguments) {
  CommandLine line;
  if (!arguments.empty()) line.program = arguments[0];
  for (std::size_t at = 1; at < arguments.size(); ++at) {
    if (arguments[at][0] != '-' || !take_option(arguments, at, line)) return std::nullopt;
  }
  return line;
}

std::string usage_text(const std::string& program) {
  return "Usage : " + program + " [-d] [-n] [-c configfile]\n";
}

Places find_places(const CommandLine& line, const char* home) {
  const std::string program_name = text_behind_last_slash(line.program);
  Places places = places_without_name(line, program_name, home);
  places.program_name = program_name;
  return places;
}

util::Status publish(const Places& places) {
  if (auto copied = copy_whole(places.program_name, ZEMAD_ProgramName, "program name");
      !copied.ok())
    return copied;
  if (auto copied = copy_whole(places.file, ZEMAD_GlobalConfigFile, "configuration file");
      !copied.ok())
    return copied;
  return copy_whole(places.directory, ZEMAD_GlobalConfigDir, "configuration directory");
}

}  // namespace zem::frame
