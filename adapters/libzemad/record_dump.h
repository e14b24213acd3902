/// A block of printed records in the error and trace log: while it lives, the record printers write
/// to the destination of one pair of module and severity.
#pragma once

#include <cstdio>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/error.h"

namespace zem::kernel {

class RecordDump {
 public:
  RecordDump(log::Module module, log::Severity severity)
      : stream_(ZEMAD_ErrorStart(module, severity)), previous_(ZEMAD_PrintFileDescr) {
    if (stream_ != nullptr) ZEMAD_PrintFileDescr = stream_;
  }
  RecordDump(const RecordDump&) = delete;
  RecordDump& operator=(const RecordDump&) = delete;
  ~RecordDump() {
    if (stream_ == nullptr) return;
    ZEMAD_PrintFileDescr = previous_;
    ZEMAD_ErrorEnd(stream_);
  }

  /// False when nobody listens: nothing is to be printed then.
  [[nodiscard]] explicit operator bool() const { return stream_ != nullptr; }
  void write(const char* text) const { std::fputs(text, stream_); }
  void write_list(const char* heading, const SL_List* list, SL_Visit print) const {
    write(heading);
    SL_Walk(list, print);
  }

 private:
  std::FILE* stream_;
  std::FILE* previous_;
};

}  // namespace zem::kernel
