#include "adapters/logfile/common/FormatComponent.h"

#include <gtest/gtest.h>

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
  const char* piece;
  const char* component;
  const char* report;
};

TEST(FormatComponents, OfEachPiece) {
  const PieceCase cases[] = {{"%s", "string", ""},
                             {"%s*", "star", ""},
                             {"%s+", "plus", ""},
                             {"%t", "time", ""},
                             {" ", "blank", ""},
                             {"%12s", "own", ""},
                             {"%3s*", "own", ""},
                             {"%3s+", "own", ""},
                             {"", "const", ""},
                             {"%sx", "string", "E0 bad %s specification `%sx'\n"},
                             {"%s*x", "string", "E0 bad %s specification `%s*x'\n"},
                             {"%t*", "time", "E0 bad %t specification `%t*'\n"},
                             {"%5t", "time", "E0 bad %t specification `%5t'\n"}};
  for (const auto& [piece, kind, report] : cases) {
    const ReportCapture reports;
    const Ref<FormatComponent> component(FormatComponent::create(piece));
    EXPECT_EQ(dump(component.get()), kind) << piece;
    EXPECT_EQ(reports.text(), report);
    EXPECT_EQ(status, reports.text().empty() ? 0 : 1);
    const bool is_text = std::string(kind) == "const" || std::string(kind) == "blank";
    EXPECT_EQ(component->variable(), is_text ? 0 : 1) << piece;
  }
}

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

}  // namespace
