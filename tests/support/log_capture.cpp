#include "tests/support/log_capture.h"

#include <cstring>
#include <optional>
#include <regex>
#include <sstream>
#include <string_view>

#include "util/expect.h"

namespace zem::test {
namespace {

std::string_view all_destinations() {
  return {&ZEMAD_module_debugfile[0][0][0], sizeof ZEMAD_module_debugfile};
}

struct Message {
  std::string severity;
  std::string module;
  int number;
  std::string text;
};

/// Nothing when the line has no header.
std::optional<Message> parse(const std::string& line) {
  static const std::regex header(
      "^.{24} +([A-Z]+): ([A-Z]+) *, err (-?[0-9]+), .{16} line -?[0-9]+: (.*)$");
  std::smatch parts;
  if (!std::regex_match(line, parts, header)) return std::nullopt;
  return Message{parts[1], parts[2], std::stoi(parts[3]), parts[4]};
}

template <class Show>
std::vector<std::string> shown(const std::string& log, Show show) {
  std::vector<std::string> result;
  std::istringstream in(log);
  for (std::string line; std::getline(in, line);) {
    const auto message = parse(line);
    result.push_back(message ? show(*message) : line);
  }
  return result;
}

}  // namespace

LogCapture::LogCapture()
    : path_(dir_ / "log"),
      previous_destinations_(all_destinations()),
      previous_errno_(zemad_errno) {
  util::expect(path_.size() < sizeof ZEMAD_module_debugfile[0][0], "the log's path fits");
  std::memset(ZEMAD_module_debugfile, 0, sizeof ZEMAD_module_debugfile);
  log::note_destinations();
  zemad_errno = 0;
}

LogCapture::LogCapture(log::Module module) : LogCapture() {
  listen(module, {log::kMinor, log::kMajor, log::kFatal, log::kLow});
}

LogCapture::~LogCapture() {
  previous_destinations_.copy(&ZEMAD_module_debugfile[0][0][0], sizeof ZEMAD_module_debugfile);
  log::note_destinations();
  zemad_errno = previous_errno_;
}

LogCapture& LogCapture::listen(log::Module module,
                               std::initializer_list<log::Severity> severities) {
  for (const log::Severity severity : severities) {
    char* slot = ZEMAD_module_debugfile[module][severity];
    slot[path_.copy(slot, path_.size())] = '\0';
  }
  log::note_destinations();
  return *this;
}

std::vector<std::string> LogCapture::lines() const {
  return shown(raw(), [](const Message& message) {
    return message.severity + " " + message.module + " " + std::to_string(message.number) + " " +
           message.text;
  });
}

std::vector<std::string> LogCapture::texts() const {
  return shown(raw(), [](const Message& message) { return message.text; });
}

std::string LogCapture::raw() const { return read_file(path_); }

void LogCapture::clear() { std::filesystem::remove(path_); }

}  // namespace zem::test
