// Runs a fuzz target over the files and directories named on the command line, so that seeds and
// past findings are ordinary tests, in every build.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);  // names the culprit when the target aborts
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  int inputs = 0;
  for (const std::string& path : std::vector<std::string>(argv + 1, argv + argc)) {
    if (!std::filesystem::is_directory(path)) {
      replay(path);
      ++inputs;
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      if (!entry.is_regular_file()) continue;
      replay(entry.path());
      ++inputs;
    }
  }
  std::printf("%d inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
