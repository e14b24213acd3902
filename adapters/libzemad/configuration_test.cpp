#include "adapters/libzemad/configuration.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "adapters/libzemad/error.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"
#include "util/text.h"

namespace zem::kernel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

/// What a printer writes.
std::string printed(const std::function<void()>& print) {
  char* text = nullptr;
  std::size_t size = 0;
  ZEMAD_PrintFileDescr = ::open_memstream(&text, &size);
  print();
  std::fclose(std::exchange(ZEMAD_PrintFileDescr, nullptr));
  std::string result(text, size);
  std::free(text);  // NOLINT(cppcoreguidelines-no-malloc): open_memstream asks for it
  return result;
}

std::string show(AttributeEntry* entry) {
  return printed([&] { ZEMAD_PrintAttributeEntry(entry, 1); });
}
std::string show(const AttributeEntryPtr& entry) { return show(entry.get()); }

AttributeEntryPtr text_entry(const char* text) {
  return AttributeEntryPtr(ZEMAD_MakeStringAttributeEntry(text));
}
AttributeEntryPtr number_entry(long number) {
  return AttributeEntryPtr(ZEMAD_MakeIntAttributeEntry(number));
}

AttributePtr attribute(const char* name, const char* key, const char* value) {
  const auto entry = [](const char* text) {
    return text == nullptr ? nullptr : ZEMAD_MakeStringAttributeEntry(text);
  };
  return AttributePtr(ZEMAD_MakeAttribute(entry(name), entry(key), entry(value)));
}

// Values ------------------------------------------------------------------------------------------

TEST(Entry, IsPrintedWithTypeLengthAndText) {
  EXPECT_EQ(show(text_entry("abc")), "ZEMAD_TYPE 1\t4\t\"abc\"\n");
  EXPECT_EQ(show(text_entry("")), "ZEMAD_TYPE 1\t1\t\"\"\n");
  EXPECT_EQ(show(number_entry(-7)), "ZEMAD_TYPE 2\t4\t\"-7\"\n");
  EXPECT_EQ(show(AttributeEntryPtr(ZEMAD_MakeNullAttributeEntry())), "ZEMAD_TYPE 4\t0\tNULL\n");
  EXPECT_EQ(show(nullptr), "NULL\n");
}

TEST(Entry, KeepsTheLow32BitsOfANumber) {
  EXPECT_EQ(show(number_entry(4000000000L)), "ZEMAD_TYPE 2\t4\t\"-294967296\"\n");
  EXPECT_EQ(show(number_entry(0x100000005L)), "ZEMAD_TYPE 2\t4\t\"5\"\n");
}

TEST(Entry, AnUnsignedOneIsStoredAsSigned) {
  const AttributeEntryPtr entry(ZEMAD_MakeUIntAttributeEntry(4000000000UL));
  EXPECT_EQ(show(entry), "ZEMAD_TYPE 2\t4\t\"-294967296\"\n");
}

TEST(Entry, OfUnsignedTypeIsReadAsUnsigned) {
  auto* value = static_cast<std::uint32_t*>(util::allocate(4));
  *value = 4000000000U;
  const AttributeEntryPtr entry(ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_UINT, 4, value));
  EXPECT_STREQ(ZEMAD_AttributeEntryValueToString(entry.get()), "4000000000");
}

TEST(Entry, WithoutAValueNeedsLengthZero) {
  test::LogCapture log(log::kUtils);
  const AttributeEntryPtr empty(ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_STRING, 0, nullptr));
  EXPECT_NE(empty, nullptr);
  EXPECT_EQ(ZEMAD_MakeAttributeEntry(ZEMAD_TYPE_STRING, 5, nullptr), nullptr);
  EXPECT_EQ(zemad_errno, 100080);
  const AttributeEntryPtr copy(ZEMAD_CopyAttributeEntry(empty.get()));
  EXPECT_EQ(show(copy), "ZEMAD_TYPE 4\t0\tNULL\n");
}

TEST(Entry, IsComparedWithConstants) {
  const auto text = text_entry("5");
  const auto number = number_entry(5);
  const std::int32_t five = 5;
  const std::int32_t six = 6;
  EXPECT_EQ(ZEMAD_EqualString(text.get(), "5"), 1);
  EXPECT_EQ(ZEMAD_EqualString(text.get(), "55"), 0);
  EXPECT_EQ(ZEMAD_EqualString(number.get(), "5"), 0);
  EXPECT_EQ(ZEMAD_EqualInt(number.get(), &five), 1);
  EXPECT_EQ(ZEMAD_EqualInt(number.get(), &six), 0);
  EXPECT_EQ(ZEMAD_EqualInt(text.get(), &five), 0);
}

