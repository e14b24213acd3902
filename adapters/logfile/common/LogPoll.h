/// Follows further log files: every interval it reads what has been appended to each of them and
/// writes it, whole line by whole line, into the FIFO, so that all messages reach the adapter by
/// one road. The timer only leaves a note; the pass itself runs where the line reader waits.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <vector>

#include "util/strobj.h"

class LogPoll {
 public:
  /// `sources` ends with a null pointer; the names are copied. Lines that a source holds already
  /// are not passed on; a source that does not exist yet will be, from its first byte. `interval`
  /// is in seconds, `outFd` stays the caller's. Arms the first alarm. A source that exists and can
  /// not be read ends the process (reported).
  LogPoll(char** sources, long interval, int outFd);
  LogPoll(const LogPoll&) = delete;
  LogPoll& operator=(const LogPoll&) = delete;
  /// Cancels the alarm and restores the SIGALRM action that was in force before.
  ~LogPoll();

  /// One pass over all sources while the pipe has room; arms the next alarm.
  void poll();

  /// Runs the pass that the timer asked for since the last call, if it did.
  static void pollWhenDue();

 private:
  struct Source {
    tvStrobj name;
    off_t offset;  ///< up to where the file has been passed on
  };
  class LineWriter;

  void addSource(const char* name);
  /// Bytes that the pipe takes now; 0 when that can not be found out (reported).
  [[nodiscard]] long pipeSpace() const;
  /// Passes on what is new in one source. Returns the room left in the pipe; `congested` is set
  /// when it was not enough.
  [[nodiscard]] long follow(Source& source, long space, bool& congested) const;

  std::vector<Source> sources_;
  long pipeSize_;
  long interval_;
  int outFd_;
  struct sigaction previousAction_ {};
};

/// The SIGALRM handler.
void pollw(int signal);
