/// The log-file source at work: the set of FORMATs, fed line by line from the FIFO into which the
/// system logger writes, and from the further log files that a poller copies into it.
#pragma once

#include <memory>

#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/event_maker.h"
#include "util/clock.h"
#include "util/unique_fd.h"

class FormatSpec;
class LogPoll;

class SysLogDriver : public LogDriver {
 public:
  /// `index` of nextMsg when the wait ended without a message.
  static constexpr int kNoMessage = -2;

  /// Reads the format file, takes the lock file, opens both ends of the FIFO and starts the poller
  /// when there are sources (ended by a null pointer; null: none). `interval` is in seconds,
  /// `unmatchLogPath` may be null. Whatever fails ends the process with status 1 (reported).
  SysLogDriver(const char* fmtFile, const char* lockFile, const char* fifo, char** sources,
               long interval, const char* unmatchLogPath);
  /// For generation only: reads the format file and writes its class definitions to standard
  /// output. Nothing is opened.
  explicit SysLogDriver(const char* fmtFile);
  ~SysLogDriver() override;

  /// The next line of the FIFO (511 bytes at most, valid until the next call), however long that
  /// takes. Null when the wait has ended without one: a reload or a clean-up is pending, or it is
  /// time to try the server again. A half-read line is kept for the next call.
  [[nodiscard]] const char* getLine();
  /// True when the next getLine is likely not to wait: a whole line was read already, or the FIFO
  /// held more than one read takes.
  [[nodiscard]] bool hasInputAtHand() const;
  /// The FORMAT that matches the next message, with its position in the format file. Null with
  /// `index` -1 when none does, with kNoMessage when getLine has returned null.
  [[nodiscard]] FormatSpec* nextMsg(int& index);
  /// Deliberate: the lock file's descriptor, always readable, so that the frame never waits; the
  /// wait is in getLine (SysLogDriverTest.ReportsTheLockFileToWaitOn).
  [[nodiscard]] int iodesc() const noexcept;
  /// Makes events of the matches of this set.
  [[nodiscard]] zem::event::EventMaker& events() noexcept { return events_; }

 protected:
  std::unique_ptr<LogPoll> poller;
  zem::util::UniqueFd fifoRead;
  zem::util::UniqueFd fifoWrite;
  zem::util::UniqueFd lockFd;

 private:
  void takeLock(const char* lockFile);
  void openFifo(const char* fifo);
  [[nodiscard]] const char* lineAtHand();
  [[nodiscard]] bool waitForInput(zem::util::Milliseconds entered);
  void readInput();

  zem::event::EventMaker events_;
};