// Attributes and slots ----------------------------------------------------------------------------

TEST(Attribute, IsCopiedWholeAndPrinted) {
  const AttributePtr full = attribute("n", "k", "v");
  const AttributePtr copy(ZEMAD_CopyAttribute(full.get()));
  EXPECT_NE(copy->Name->Value, full->Name->Value);
  EXPECT_EQ(printed([&] { ZEMAD_PrintAttribute(copy.get(), 1); }),
            " Name: ZEMAD_TYPE 1\t2\t\"n\"\n  Key: ZEMAD_TYPE 1\t2\t\"k\"\n"
            "Value: ZEMAD_TYPE 1\t2\t\"v\"\n\n");

  const AttributePtr bare = attribute("n", nullptr, nullptr);
  const AttributePtr bare_copy(ZEMAD_CopyAttribute(bare.get()));
  EXPECT_EQ(printed([&] { ZEMAD_PrintAttribute(bare_copy.get(), 1); }),
            " Name: ZEMAD_TYPE 1\t2\t\"n\"\n  Key: NULL\nValue: NULL\n\n");
  EXPECT_EQ(printed([] { ZEMAD_PrintAttribute(nullptr, 1); }), "Attribute: NULL\n\n");
  EXPECT_EQ(ZEMAD_CopyAttribute(nullptr), nullptr);
}

TEST(Slot, IsPrintedWithWhatIsMissing) {
  char name[] = "n";
  MapEntry entry{name, nullptr};
  EXPECT_EQ(printed([&] { ZEMAD_PrintMapEntry(&entry, 1); }), "\"n\" -> NULL\n");
  entry = MapEntry{nullptr, name};
  EXPECT_EQ(printed([&] { ZEMAD_PrintMapEntry(&entry, 1); }), "NULL -> \"n\"\n");
  EXPECT_EQ(printed([] { ZEMAD_PrintMapEntry(nullptr, 1); }), "NULL\n");
}

TEST(Slot, IsFoundByName) {
  test::LogCapture log(log::kUtils);
  char a[] = "a";
  char b[] = "b";
  const MapEntry one{a, b};
  const MapEntry same{a, a};
  const MapEntry other{b, b};
  const MapEntry nameless{nullptr, b};
  EXPECT_EQ(ZEMAD_CompareMapEntryByName(&one, &same), 1);
  EXPECT_EQ(ZEMAD_CompareMapEntryByName(&one, &other), 0);
  EXPECT_EQ(zemad_errno, 0);
  EXPECT_EQ(ZEMAD_CompareMapEntryByName(&one, &nameless), 0);
  EXPECT_EQ(zemad_errno, 100082);
  log.clear();
  EXPECT_EQ(ZEMAD_CompareMapEntryByName(nullptr, &one), 0);
  const std::string text = "ZEMAD_CompareMapEntryByName NULL failure";
  EXPECT_THAT(log.lines(), ElementsAre("LOW UTILS 0 " + text, "MAJOR UTILS 82 " + text));
}

// Failures ----------------------------------------------------------------------------------------

struct FailureCase {
  const char* name;
  std::function<void*()> make;
  int successes;  ///< requests for memory that succeed; -1: all of them
  std::vector<std::string> lines;
};

class RecordFailure : public testing::TestWithParam<FailureCase> {};

/// Nothing is made, nothing leaks, and a pair of lines says why.
TEST_P(RecordFailure, IsReportedTwice) {
  test::LogCapture log(log::kUtils);
  {
    const util::ScopedAllocationFailure failure(GetParam().successes < 0 ? 1000
                                                                         : GetParam().successes);
    EXPECT_EQ(GetParam().make(), nullptr);
  }
  EXPECT_THAT(log.lines(), ElementsAreArray(GetParam().lines));
}

std::vector<std::string> twice(const std::string& text, const std::string& severity, int number) {
  return {"LOW UTILS 0 " + text, severity + " UTILS " + std::to_string(number) + " " + text};
}
std::vector<std::string> joined(std::vector<std::string> first, std::vector<std::string> second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}
const std::vector<std::string> kNoRecord = twice("Malloc failure", "FATAL", 99);

