#include "adapters/logfile/common/LogDriver.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/format_report.h"
#include "tests/support/format_set.h"
#include "tests/support/report_capture.h"
#include "tests/support/temp_dir.h"
#include "util/text.h"

namespace zem::test {
namespace {

/// What `bind` makes of a message: "index name", or "-1" without a match.
std::string bound(LogDriver& set, const char* message) {
  int index = 99;
  const FormatSpec* spec = set.bind(message, index);
  std::string dumped = std::to_string(index);
  if (spec != nullptr) dumped.append(" ").append(spec->name());
  return dumped;
}

FormatSpec* new_spec(const char* name, const char* format) {
  FormatSpec* spec = format::make_counted<FormatSpec>(name);
  spec->setFmtStr(format);
  return spec;
}

FormatSpec* with_slot(FormatSpec* spec, const char* name, MapKind kind, const char* rule) {
  MsgMapEntry* slot = MsgMapEntry::create(spec, name, kind);
  slot->addRule(rule, spec);
  spec->addSlot(slot);
  return spec;
}

TEST(LogDriver, LaterFormatIsTriedFirstAndIndexIsThePositionInTheFile) {
  FormatSet set("FORMAT a\n%s*\nEND\nFORMAT b\nx %s\nEND\nFORMAT c\nx y\nEND\n");
  set.orderFmts();
  EXPECT_EQ(set.names(), "c b a");
  EXPECT_EQ(bound(set, "x y\n"), "2 c");
  EXPECT_EQ(bound(set, "x z\n"), "1 b");
  EXPECT_EQ(bound(set, "y"), "0 a");
}

TEST(LogDriver, ChangeOfTheSetEndsTheValuesOfTheLastMatch) {
  FormatSet set("FORMAT a\n%s\nv $1\nEND\n");
  FormatSpec* spec = set.getFormatSpec("a");
  EXPECT_EQ(bound(set, "x"), "0 a");
  EXPECT_TRUE(spec->getmap("v")->svalue(spec) == "x");
  set.addFormatSpec(new_spec("b", "y"));
  EXPECT_TRUE(spec->getmap("v")->svalue(spec) == "");
}

TEST(LogDriver, OrderingWarnsOfVariablesFromTheLastFormatOn) {
  const ReportCapture reports;
  FormatSet set("FORMAT a\n%s\nEND\nFORMAT b\n%s\nx $1\n-y $1\nEND\n");
  set.orderFmts();
  EXPECT_EQ(reports.text(),
            "W in b $1 is used by more than one map\nW a does not map $1 in format string\n");
  EXPECT_EQ(status, 0);
}

TEST(LogDriver, UnmatchedMessagesAreLoggedOnceWithOneNewline) {
  const TempDir dir;
  const std::string path = dir.write("unmatched", "kept\n");
  FormatSet set("FORMAT a\nx\nEND\n", path);
  for (const char* message : {"y\n", "z", "x", "", "\n"}) bound(set, message);
  int index = 0;
  EXPECT_EQ(set.bind(std::string_view("v\0x\n", 4), index), nullptr) << "ends at its NUL";
  EXPECT_EQ(read_file(path), "kept\ny\nz\n\n\nv\n");
}

TEST(LogDriver, WorksWithoutAnUnmatchedLogThatCannotBeOpened) {
  const TempDir dir;
  const ReportCapture reports;  // puts the reporters back that the set points elsewhere
  EXPECT_EQ(FormatSet("", "/nowhere/unmatched").result(), 0);
  EXPECT_EQ(reports.text(), "E cannot open file `/nowhere/unmatched'\n");
  LogDriver set(dir.write("formats", "FORMAT a\nx\nEND\n").c_str(), "/nowhere/unmatched", 1);
  EXPECT_EQ(efcn, logfile_error);
  EXPECT_EQ(wfcn, logfile_warning);
  EXPECT_EQ(bound(set, "y"), "-1");
  EXPECT_EQ(bound(set, "x"), "0 a");
}

TEST(LogDriver, FaultyFormatFileEndsTheProcessOnlyWhenAsked) {
  const TempDir dir;
  const std::string path = dir.write("formats", "FORMAT a\nx\nEND\nx\n");
  const ReportCapture reports;
  EXPECT_EXIT(LogDriver(path.c_str(), nullptr, 1), testing::ExitedWithCode(1), "");
  const LogDriver set(path.c_str(), nullptr, 0);
  EXPECT_NE(set.getFormatSpec("a"), nullptr);
  status = 0;
}

TEST(LogDriver, FirstFormatOfANameIsTheOneThatIsFound) {
  FormatSet set("FORMAT a\nx\ns 1\nEND\nFORMAT a\ny\ns 2\nEND\nFORMAT b FOLLOWS a\nz\nEND\n");
  const FormatSpec* first = set.specs()[0];
  const FormatSpec* second = set.specs()[1];
  EXPECT_EQ(set.getFormatSpec("a"), first);
  EXPECT_EQ(set.getFormatSpec("b")->parent(), first);
  set.orderFmts();
  EXPECT_EQ(set.getFormatSpec("a"), second);
  EXPECT_EQ(bound(set, "x"), "0 a");
  set.removeFormatSpec("a");
  EXPECT_EQ(set.getFormatSpec("a"), first);
  set.removeFormatSpec("a");
  EXPECT_EQ(set.getFormatSpec("a"), nullptr);
  EXPECT_EQ(set.getFormatSpec("A"), nullptr);
  set.removeFormatSpec("a");
  EXPECT_EQ(set.names(), "b");
}

TEST(LogDriver, EditedFormatOfANewNameIsTriedFirst) {
  FormatSet set("FORMAT a\n%s\nEND\n");
  FormatSpec* added = new_spec("b", "%s");
  set.editorAdd(added);
  EXPECT_EQ(set.names(), "b a");
  EXPECT_EQ(set.getFormatSpec("b"), added);
  set.editorAdd(added);
  EXPECT_EQ(set.names(), "b a");
}

TEST(LogDriver, EditedFormatTakesPlaceSlotsAndParentOfTheOld) {
  FormatSet set(
      "FORMAT p\nx\ninherited 1\nEND\nFORMAT a FOLLOWS p\nx\nown 2\nEND\nFORMAT b\nx\nEND\n");
  FormatSpec* old = set.getFormatSpec("a");
  FormatSpec* edited = new_spec("a", "y %s");
  edited->copySlots(old);
  with_slot(edited, "more", kMapVariable, "$1");
  set.editorAdd(edited);
  EXPECT_EQ(set.getFormatSpec("a"), edited);
  EXPECT_EQ(set.names(), "p a b");
  EXPECT_EQ(set.fmt_text(),
            "FORMAT p\nx\ninherited \"1\"\nEND\n\n"
            "FORMAT a FOLLOWS p\ny %s\nown \"2\"\nmore $1\nEND\n\nFORMAT b\nx\nEND\n\n");
}

TEST(LogDriver, FormatWhoseParentIsGoneIsWrittenWithAllItsSlots) {
  FormatSet set("FORMAT p\n%s\ns $1\nt 1\nEND\nFORMAT a FOLLOWS p\n%s\nt 2\nEND\n");
  set.removeFormatSpec("p");
  EXPECT_EQ(set.fmt_text(), "FORMAT a\n%s\ns $1\nt \"2\"\nEND\n\n");
}

TEST(LogDriver, ClassesWithoutMappedOrSelectedSlots) {
  const FormatSet set("FORMAT none\nx\nEND\nFORMAT unmapped\n%s\n-s $1\n-t 2\nEND\n");
  EXPECT_EQ(set.cds(),
            "CLASS none\n  SELECT\n    1: ATTR(=,\"_event_id\"), VALUE(=,\"0\");\nEND\n"
            "CLASS unmapped\n  SELECT\n    1: ATTR(=,\"_event_id\"), VALUE(=,\"1\");\n"
            "    2: ATTR(=,\"s\");\n  MAP\nEND\n");
}

TEST(LogDriver, SlotThatCannotBeMappedIsKnownBeforeItEndsTheProcess) {
  FormatSet set("FORMAT a\nx\ns 1\nt PRINTF(\"%s\", s)\nu PRINTF(\"%s\", v)\nEND\n");
  EXPECT_STREQ(set.unresolvedSlot()->name(), "u");
  EXPECT_EXIT(static_cast<void>(set.cds()), testing::ExitedWithCode(1),
              "Could not find value for 'v'");
  EXPECT_EQ(set.fmt_text(),
            "FORMAT a\nx\ns \"1\"\nt PRINTF(\"%s\", s)\nu PRINTF(\"%s\",  !!!! )\nEND\n\n");
  EXPECT_EQ(FormatSet(kMailFormats).unresolvedSlot(), nullptr);
}

TEST(LogDriver, OutputThatCannotBeOpenedIsRefused) {
  FormatSet set(kMailFormats);
  EXPECT_EQ(set.write_cds("/nowhere/cds"), 0);
  EXPECT_EQ(set.write_fmt("/nowhere/fmt"), 0);
}

TEST(LogDriver, WritesToStandardOutputWithoutAPath) {
  FormatSet set("FORMAT a\nx\nEND\n");
  testing::internal::CaptureStdout();
  EXPECT_EQ(set.write_fmt(nullptr), 1);
  EXPECT_EQ(set.write_cds(nullptr), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), set.fmt_text() + set.cds());
}

TEST(LogDriver, ChainOfFormatsIsAsLongAsTheFile) {
  std::string text = "FORMAT f0\n%s\ns $1\nEND\n";
  for (int i = 1; i < 20'000; ++i) {
    text += util::format_text("FORMAT f%d FOLLOWS f%d\nf%d %%s\nEND\n", i, i - 1, i);
  }
  const FormatSet in_file_order(text);  // is destroyed parents first
  FormatSet set(text);
  EXPECT_EQ(set.result(), 0);
  set.orderFmts();
  EXPECT_EQ(bound(set, "f19999 x"), "19999 f19999");
  EXPECT_EQ(bound(set, "f7 x"), "7 f7");
}

}  // namespace
}  // namespace zem::test
