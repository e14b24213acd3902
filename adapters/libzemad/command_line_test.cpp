#include "adapters/libzemad/command_line.h"

#include <cerrno>
#include <string>
#include <vector>

#include "adapters/libzemad/frame.h"
#include "tests/support/table.h"

namespace zem::frame {
namespace {

constexpr const char* kNotSet = nullptr;

std::optional<CommandLine> read(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  pointers.reserve(arguments.size());
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  return read_command_line(pointers);
}

/// "daemon debug keep file", or "usage".
std::string dump(const std::optional<CommandLine>& line) {
  if (!line.has_value()) return "usage";
  return std::string(line->foreground ? "foreground" : "background") +
         (line->debug ? " debug" : "") + (line->keep_descriptors ? " keep" : "") +
         (line->config_file.empty() ? "" : " " + line->config_file);
}

struct ArgumentCase {
  const char* name;
  std::vector<std::string> arguments;
  const char* outcome;
};

class Arguments : public testing::TestWithParam<ArgumentCase> {};

TEST_P(Arguments, AreReadLeftToRight) {
  EXPECT_EQ(dump(read(GetParam().arguments)), GetParam().outcome);
}

const ArgumentCase kArgumentCases[] = {
    {"None", {"prog"}, "background"},
    {"NotEvenAProgram", {}, "background"},
    {"Debug", {"prog", "-d"}, "foreground debug"},
    {"Foreground", {"prog", "-n"}, "foreground keep"},
    {"OnlyTheFirstLetterCounts", {"prog", "-dn"}, "foreground debug"},
    {"File", {"prog", "-c", "/a/x.conf"}, "background /a/x.conf"},
    {"TheLastFileWins", {"prog", "-c", "/a", "-n", "-c", "/b"}, "foreground keep /b"},
    {"AFileMayBeginWithADash", {"prog", "-c", "-d"}, "background -d"},
    {"AFileOptionWithoutFileIsIgnored", {"prog", "-d", "-c"}, "foreground debug"},
    {"AWordIsRefused", {"prog", "file"}, "usage"},
    {"AnUnknownLetterIsRefused", {"prog", "-n", "-x"}, "usage"},
    {"ALoneDashIsRefused", {"prog", "-"}, "usage"},
    {"AnEmptyArgumentIsRefused", {"prog", ""}, "usage"},
};
INSTANTIATE_TEST_SUITE_P(CommandLine, Arguments, testing::ValuesIn(kArgumentCases), test::kRowName);

struct PlaceCase {
  const char* name;
  const char* program;
  const char* file;
  const char* home;
  const char* places;  ///< program name|file|directory
};

class ConfigurationPlaces : public testing::TestWithParam<PlaceCase> {};

TEST_P(ConfigurationPlaces, FollowFromArgumentsAndEnvironment) {
  const auto& [name, program, file, home, expected] = GetParam();
  const Places places = find_places({.program = program, .config_file = file}, home);
  EXPECT_EQ(places.program_name + "|" + places.file + "|" + places.directory, expected);
}

const PlaceCase kPlaceCases[] = {
    {"AFileNamesItsDirectory", "/usr/bin/prog", "/a/b/x.conf", "/h", "prog|/a/b/x.conf|/a/b"},
    {"AFileInTheRootHasAnEmptyDirectory", "prog", "/x.conf", kNotSet, "prog|/x.conf|"},
    {"AFileWithoutDirectoryIsHere", "prog", "x.conf", kNotSet, "prog|x.conf|."},
    {"TheEnvironmentNamesTheHome", "./prog", "", "/h", "prog|/h/etc/prog.conf|/h/etc"},
    {"AnEmptyHomeCountsAsSet", "prog", "", "", "prog|/etc/prog.conf|/etc"},
    {"WithoutHomeTheBuiltInOne", "prog", "", kNotSet,
     "prog|/etc/Korvane/zemad/etc/prog.conf|/etc/Korvane/zemad/etc"},
};
INSTANTIATE_TEST_SUITE_P(CommandLine, ConfigurationPlaces, testing::ValuesIn(kPlaceCases),
                         test::kRowName);

TEST(CommandLine, PlacesThatDoNotFitAreNamedAndNeverCut) {
  const std::string fits(1023, 'x');
  EXPECT_TRUE(publish({"prog", fits, ".", ""}).ok());
  EXPECT_EQ(ZEMAD_GlobalConfigFile, fits);

  const util::Status refused = publish({"prog", fits + "y", ".", ""});
  ASSERT_FALSE(refused.ok());
  EXPECT_EQ(refused.error().text(), "configuration file: at most 1023 bytes are allowed in " +
                                        fits + "y: File name too long");
  EXPECT_EQ(refused.error().code, ENAMETOOLONG);
}

}  // namespace
}  // namespace zem::frame
