#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/evaluation.h"
#include "tests/support/entry.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"

namespace {

using testing::ElementsAre;
using zem::kernel::AttributeEntryPtr;
using zem::kernel::text_of;
using zem::test::Entry;
using zem::test::EntryList;
using zem::test::LogCapture;
using zem::test::make_list;

/// The text, which must be a string of exactly its length; "(failed)" for null.
std::string shown(const AttributeEntryPtr& entry) {
  if (!entry) return "(failed)";
  EXPECT_EQ(entry->Type, std::uint32_t{ZEMAD_TYPE_STRING});
  EXPECT_EQ(entry->Length, text_of(*entry).size() + 1);
  return std::string(text_of(*entry));
}

struct SubstrCase {
  const char* name;
  Entry text;
  Entry position;
  Entry length;
  const char* result;
  const char* complaints = "";  ///< each with a newline behind it
};

class Substr : public testing::TestWithParam<SubstrCase> {};

TEST_P(Substr, Cuts) {
  const auto& [name, text, position, length, result, complaints] = GetParam();
  LogCapture log;
  log.listen(zem::log::kKernel, {zem::log::kMajor});
  const EntryList arguments = make_list({text, position, length});
  EXPECT_EQ(shown(AttributeEntryPtr(ZEMAD_EvalSubstr(3, 3, arguments.get()))), result);
  std::string told;
  for (const std::string& line : log.texts()) told += line + "\n";
  EXPECT_EQ(told, complaints);
  EXPECT_EQ(zemad_errno, told.empty() ? 0 : 300061);
}

constexpr int kIntMax = 2147483647;
const char kFaulty[] = "Substring values faulty\n";

const SubstrCase kSubstrCases[] = {
    {"Middle", "abcdef", 2, 3, "bcd"},
    {"CutAtTheEnd", "abc", 2, 10, "bc"},
    {"JustBeyondTheEnd", "abc", 4, 1, ""},
    {"FarBeyondTheEnd", "abc", 1000, 5, ""},
    {"EmptyText", "", 1, 1, ""},
    {"LargestNumbers", "abc", kIntMax, kIntMax, ""},
    {"LargestLength", "abc", 2, kIntMax, "bc"},
    {"UnsignedNumbers", "abc", Entry::unsigned_number(2), Entry::unsigned_number(0xFFFFFFFF), "bc"},
    {"PositionZero", "abc", 0, 3, "(failed)", kFaulty},
    {"LengthZero", "abc", 1, 0, "(failed)", kFaulty},
    {"LengthNegative", "abc", 1, -1, "(failed)", kFaulty},
    {"PositionNegative", "abc", -1, 3, "(failed)", kFaulty},
    {"AllOfTheWrongType", 1, "2", Entry::null(), "(failed)",
     "Substring argument 1 no string\nSubstring argument 2 no integer\nSubstring argument 3 no "
     "integer\n"},
    {"MissingBeforeWrong", 1, Entry::none(), Entry::none(), "(failed)",
     "Substring argument 2 NULL\nSubstring argument 3 NULL\nSubstring argument 1 no string\n"}};
INSTANTIATE_TEST_SUITE_P(Table, Substr, testing::ValuesIn(kSubstrCases), zem::test::kRowName);

TEST(Builtins, CountTheirArguments) {
  LogCapture log(zem::log::kKernel);
  const EntryList arguments = make_list({"a", 1});
  EXPECT_EQ(ZEMAD_EvalSubstr(3, 2, arguments.get()), nullptr);
  EXPECT_EQ(ZEMAD_EvalIPname(1, 2, arguments.get()), nullptr);
  EXPECT_THAT(log.lines(), ElementsAre("LOW KERNEL 0 Substring needs 3 arguments",
                                       "MAJOR KERNEL 61 Substring needs 3 arguments",
                                       "LOW KERNEL 0 ipname needs 1 argument",
                                       "MAJOR KERNEL 61 ipname needs 1 argument"));
}

TEST(Builtins, AddressLookUpComplainsAsIpname) {
  LogCapture log;
  log.listen(zem::log::kKernel, {zem::log::kMajor});
  EXPECT_EQ(ZEMAD_EvalIPaddr(1, 1, make_list({5}).get()), nullptr);
  EXPECT_EQ(ZEMAD_EvalIPaddr(1, 1, make_list({Entry::none()}).get()), nullptr);
  EXPECT_EQ(ZEMAD_EvalIPaddr(1, 0, make_list({}).get()), nullptr);
  EXPECT_THAT(log.texts(), ElementsAre("ipname argument 1 no string", "ipname argument 1 NULL",
                                       "ipname needs 1 argument"));
}

TEST(Builtins, SubstrReportsShortMemory) {
  LogCapture log(zem::log::kKernel);
  const EntryList arguments = make_list({"abc", 1, 1});
  const zem::util::ScopedAllocationFailure no_memory(0);
  EXPECT_EQ(ZEMAD_EvalSubstr(3, 3, arguments.get()), nullptr);
  EXPECT_THAT(log.lines(),
              ElementsAre("LOW KERNEL 0 Malloc failure", "MAJOR KERNEL 99 Malloc failure"));
}

struct LookUpCase {
  const char* name;
  const char* text;
  const char* as_name;     ///< IPNAME
  const char* as_address;  ///< IPADDR
  std::vector<std::string> asked;
};

class LookUp : public testing::TestWithParam<LookUpCase> {};

TEST_P(LookUp, ByAddressAndByName) {
  zem::test::FakeResolver resolver;
  resolver.hosts = {{"gateway", "10.0.0.9"}};
  const zem::util::ScopedDouble<zem::util::Resolver> installed(resolver);
  const EntryList argument = make_list({GetParam().text});
  EXPECT_EQ(shown(AttributeEntryPtr(ZEMAD_EvalIPname(1, 1, argument.get()))), GetParam().as_name);
  EXPECT_EQ(shown(AttributeEntryPtr(ZEMAD_EvalIPaddr(1, 1, argument.get()))),
            GetParam().as_address);
  EXPECT_EQ(resolver.asked, GetParam().asked);
}

/// What counts as an address is what the C library takes for one: fewer than four numbers, other
/// bases and trailing words included.
const LookUpCase kLookUpCases[] = {
    {"KnownAddress", "10.0.0.9", "gateway", "10.0.0.9", {"10.0.0.9"}},
    {"UnknownAddress", "10.1.2.3", "10.1.2.3", "10.1.2.3", {"10.1.2.3"}},
    {"KnownName", "gateway", "gateway", "10.0.0.9", {"gateway"}},
    {"UnknownName", "host", "host", "host", {"host"}},
    {"NameThatBeginsLikeANumber", "3com", "3com", "3com", {"3com"}},
    {"OneNumber", "10", "10", "10", {"0.0.0.10"}},
    {"HexNumber", "0x10", "0x10", "0x10", {"0.0.0.16"}},
    {"TrailingWords", "1.2.3.4 junk", "1.2.3.4 junk", "1.2.3.4 junk", {"1.2.3.4"}},
    {"AllOnes", "255.255.255.255", "255.255.255.255", "255.255.255.255", {"255.255.255.255"}},
    {"Empty", "", "", "", {""}}};
INSTANTIATE_TEST_SUITE_P(Table, LookUp, testing::ValuesIn(kLookUpCases), zem::test::kRowName);

}  // namespace
