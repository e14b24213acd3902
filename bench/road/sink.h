/// Where a measured program sends its events: takes them, as cheaply as can be, and counts them.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include "bench/road/event_counter.h"
#include "util/unique_fd.h"

namespace zem::bench {

class Sink {
 public:
  Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  virtual ~Sink() = default;

  /// The events that have arrived. May be asked from another thread than the one that receives.
  [[nodiscard]] virtual std::uint64_t count() = 0;
};

/// Listens on loopback and takes what comes over any number of connections, one after the other,
/// in a thread of its own.
class TcpSink : public Sink {
 public:
  /// `record`, when it is not empty, is a file that receives the texts of the events.
  TcpSink(EventForm form, const std::string& record);
  ~TcpSink() override;

  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] std::uint64_t count() override { return events_; }

 private:
  void serve();
  void drain(int connection);

  struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };

  EventForm form_;
  std::unique_ptr<std::FILE, CloseFile> record_;
  util::UniqueFd listener_;
  util::UniqueFd stop_read_;  ///< readable at its end: the sink goes
  util::UniqueFd stop_write_;
  int port_ = 0;
  std::atomic<std::uint64_t> events_ = 0;
  std::thread thread_;
};

/// Reads the file that a program writes, from its beginning, whenever it is asked.
class FileSink : public Sink {
 public:
  FileSink(EventForm form, std::string path) : counter_(form), path_(std::move(path)) {}

  [[nodiscard]] std::uint64_t count() override;

 private:
  EventCounter counter_;
  std::string path_;
  util::UniqueFd file_;
  std::uint64_t events_ = 0;
};

}  // namespace zem::bench
