#include "util/strobj.h"

#include <algorithm>
#include <climits>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tests/support/table.h"

namespace {

/// "text|length|capacity"; a string without text shows as (none).
std::string dump(const tvStrobj& s) {
  const char* text = s.getString();
  return std::string(text == nullptr ? "(none)" : text) + "|" + std::to_string(s.length()) + "|" +
         std::to_string(s.capacity());
}

TEST(TvStrobj, BuffersAreWholeChunks) {
  EXPECT_EQ(dump(tvStrobj()), "(none)|0|0");
  EXPECT_EQ(dump(tvStrobj(static_cast<const char*>(nullptr))), "(none)|0|0");
  EXPECT_EQ(dump(tvStrobj("")), "|0|108");
  EXPECT_EQ(dump(tvStrobj("abc")), "abc|3|108");
  EXPECT_EQ(tvStrobj(std::string(106, 'x')).capacity(), 108U);
  EXPECT_EQ(tvStrobj(std::string(107, 'x')).capacity(), 216U);
}

TEST(TvStrobj, AppendGrowsByWhatIsAdded) {
  tvStrobj s("abc");
  s << std::string(104, 'x').c_str();
  EXPECT_EQ(s.capacity(), 108U) << "107 characters and their NUL fit";
  s << "y";
  EXPECT_EQ(s.capacity(), 108U + 108U);

  tvStrobj long_append("abc");
  long_append.append(std::string(110, 'x'));
  EXPECT_EQ(long_append.capacity(), 108U + 216U);

  const tvStrobj shared(std::string(107, 'x'));
  tvStrobj copy = shared;
  copy << "y";
  EXPECT_EQ(copy.capacity(), 216U) << "one buffer for both";

  tvStrobj without_text;
  without_text << "" << static_cast<const char*>(nullptr);
  EXPECT_EQ(dump(without_text), "(none)|0|0");
  EXPECT_EQ(dump(without_text << "a"), "a|1|108");
}

TEST(TvStrobj, TakesItsOwnTextAsArgument) {
  tvStrobj s("abc");
  s << s;
  EXPECT_EQ(s, "abcabc");
  s = s.getString() + 4;
  EXPECT_EQ(s, "bc");
  std::string model = "bc";
  for (int doubling = 0; doubling < 8; ++doubling) {
    s << s.getString();
    model += std::string(model);
  }
  EXPECT_EQ(s.view(), model);
}

TEST(TvStrobj, NoChangeOfACopyReachesTheOriginal) {
  const std::pair<const char*, std::function<void(tvStrobj&)>> changes[] = {
      {"append", [](tvStrobj& s) { s << "x"; }},
      {"assign", [](tvStrobj& s) { s = "x"; }},
      {"assign null", [](tvStrobj& s) { s = static_cast<const char*>(nullptr); }},
      {"setString", [](tvStrobj& s) { s.setString("x"); }},
      {"index", [](tvStrobj& s) { s[2] = 'x'; }},
      {"ltrim", [](tvStrobj& s) { s.ltrim(" "); }},
      {"rtrim", [](tvStrobj& s) { s.rtrim(" "); }},
      {"trim", [](tvStrobj& s) { s.trim(" "); }},
      {"remove", [](tvStrobj& s) { s.remove(2); }},
      {"ljust", [](tvStrobj& s) { s.ljust(20); }},
      {"rjust", [](tvStrobj& s) { s.rjust(20); }},
      {"center", [](tvStrobj& s) { s.center(20); }},
      {"upper", [](tvStrobj& s) { s.upper(); }},
      {"lower", [](tvStrobj& s) { s.lower(); }}};
  for (const auto& [name, change] : changes) {
    const tvStrobj original(" abC ");
    tvStrobj copy = original;
    EXPECT_EQ(copy.getString(), original.getString()) << "shared until then";
    change(copy);
    EXPECT_EQ(dump(original), " abC |5|108") << name;
    EXPECT_NE(copy, original) << name;
  }
}

TEST(TvStrobj, SetStringCutsAtTheRoom) {
  tvStrobj s("abc");
  const char* const buffer = s.getString();
  s.setString(std::string(300, 'x').c_str());
  EXPECT_EQ(s, std::string(107, 'x').c_str());
  s.setString("y");
  EXPECT_EQ(dump(s), "y|1|108");
  EXPECT_EQ(s.getString(), buffer);
  tvStrobj without_text;
  without_text.setString("abc");
  EXPECT_EQ(dump(without_text), "(none)|0|0");
}

TEST(TvStrobj, IndexOutOfRangeIsReportedAndHarmless) {
  tvStrobj s("abc");
  for (const int index : {0, 3, 4, -1, INT_MIN, INT_MAX}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(s[index], index == 0 ? 'a' : '\0') << index;
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              index == 0 || index == 3 ? "" : "index out of range");
  }
  testing::internal::CaptureStderr();
  s[-1] = 'x';
  EXPECT_EQ(s[100], '\0') << "what was written there is forgotten";
  tvStrobj without_text;
  without_text[0] = 'x';
  EXPECT_EQ(without_text[0], '\0');
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "index out of rangeindex out of range");
}

