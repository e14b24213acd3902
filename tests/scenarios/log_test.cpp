// The debug dump and the error description file, seen from outside.
#include "tests/scenarios/scenario.h"

namespace zem::test {
namespace {

using testing::HasSubstr;

class Log : public Scenario {};

TEST_F(Log, KernelDumpShowsTheEventAndTheLists) {
  home_.rewrite(home_.cds_path(),
                "CLASS Line\n  SELECT\n    1: ATTR(=,\"msg\"), VALUE(=,\"one\");\n"
                "  MAP\n    msg = $V1;\nEND\n"
                "MAP_DEFAULT\n    source = LOG;\nEND\n");
  home_.rewrite(home_.err_path(),
                read_file(home_.err_path()) + "KERNEL NORMAL " + home_ / "dump" + "\n");
  start();
  home_.log("one\n");
  (void)events_after(1);
  const std::string dump = read_file(home_ / "dump");
  std::size_t at = 0;
  for (const char* part :
       {"KEYWORDS TABLE\n--------------\n\nKEYWORD[0]\n", "ATTRIBUTES LIST\n---------------\n\n",
        "_event_id", "msg", "\nZEMAD_DefaultMapList\n-------------------\n\n", "source",
        "\nZEMAD_ConfigurationList\n-----------------------\n\n", "Line",
        "\nZEMAD_ConstantList\n------------------\n\n", "one"}) {
    at = dump.find(part, at);
    ASSERT_NE(at, dump.npos) << part << " is missing or out of order in\n" << dump;
  }
}

TEST_F(Log, AnUnknownSeverityLandsInTheNextModulesDump) {
  home_.rewrite(home_.err_path(),
                read_file(home_.err_path()) + "PARSER BOGUS " + home_ / "dump" + "\n");
  start();
  home_.log("one\n");
  (void)events_after(1);
  EXPECT_THAT(read_file(home_ / "dump"), HasSubstr("KEYWORDS TABLE\n"));
}

}  // namespace
}  // namespace zem::test
