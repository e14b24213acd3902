/// The rule kernel at the tool's service: a class file, and one event at a time that goes the way
/// it goes in the daemon, from the match to the event text.
#pragma once

#include <string>

#include "adapters/logfile/common/event_slots.h"

class LogDriver;

namespace zem::fmt {

/// The kernel with the classes of a file. One at a time.
class Kernel {
 public:
  /// With the settings of a configuration file, whose path may be empty. A Failure when a file can
  /// not be read or used.
  explicit Kernel(const std::string& class_path, const std::string& setting_path = "");
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;
  ~Kernel();
};

/// The event of the last match of a FORMAT, classified. While it lives the kernel's per-event lists
/// (adapters/libzemad/kernel.h) can be read. One at a time, and only with a Kernel.
class KernelEvent {
 public:
  KernelEvent(const FormatSpec& spec, int index, const format::LocalHost& host);
  KernelEvent(const KernelEvent&) = delete;
  KernelEvent& operator=(const KernelEvent&) = delete;
  ~KernelEvent();

  /// Null when the event is discarded.
  [[nodiscard]] const char* class_name() const { return class_name_; }
  /// The event text, "...;END" and a newline; null when the event is discarded, or refused because
  /// it grows too long. Good until the next event.
  [[nodiscard]] const char* text() const { return text_; }

 private:
  const char* class_name_;
  const char* text_ = nullptr;
};

/// Name and address of this host, as the daemon would find them. The look-up, which may take long,
/// is only made when some FORMAT of `set` has a DEFAULT slot.
class ThisHost {
 public:
  explicit ThisHost(const LogDriver& set);
  [[nodiscard]] format::LocalHost view() const { return {name_.c_str(), address_.c_str()}; }

 private:
  std::string name_;
  std::string address_ = "???";
};

}  // namespace zem::fmt