struct EditCase {
  const char* name;
  const char* before;
  void (*edit)(tvStrobj&);
  const char* after;  ///< as dump() shows it
};

class TvStrobjEdits : public testing::TestWithParam<EditCase> {};

const EditCase kEditCases[] = {
    {"LtrimTakesOnlyItsSet", "\t  ab ", [](tvStrobj& s) { s.ltrim(" "); }, "\t  ab |6|108"},
    {"LtrimMayTakeAll", "xyx", [](tvStrobj& s) { s.ltrim("xy"); }, "|0|108"},
    {"RtrimKeepsTheFirst", "xyx", [](tvStrobj& s) { s.rtrim("xy"); }, "x|1|108"},
    {"TrimTakesBothSides", "  ab  ", [](tvStrobj& s) { s.trim(" "); }, "ab|2|108"},
    {"EmptySetTakesNothing", " a ", [](tvStrobj& s) { s.trim(""); }, " a |3|108"},
    {"NullSetTakesNothing", " a ", [](tvStrobj& s) { s.trim(nullptr); }, " a |3|108"},
    {"NoTextStaysNoText", nullptr, [](tvStrobj& s) { s.trim(" "); }, "(none)|0|0"},
    {"RemoveOfAllChangesNothing", "abcde", [](tvStrobj& s) { s.remove(5); }, "abcde|5|108"},
    {"RemoveOfLessChangesNothing", "abcde", [](tvStrobj& s) { s.remove(-1); }, "abcde|5|108"},
    {"LjustTrimsThenPads", " \tab", [](tvStrobj& s) { s.ljust(6); }, "ab    |6|7"},
    {"LjustOfExactWidthStillTrims", " ab", [](tvStrobj& s) { s.ljust(3); }, "ab |3|4"},
    {"LjustToLessThanNothing", " ab", [](tvStrobj& s) { s.ljust(-1); }, " ab|3|108"},
    {"LjustFillsNoText", nullptr, [](tvStrobj& s) { s.ljust(3); }, "   |3|4"},
    {"RjustTrimsThenPads", "ab \t", [](tvStrobj& s) { s.rjust(6); }, "    ab|6|7"},
    {"RjustMeasuresTheTrimmedText", "abc ", [](tvStrobj& s) { s.rjust(3); }, "abc|3|4"},
    {"RjustTrimsALongerTextToo", "abcd ", [](tvStrobj& s) { s.rjust(3); }, "abcd|4|108"},
    {"RjustToLessThanNothing", "ab ", [](tvStrobj& s) { s.rjust(-1); }, "ab|2|108"},
    {"CenterEndsUpOnTheLeft", "ab", [](tvStrobj& s) { s.center(6); }, "ab    |6|7"},
    {"CenterTrimsBothSides", " ab\t", [](tvStrobj& s) { s.center(5); }, "ab   |5|6"},
    {"CenterLeavesAnExactText", " ab ", [](tvStrobj& s) { s.center(2); }, "ab|2|108"},
    {"CenterToLessThanNothing", " ab ", [](tvStrobj& s) { s.center(-7); }, "ab|2|108"},
    {"AppendBehindAJustifiedText", "ab",
     [](tvStrobj& s) {
       s.ljust(4);
       s << "c";
     },
     "ab  c|5|113"},
    {"Upper", "aZ\xe4-1", [](tvStrobj& s) { s.upper(); }, "AZ\xe4-1|5|108"},
    {"Lower", "aZ\xc4-1", [](tvStrobj& s) { s.lower(); }, "az\xc4-1|5|108"},
    {"UpperOfNoText", nullptr, [](tvStrobj& s) { s.upper(); }, "(none)|0|0"},
};
TEST_P(TvStrobjEdits, Gives) {
  tvStrobj s(GetParam().before);
  GetParam().edit(s);
  EXPECT_EQ(dump(s), GetParam().after);
}
INSTANTIATE_TEST_SUITE_P(Texts, TvStrobjEdits, testing::ValuesIn(kEditCases), zem::test::kRowName);

