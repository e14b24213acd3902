/// The messages of logs, one after another, cut as the daemon cuts what it reads: at each newline,
/// and in pieces of 511 bytes where a line is longer. A line behind the last newline of a log,
/// which the daemon would wait with, is a message, too. Memory does not grow with the input.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/line_reader.h"
#include "util/unique_fd.h"

namespace zem::fmt {

struct Message {
  /// Of the line in all inputs together, counting from 1; the pieces of a long line share it.
  long line;
  std::string_view text;  ///< with its newline, and a NUL behind it; a NUL in the log ends it

  /// Without the newline.
  [[nodiscard]] std::string_view content() const {
    return text.substr(0, text.size() - (text.ends_with('\n') ? 1 : 0));
  }
};

class MessageReader {
 public:
  /// Without paths, and for the path "-", standard input.
  explicit MessageReader(std::vector<std::string> paths);

  /// False at the end. The message is good until the next call. A log that can not be read is a
  /// Failure with kNoInput.
  bool next(Message& message);

  /// Bytes read so far, and how many there are in all: 0 when that is not known.
  [[nodiscard]] long bytes_read() const { return bytes_read_; }
  [[nodiscard]] long bytes_total() const { return bytes_total_; }

 private:
  bool open_next();
  bool fill();
  void give_out(Message& message);

  std::vector<std::string> paths_;
  std::size_t opened_ = 0;
  util::UniqueFd input_;
  format::LineReader lines_;
  long line_ = 1;
  bool is_inside_line_ = false;  ///< after a piece that no newline ended
  long bytes_read_ = 0;
  long bytes_total_ = 0;
};

}  // namespace zem::fmt
