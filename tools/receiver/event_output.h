/// Where received events go: standard output, or a file that can be rotated. Lines are collected
/// and written together; whoever reads slowly slows the senders down, nothing is dropped.
#pragma once

#include <string>

#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::receiver {

class EventOutput {
 public:
  /// Takes `fd` over; `name` stands in messages.
  EventOutput(util::UniqueFd fd, std::string name);
  /// Appends to the file; one that does not exist is created, readable by its owner only. Behind a
  /// last line that was cut off a new line begins.
  [[nodiscard]] static util::Result<EventOutput> to_file(const std::string& path);
  [[nodiscard]] static EventOutput to_standard_output();

  /// The lines that wait to be written; whole lines are appended here.
  [[nodiscard]] std::string& lines() { return lines_; }

  /// Empties the file, and drops what waits.
  [[nodiscard]] util::Status clear();

  /// Writes what waits, however long the reader takes; with a clean-up pending it has one more
  /// second.
  [[nodiscard]] util::Status flush();

  /// Opens the file anew, for appending, after somebody has moved it away. The old one stays in use
  /// when that fails. Nothing to do for standard output.
  [[nodiscard]] util::Status reopen();

 private:
  util::UniqueFd fd_;
  std::string name_;
  std::string path_;  ///< empty: standard output
  bool is_regular_ = false;
  std::string lines_;
};

}  // namespace zem::receiver
