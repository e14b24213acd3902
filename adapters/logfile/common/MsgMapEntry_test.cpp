#include "adapters/logfile/common/MsgMapEntry.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>
#include <string>

#include "adapters/logfile/common/MapSpec.h"
#include "adapters/logfile/common/ref.h"
#include "tests/support/report_capture.h"
#include "tests/support/table.h"
#include "util/text.h"

namespace {

using zem::format::Ref;
using zem::test::ReportCapture;

/// A format of five variables, $n captured as "value n", with three slots of its own: `host` ($2)
/// is selected first, `level` is a constant, `text` a PRINTF.
class FiveVariables : public MapSpec {
 public:
  FiveVariables() : MapSpec("Five") {
    add("host", kMapVariable, "$2");
    add("level", kMapConstant, "WARNING");
    add("text", kMapPrint, "\"from %s\"|host");
  }

  /// The rules stand with a "|" between them.
  MsgMapEntry* add(const char* name, long kind, const char* rules) {
    MsgMapEntry* const entry = MsgMapEntry::create(this, name, kind);
    std::istringstream in(rules);
    for (std::string rule; std::getline(in, rule, '|');) entry->addRule(rule.c_str(), this);
    addSlot(entry);
    return entry;
  }

  [[nodiscard]] int numvars() const override { return 5; }
  [[nodiscard]] const tvStrobj& bvalue(const VarMapEntry* entry) const override {
    value_ = tvStrobj(zem::util::format_text("value %d", entry->position()));
    return value_;
  }

 private:
  mutable tvStrobj value_;
};

struct EntryCase {
  const char* name;
  const char* slot;
  long kind;
  const char* rules;  ///< with a "|" between them
  /// svalue, cdsMap, fmtMap, position, "selected" and "mapped" where they hold.
  const char* dump;
  const char* dbgdump;
};

std::string dump(const MsgMapEntry& entry, const MapSpec& spec) {
  std::string text = entry.svalue(&spec).getString();
  text.append(" | ").append(entry.cdsMap(&spec).view());
  text.append(" | ").append(entry.fmtMap(&spec).view());
  text.append(" | ").append(std::to_string(entry.position()));
  return text + (entry.selected() ? " selected" : "") + (entry.mapped() ? " mapped" : "");
}

const EntryCase kEntryCases[] = {
    {"Variable", "a", 1, "$3", "value 3 | $V3 | a $3 | 3 selected mapped", "\ta 1 $3\n"},
    {"NotMapped", "-a", 1, "$3", "value 3 | $V3 | -a $3 | 3 selected", "\ta 1 $3\n"},
    {"Notification", "a", 2, "\"x y\"", "??? | $V3 | a  | 0 selected mapped", "\ta 2 x y\n"},
    {"Default", "a", 3, "DEFAULT", "default | $V3 | a DEFAULT | 0 selected mapped",
     "\ta 3 DEFAULT\n"},
    {"ConstantWord", "a", 11, "W", "W | \"W\" | a \"W\" | 0 mapped", "\ta 11 \"W\"\n"},
    {"ConstantQuoted", "a", 11, "\"x y\"", "x y | \"x y\" | a \"x y\" | 0 mapped",
     "\ta 11 \"x y\"\n"},
    {"ConstantKeepsEscapes", "a", 11, R"("\"x\"")", R"(\"x\" | "\"x\"" | a "\"x\"" | 0 mapped)",
     "\ta 11 \"\\\"x\\\"\"\n"},
    {"ConstantWithoutRule", "a", 11, "", " | \"\" | a \"\" | 0 mapped", "\ta 11 \"\"\n"},
    {"ConstantOfOneQuote", "a", 11, "\"", " | \" | a \" | 0 mapped", "\ta 11 \"\n"},
    {"ConstantLikeAVariable", "a", 11, "$1a", "$1a | \"$1a\" | a \"$1a\" | 0 mapped",
     "\ta 11 \"$1a\"\n"},
    {"Print", "a", 12, R"("%s is %s"|host|level)",
     R"(value 2 is WARNING | PRINTF("%s is %s", $V2, "WARNING") | )"
     R"(a PRINTF("%s is %s", host, level) | 0 mapped)",
     "\ta 12 PRINTF(\"%s is %s\", host, level)\n"},
    {"PrintWithTooFewArguments", "a", 12, R"("%s-%s"|host)",
     R"(value 2-%s | PRINTF("%s-%s", $V2) | a PRINTF("%s-%s", host) | 0 mapped)",
     "\ta 12 PRINTF(\"%s-%s\", host)\n"},
    {"PrintLeavesOtherConversions", "a", 12, R"("%d %5s %% %s"|host)",
     R"(%d %5s %% value 2 | PRINTF("%d %5s %% %s", $V2) | a PRINTF("%d %5s %% %s", host) | 0 mapped)",
     "\ta 12 PRINTF(\"%d %5s %% %s\", host)\n"},
    {"PrintOfPrintStaysInTheValue", "a", 12, R"("%s %s"|text|host)",
     R"(%s value 2 | PRINTF("%s %s", PRINTF("from %s", $V2), $V2) | )"
     R"(a PRINTF("%s %s", text, host) | 0 mapped)",
     "\ta 12 PRINTF(\"%s %s\", text, host)\n"},
    {"PrintWithoutRule", "a", 12, "", " | PRINTF(\"\") | a PRINTF(\"\") | 0 mapped",
     "\ta 12 PRINTF(\"\")\n"},
};

