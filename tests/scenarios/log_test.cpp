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
  expect_in_order(
      read_file(home_ / "dump"),
      {"KEYWORDS TABLE\n--------------\n\nKEYWORD[0]\n", "ATTRIBUTES LIST\n---------------\n\n",
       "_event_id", "msg", "\nZEMAD_DefaultMapList\n-------------------\n\n", "source",
       "\nZEMAD_ConfigurationList\n-----------------------\n\n", "Line",
       "\nZEMAD_ConstantList\n------------------\n\n", "one"});
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
