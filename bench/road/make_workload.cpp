/// Writes a workload into a directory:
///
///   make_workload DIRECTORY FORMATS MESSAGES SEED
///
/// zemad_logfile.fmt, the FORMATs; messages, all FORMATs equally frequent; and the same rules for
/// other engines: rules.rulebase (liblognorm) and rules.xml (syslog-ng). The same arguments give
/// the same files. script/bench runs it.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/road/peer_rules.h"
#include "bench/workload.h"

namespace {

using zem::bench::Workload;

std::uint32_t number(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value == 0) {
    throw std::invalid_argument("no number: " + std::string(text));
  }
  return value;
}

void write(const std::string& path, std::string_view text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("can not write " + path);
}

void make(const std::string& directory, Workload& workload, std::size_t messages) {
  const auto lines = workload.format_lines();
  write(directory + "/zemad_logfile.fmt", workload.format_file());
  write(directory + "/rules.rulebase", zem::bench::lognorm_rulebase(lines));
  write(directory + "/rules.xml", zem::bench::pattern_database(lines));
  std::string text;
  for (const std::string& message : workload.messages(messages, zem::bench::Mix::kUniform)) {
    text += message;
  }
  write(directory + "/messages", text);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 5) {
      throw std::invalid_argument("usage: make_workload DIRECTORY FORMATS MESSAGES SEED");
    }
    Workload workload(number(argv[2]), number(argv[4]));
    make(argv[1], workload, number(argv[3]));
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_workload: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