class MapEntry : public testing::TestWithParam<EntryCase> {};

TEST_P(MapEntry, Texts) {
  const EntryCase& c = GetParam();
  const ReportCapture reports;
  FiveVariables spec;
  const MsgMapEntry* const entry = spec.add(c.slot, c.kind, c.rules);
  EXPECT_EQ(dump(*entry, spec), c.dump);
  EXPECT_EQ(reports.text(), "");
  testing::internal::CaptureStdout();
  entry->dbgdump();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), c.dbgdump);
}

TEST_P(MapEntry, CopiesKeepAllButOwnerAndCount) {
  const EntryCase& c = GetParam();
  FiveVariables spec;
  const MsgMapEntry* const entry = spec.add(c.slot, c.kind, c.rules);
  MapSpec other("Other");
  const Ref<MsgMapEntry> copy(MsgMapEntry::create(&other, entry));
  EXPECT_EQ(copy->refcnt(), 1);
  EXPECT_EQ(copy->owner(), &other);
  EXPECT_EQ(copy->kind(), entry->kind());
  EXPECT_EQ(dump(*copy, spec), c.dump);
}

INSTANTIATE_TEST_SUITE_P(Kinds, MapEntry, testing::ValuesIn(kEntryCases), zem::test::kRowName);

TEST(MapEntries, OfAnUnknownKindAreNotMade) {
  MapSpec spec("Any");
  for (const long kind : {0L, 4L, 10L, 13L, -1L}) {
    EXPECT_EQ(MsgMapEntry::create(&spec, "a", kind), nullptr);
  }
}

TEST(MapEntries, OfTheBaseKindSayNothing) {
  MapSpec spec("Any");
  const MsgMapEntry base(&spec, "-a");
  EXPECT_EQ(dump(base, spec), "??? |  | -a  | 0");
}

TEST(MapEntries, PositionsOutsideTheVariablesAreCountedErrors) {
  const std::map<const char*, const char*> cases = {
      {"$0", "E0 $0 must be between 1 and 5\n"},
      {"$6", "E0 $6 must be between 1 and 5\n"},
      {"$", "E0 $0 must be between 1 and 5\n"},
      {"$99999999999", "E0 $2147483647 must be between 1 and 5\n"}};
  for (const auto& [rule, report] : cases) {
    const ReportCapture reports;
    FiveVariables spec;
    spec.add("a", kMapVariable, rule);
    EXPECT_EQ(reports.text(), report);
    EXPECT_EQ(status, 1);
    EXPECT_NE(spec.getmap("a"), nullptr) << "the slot is kept";
  }
}

struct UnmappedCase {
  const char* name;
  const char* a;  ///< rules of the slot `a`
  const char* b;  ///< rules of the slot `b`
  const char* text;
  const char* message;
};

const UnmappedCase kUnmappedCases[] = {
    {"ArgumentWithoutSlot", R"("%s%s%s"|host|nobody|none)", "\"b\"",
     R"(PRINTF("%s%s%s", $V2, !!!!, !!!!))",
     "'nobody' in this FMT entry:\n\n   a PRINTF(\"%s%s%s\", host, nobody, none)\n\n"},
    {"SlotThatNamesItself", R"("%s"|a)", "\"b\"", R"(PRINTF("%s", !!!!))",
     "'a' in this FMT entry:\n\n   a PRINTF(\"%s\", a)\n\n"},
    {"SlotsThatNameEachOther", R"("%s"|b)", R"("<%s>"|a)", R"(PRINTF("%s", PRINTF("<%s>", !!!!)))",
     "'a' in this FMT entry:\n\n   b PRINTF(\"<%s>\", a)\n\n"},
};

class UnmappedArgument : public testing::TestWithParam<UnmappedCase> {
 protected:
  UnmappedArgument() {
    entry_ = static_cast<PrintMapEntry*>(spec_.add("a", kMapPrint, GetParam().a));
    spec_.add("b", kMapPrint, GetParam().b);
  }

  FiveVariables spec_;
  PrintMapEntry* entry_;
};

TEST_P(UnmappedArgument, IsMarkedInTheText) {
  EXPECT_EQ(entry_->cdsText(&spec_).text, GetParam().text);
  EXPECT_NE(entry_->unresolvedArgument(&spec_), nullptr);
}

TEST_P(UnmappedArgument, EndsTheProcess) {
  const std::string message =
      std::string("\nError: Failure during CDS mapping.\nCould not find value for ") +
      GetParam().message;
  EXPECT_EXIT((void)entry_->cdsMap(&spec_), testing::ExitedWithCode(1), testing::StrEq(message));
}

INSTANTIATE_TEST_SUITE_P(Slots, UnmappedArgument, testing::ValuesIn(kUnmappedCases),
                         zem::test::kRowName);

TEST(MapEntries, ArgumentsWithoutSlotLoseTheirNameInTheFormatFile) {
  FiveVariables spec;
  const MsgMapEntry* const entry = spec.add("a", kMapPrint, R"("%s%s"|nobody|host)");
  EXPECT_EQ(entry->fmtMap(&spec).view(), "a PRINTF(\"%s%s\",  !!!! , host)");
}

}  // namespace
