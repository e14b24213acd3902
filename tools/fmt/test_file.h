/// The test file of `zemad_fmt test`: messages, and what must become of each.
///
///   # Logins that fail.
///   > Nov 15 09:47:37 web01 sshd[4121]: Failed password for root from 192.0.2.7 port 50022 ssh2
///   FORMAT Ssh_Failed
///     user = root
///     source_addr = 192.0.2.7
///   CLASS Ssh_Failed
///     severity = WARNING
///
///   > no line of a log
///   UNMATCHED
///
/// A message is all that stands behind "> " on its line. Expectations follow it: FORMAT with a name
/// or UNMATCHED, then CLASS with a name or DISCARDED. The slots below FORMAT are those that the
/// kernel is told of, the slots below CLASS those of the event. What is not expected is not looked
/// at. A value stands as it is, or between double quotes when it is empty, begins or ends with a
/// blank or a double quote or holds control characters: \", \\ and \x1b are known inside. Blank
/// lines and lines that begin with "#" are for the reader.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zem::fmt {

struct SlotText {
  std::string name;
  std::string value;
  bool operator==(const SlotText&) const = default;
};

/// FORMAT or CLASS with its slots. An empty name: UNMATCHED or DISCARDED.
struct Section {
  std::string name;
  std::vector<SlotText> slots;
};

struct TestCase {
  std::size_t line;  ///< of the message, counting from 1
  std::string message;
  std::optional<Section> format;
  std::optional<Section> event;
};

/// A piece of the file: the lines before a message, then the message with its expectations.
struct TestFile {
  struct Part {
    std::string before;  ///< lines for the reader, as they stand
    TestCase test;
  };
  std::vector<Part> parts;
  std::string after;  ///< lines for the reader behind the last test
};

/// The file at `path`. A Failure with kNoInput when it can not be read, with kBadData and
/// "path:line: ..." when a line is not understood.
[[nodiscard]] TestFile read_test_file(const std::string& path);
/// The same from its text; `path` is for messages.
[[nodiscard]] TestFile parse_test_file(std::string_view text, const std::string& path);

/// The file's text, as `read_test_file` takes it.
[[nodiscard]] std::string rendered(const TestFile& file);
/// The lines of one section, the title `word` (FORMAT, CLASS) first; `none` stands for no name.
[[nodiscard]] std::vector<std::string> section_lines(const Section& section, const char* word,
                                                     const char* none);

}  // namespace zem::fmt
