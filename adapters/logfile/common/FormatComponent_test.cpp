#include "adapters/logfile/common/FormatComponent.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/shared_components.h"
#include "tests/support/report_capture.h"

namespace {

using zem::format::Ref;
using zem::format::shared_components;
using zem::test::ReportCapture;

/// "string", "star", "plus", "time", "blank" for a shared component, else "const" or "own".
std::string dump(FormatComponent* component) {
  const auto& shared = shared_components();
  if (component == shared.string.get()) return "string";
  if (component == shared.star.get()) return "star";
  if (component == shared.plus.get()) return "plus";
  if (component == shared.time.get()) return "time";
  if (component == shared.blank.get()) return "blank";
  return component->isconst() != 0 ? "const" : "own";
}

struct PieceCase {
  const char* name;
  const char* piece;
  const char* component;
  const char* report;
};

void PrintTo(const PieceCase& c, std::ostream* out) { *out << c.name; }

const PieceCase kPieceCases[] = {
    {"Word", "%s", "string", ""},
    {"Star", "%s*", "star", ""},
    {"Plus", "%s+", "plus", ""},
    {"Time", "%t", "time", ""},
    {"Blank", " ", "blank", ""},
    {"WordWithWidth", "%12s", "own", ""},
    {"StarWithWidth", "%3s*", "own", ""},
    {"PlusWithWidth", "%3s+", "own", ""},
    {"TwoBlanksAreText", "  ", "const", ""},
    {"TabIsText", "\t", "const", ""},
    {"PercentIsText", "%", "const", ""},
    {"DoublePercentIsText", "%%", "const", ""},
    {"OtherConversionIsText", "%d", "const", ""},
    {"WidthWithoutLetterIsText", "%12", "const", ""},
    {"NothingIsText", "", "const", ""},
    {"WordWithTail", "%sx", "string", "E0 bad %s specification `%sx'\n"},
    {"WordWithLongTail", "%s*x", "string", "E0 bad %s specification `%s*x'\n"},
    {"TimeWithTail", "%t*", "time", "E0 bad %t specification `%t*'\n"},
    {"TimeWithWidth", "%5t", "time", "E0 bad %t specification `%5t'\n"},
};

class FormatPiece : public testing::TestWithParam<PieceCase> {};

TEST_P(FormatPiece, Makes) {
  const ReportCapture reports;
  const Ref<FormatComponent> component(FormatComponent::create(GetParam().piece));
  EXPECT_EQ(dump(component.get()), GetParam().component);
  EXPECT_EQ(reports.text(), GetParam().report);
  EXPECT_EQ(status, reports.text().empty() ? 0 : 1);
  const std::string kind = dump(component.get());
  EXPECT_EQ(component->variable(), kind == "const" || kind == "blank" ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(Pieces, FormatPiece, testing::ValuesIn(kPieceCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(FormatComponents, CountTheirHolders) {
  FormatComponent::init();
  const int before = shared_components().star->refcnt();
  {
    const Ref<FormatComponent> first(FormatComponent::create("%s*"));
    Ref<FormatComponent> second = first;
    EXPECT_EQ(shared_components().star->refcnt(), before + 2);
    second = {};
    EXPECT_EQ(shared_components().star->refcnt(), before + 1);
  }
  FormatComponent::init();
  EXPECT_EQ(shared_components().star->refcnt(), before);
  EXPECT_EQ(shared_components().empty->refcnt(), 1);
  EXPECT_EQ(before, 2) << "the shared plus holds the shared star";
}

TEST(FormatComponents, DestroyedWhileReferencedAbort) {
  EXPECT_DEATH(
      {
        ConstComponent component("a");
        ++component.refcnt();
      },
      "destroyed while referenced");
}

struct SelectCase {
  const char* name;
  const char* constant;
  const char* text;
  const char* selected;
};

const SelectCase kSelectCases[] = {
    {"BeforeTheFirst", "[", "sendmail[1[2", "sendmail"},
    {"AllWithoutIt", "[", "sendmail", "sendmail"},
    {"NothingBeforeIt", "]:", "]:x", ""},
    {"WholeConstantOnly", "]:", "a]b]:", "a]b"},
};

TEST(ConstComponents, CutWords) {
  for (const SelectCase& c : kSelectCases) {
    EXPECT_EQ(ConstComponent(c.constant).select(c.text), c.selected) << c.name;
  }
}

}  // namespace