TEST(TvStrobj, NoTextDiffersFromAnEmptyText) {
  const tvStrobj none;
  const tvStrobj empty("");
  const char* const null = nullptr;
  EXPECT_TRUE(none == null && none == tvStrobj() && none != empty && none != "");
  EXPECT_TRUE(empty != none && empty != null && empty == "");
  EXPECT_TRUE(tvStrobj("ab") != tvStrobj("abc") && "ab" == tvStrobj("ab"));
}

TEST(TvStrobj, PrintsItsText) {
  testing::internal::CaptureStdout();
  tvStrobj().print();
  tvStrobj("a%sb").print();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "a%sb");
}

/// One random step on one of several handles that share texts, and on its plain double.
std::string step(tvStrobj& s, std::string& model, const tvStrobj& other,
                 const std::string& other_model, std::minstd_rand& random) {
  const int n = static_cast<int>(random() % 260);
  switch (random() % 6) {
    case 0:
      s = other;
      model = other_model;
      return "share";
    case 1:
      s << std::string(static_cast<std::size_t>(n), 'a').c_str();
      model.append(static_cast<std::size_t>(n), 'a');
      return "append " + std::to_string(n);
    case 2:
      s << other;
      model += other_model;
      return "append another";
    case 3:
      s.remove(n);
      if (n > 0 && static_cast<std::size_t>(n) < model.size()) {
        model.erase(0, static_cast<std::size_t>(n));
      }
      return "remove " + std::to_string(n);
    case 4:
      s.ljust(n);
      if (model.size() <= static_cast<std::size_t>(n)) {
        model.erase(0, std::min(model.find_first_not_of(' '), model.size()));
        model.resize(static_cast<std::size_t>(n), ' ');
      }
      return "ljust " + std::to_string(n);
    default:
      s = "b ";
      model = "b ";
      return "assign";
  }
}

TEST(TvStrobj, BehavesAsAPlainStringUnderRandomSteps) {
  constexpr unsigned kSeed = 4;
  std::minstd_rand random(kSeed);
  std::vector<tvStrobj> handles(4);
  std::vector<std::string> models(4);
  for (int i = 0; i < 20'000; ++i) {
    const std::size_t at = random() % handles.size();
    const std::size_t from = random() % handles.size();
    const std::string done = step(handles[at], models[at], handles[from], models[from], random);
    for (std::size_t k = 0; k < handles.size(); ++k) {
      ASSERT_EQ(handles[k].view(), models[k]) << "seed " << kSeed << ", step " << i << ": " << done;
      ASSERT_TRUE(handles[k].getString() == nullptr || handles[k].length() < handles[k].capacity());
    }
  }
}

}  // namespace
