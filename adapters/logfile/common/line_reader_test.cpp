#include "adapters/logfile/common/line_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/pipe.h"

namespace zem::format {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kPiece(511, 'x');

/// A pipe that keeps what is written apart in one read each.
class LineReaderTest : public testing::Test {
 protected:
  /// The lines that come out when `bytes` arrive in one read.
  std::vector<std::string> lines_after(std::string_view bytes) {
    pipe_.write(bytes);
    EXPECT_EQ(reader_.fill(pipe_.out.get()), static_cast<ssize_t>(bytes.size()));
    return lines_at_hand();
  }

  std::vector<std::string> lines_at_hand() {
    std::vector<std::string> lines;
    while (reader_.has_line()) lines.emplace_back(reader_.next());
    EXPECT_EQ(reader_.next(), nullptr);
    return lines;
  }

  LineReader reader_;
  test::Pipe pipe_;
};

TEST_F(LineReaderTest, GivesOutTheRestOfAnInputThatEnds) {
  EXPECT_THAT(lines_after("first\nlast"), ElementsAre("first\n"));
  EXPECT_STREQ(reader_.rest(), "last");
  EXPECT_EQ(reader_.rest(), nullptr);
}

TEST_F(LineReaderTest, CutsLongLinesIntoPieces) {
  const std::string shorter = kPiece.substr(1);
  EXPECT_THAT(lines_after(shorter + "\n"), ElementsAre(shorter + "\n")) << "510 and a newline fit";
  EXPECT_THAT(lines_after(kPiece), ElementsAre(kPiece)) << "511 do not wait for a newline";
  EXPECT_THAT(lines_after("\n"), ElementsAre("\n")) << "which is a message of its own";
  EXPECT_THAT(lines_after(kPiece + std::string(89, 'y') + "\n"),
              ElementsAre(kPiece, std::string(89, 'y') + "\n"));
}

TEST_F(LineReaderTest, ANulByteEndsTheTextButNotTheLine) {
  using namespace std::string_view_literals;
  EXPECT_THAT(lines_after("seen\0unseen\nnext\n"sv), ElementsAre("seen", "next\n"));
}

TEST_F(LineReaderTest, AFailedReadKeepsTheHalfReadLine) {
  EXPECT_THAT(lines_after("half"), IsEmpty());
  EXPECT_EQ(reader_.fill(-1), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(reader_.next(), nullptr);
  EXPECT_THAT(lines_after("-read\n"), ElementsAre("half-read\n"));
}

TEST_F(LineReaderTest, TellsWhetherMoreIsLikelyToWait) {
  pipe_.write(std::string(LineReader::kReadBytesMax, '\n') + "more\n");
  EXPECT_EQ(reader_.fill(pipe_.out.get()), LineReader::kReadBytesMax);
  EXPECT_TRUE(reader_.was_filled());
  EXPECT_EQ(lines_at_hand().size(), LineReader::kReadBytesMax);
  EXPECT_EQ(reader_.fill(pipe_.out.get()), 5);
  EXPECT_FALSE(reader_.was_filled());
}

/// The rule in its plain form: a line ends behind its newline or its 511th byte.
std::vector<std::string> cut_plainly(std::string_view bytes) {
  std::vector<std::string> lines(1);
  for (const char c : bytes) {
    lines.back() += c;
    if (c == '\n' || lines.back().size() == LineReader::kLineBytesMax) lines.emplace_back();
  }
  lines.pop_back();  // what has no end yet
  return lines;
}

TEST_F(LineReaderTest, CutsAnyBytesInAnyReadsAsTheRuleSays) {
  std::mt19937 random(20231105);
  std::string all;
  std::vector<std::string> lines;
  for (int round = 0; round < 3'000; ++round) {
    std::string bytes(random() % (random() % 8 == 0 ? 5'000 : 300), 'x');
    const unsigned one_in = 1U << (random() % 12);  // a newline or a NUL byte
    for (char& c : bytes) {
      if (random() % one_in == 0) c = "\n\n\0"[random() % 3];
    }
    pipe_.write(bytes);
    all += bytes;
    for (std::size_t left = bytes.size(); left > 0;) {
      const ssize_t count = reader_.fill(pipe_.out.get());
      ASSERT_GT(count, 0);
      left -= static_cast<std::size_t>(count);
      while (const char* line = reader_.next()) {
        lines.emplace_back(reader_.whole_line());
        ASSERT_EQ(line[lines.back().size()], '\0');
      }
    }
  }
  EXPECT_TRUE(lines == cut_plainly(all));
}

}  // namespace
}  // namespace zem::format
