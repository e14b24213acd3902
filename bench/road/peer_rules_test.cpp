#include "bench/road/peer_rules.h"

#include <gtest/gtest.h>

namespace zem::bench {
namespace {

const std::vector<std::string> kFormatLines = {"%t %s %s*", "%t %s su[%s]: opened by root",
                                               "%t %s su[%s]: %s to %s failed",
                                               "%t %s sshd[%s]: from %s port"};

TEST(PeerRules, LognormMatchesTheWholeMessage) {
  constexpr const char* kHead = ":%date:date-rfc3164% %hostname:word% ";
  const std::string head = kHead;
  EXPECT_EQ(lognorm_rulebase(kFormatLines),
            "version=2\n"
            "rule=Base" +
                head +
                "%msg:rest%\n"
                "rule=Event_1" +
                head +
                "su[%pid:char-to{\"extradata\":\"]\"}%]: opened by root\n"
                "rule=Event_2" +
                head +
                "su[%pid:char-to{\"extradata\":\"]\"}%]: "
                "%value1:word% to %value2:word% failed\n"
                "rule=Event_3" +
                head +
                "sshd[%pid:char-to{\"extradata\":\"]\"}%]: "
                "from %value1:word% port\n");
}

TEST(PeerRules, PatternsLieInTheSetOfTheirProgram) {
  const std::string xml = pattern_database(kFormatLines);
  const auto at = [&](const char* text) {
    const std::size_t place = xml.find(text);
    EXPECT_NE(place, std::string::npos) << text << " is not in " << xml;
    return place;
  };
  const std::size_t any = at("<patterns><pattern>@ANYSTRING:any@</pattern></patterns>");
  const std::size_t sshd = at("<patterns><pattern>sshd</pattern></patterns>");
  const std::size_t su = at("<patterns><pattern>su</pattern></patterns>");
  EXPECT_LT(any, at("id='Base'"));
  EXPECT_LT(sshd, at("<pattern>from @ESTRING:value1: @port</pattern>"));
  EXPECT_LT(at("id='Event_3'"), su);
  EXPECT_LT(su, at("<pattern>opened by root</pattern>"));
  EXPECT_LT(su, at("<pattern>@ESTRING:value1: @to @ESTRING:value2: @failed</pattern>"));
}

}  // namespace
}  // namespace zem::bench
