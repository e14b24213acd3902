/// A set of FORMATs and the messages for it, made from a seed: what every benchmark and the
/// measurements of the whole road work on. FORMATs look like those of a site: some tens of texts
/// for each program, behind the same time stamp, host and process number, with shared beginnings,
/// and one FORMAT for everything else. Messages look like those of a system logger; their hosts are
/// addresses, so that no name service is asked for the origin of an event.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zem::bench {

/// How often each FORMAT occurs among the messages.
enum class Mix {
  kUniform,
  kZipf,  ///< the k-th most frequent one 1/k times as often as the first
};

class Workload {
 public:
  /// `formats` FORMATs, at least 1; the first of the file is the general one.
  explicit Workload(std::size_t formats, std::uint32_t seed = 1);

  /// The format file. Every FORMAT follows the general one and maps each of its variables.
  [[nodiscard]] std::string format_file() const;
  /// The format lines, in file order.
  [[nodiscard]] std::vector<std::string> format_lines() const;
  /// One message of FORMAT `format`, with its newline.
  [[nodiscard]] std::string message(std::size_t format);
  /// `count` messages.
  [[nodiscard]] std::vector<std::string> messages(std::size_t count, Mix mix);

 private:
  struct Format {
    std::string program;
    std::vector<std::string> words;  ///< of the text; "%s" is a variable
  };

  std::size_t pick(std::size_t below) { return random_() % below; }
  std::string new_word();
  const std::string& word() { return vocabulary_[pick(vocabulary_.size())]; }
  std::string value();
  [[nodiscard]] std::vector<std::string> text_like(const Format& other);
  [[nodiscard]] static std::string line_of(const Format& format);

  std::mt19937 random_;
  std::vector<std::string> vocabulary_;
  std::vector<Format> formats_;
};

}  // namespace zem::bench