/// Made on first use, outside the requests that fail.
const Attribute* full_attribute() {
  static const AttributePtr full = attribute("n", "k", "v");
  return full.get();
}
const Attribute* const kFull = full_attribute();
char some_text[] = "x";

const FailureCase kFailureCases[] = {
    {"SlotWithoutName", [] { return ZEMAD_MakeMapEntry(nullptr, some_text); }, -1,
     twice("Name/Value of MapEntry may not be NULL", "MAJOR", 80)},
    {"SlotWithoutValue", [] { return ZEMAD_MakeMapEntry(some_text, nullptr); }, -1,
     twice("Name/Value of MapEntry may not be NULL", "MAJOR", 80)},
    {"NullText", [] { return ZEMAD_MakeStringAttributeEntry(nullptr); }, -1,
     twice("Value of AttributeEntry may not be NULL", "MAJOR", 80)},
    {"AttributeWithoutName", [] { return ZEMAD_MakeAttribute(nullptr, nullptr, nullptr); }, -1,
     twice("Name of Attribute may not be NULL", "MAJOR", 80)},
    {"SlotRecord", [] { return ZEMAD_MakeMapEntry(some_text, some_text); }, 0, kNoRecord},
    {"EntryRecord", [] { return ZEMAD_MakeAttributeEntry(1, 2, some_text); }, 0, kNoRecord},
    {"AttributeRecord", [] { return ZEMAD_MakeAttribute(kFull->Name, kFull->Key, kFull->Value); },
     0, kNoRecord},
    {"NumberBuffer", [] { return ZEMAD_MakeIntAttributeEntry(1); }, 0,
     twice("Malloc failure", "MAJOR", 99)},
    {"NumberRecord", [] { return ZEMAD_MakeUIntAttributeEntry(1); }, 1, kNoRecord},
    {"TextBuffer",
     [] { return ZEMAD_MakeStringAttributeEntry("x"); },
     0,
     {"LOW UTILS 0 StrDup failure", "MAJOR UTILS 99 malloc failure"}},
    {"TextRecord", [] { return ZEMAD_MakeStringAttributeEntry("x"); }, 1, kNoRecord},
    {"CopyOfAValue", [] { return ZEMAD_CopyAttributeEntry(kFull->Name); }, 0, kNoRecord},
    {"CopyOfAName", [] { return ZEMAD_CopyAttribute(kFull); }, 0,
     joined(kNoRecord, twice("Copy Name failure", "FATAL", 81))},
    {"CopyOfAKey", [] { return ZEMAD_CopyAttribute(kFull); }, 2,
     joined(kNoRecord, twice("Copy Key failure", "FATAL", 81))},
    {"CopyOfAnAttributesValue", [] { return ZEMAD_CopyAttribute(kFull); }, 5,
     joined(kNoRecord, twice("Copy Value failure", "FATAL", 81))},
    {"CopyOfAnAttributesRecord", [] { return ZEMAD_CopyAttribute(kFull); }, 6, kNoRecord}};
INSTANTIATE_TEST_SUITE_P(Records, RecordFailure, testing::ValuesIn(kFailureCases), test::kRowName);

// Traces ------------------------------------------------------------------------------------------

TEST(RecordTrace, NullMakerLeavesUnderAnotherName) {
  test::LogCapture log;
  log.listen(log::kUtils, {log::kVerbose});
  const AttributeEntryPtr entry(ZEMAD_MakeNullAttributeEntry());
  EXPECT_THAT(
      log.texts(),
      ElementsAre("Entering ZEMAD_MakeNullAttributeEntry", "Entering ZEMAD_MakeAttributeEntry",
                  "Leaving ZEMAD_MakeAttributeEntry", "Leaving ZEMAD_MakeUIntAttributeEntry"));
}

TEST(RecordTrace, EveryReleaseNamesTheAddress) {
  AttributeEntryPtr entry = text_entry("x");
  test::LogCapture log;
  log.listen(log::kUtils, {log::kVerbose});
  const std::string value =
      util::format_text("Free pointer %lx", reinterpret_cast<unsigned long>(entry->Value));
  const std::string record =
      util::format_text("Free pointer %lx", reinterpret_cast<unsigned long>(entry.get()));
  entry.reset();
  EXPECT_THAT(log.texts(), ElementsAre(value, record));
}

}  // namespace
}  // namespace zem::kernel
