/// What every scenario has: a home, a daemon in it, and waiting for what the daemon does.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/daemon_home.h"
#include "tests/support/daemon_process.h"

namespace zem::test {

/// Written when the daemon begins to wait for a message.
inline constexpr std::string_view kWaiting = "Main loop : receiving event";
inline constexpr std::string_view kReloaded = "Z/EM interface reload complete";
inline constexpr std::string_view kCleanedUp = "Finished Cleaning up, Exiting...";

/// Wants all of the parts in the text, one behind the other.
void expect_in_order(const std::string& text, const std::vector<const char*>& parts);

class Scenario : public testing::Test {
 protected:
  /// In the foreground, with the configuration of the home.
  [[nodiscard]] DaemonProcess::Start usual_start() const;
  DaemonProcess& launch(const DaemonProcess::Start& start);
  /// The usual start; returns when the daemon waits for its first message.
  DaemonProcess& start();
  [[nodiscard]] DaemonProcess& daemon() { return *daemon_; }

  /// Waits until the trace holds `text` at least `times` times.
  [[nodiscard]] bool is_traced(std::string_view text, int times = 1) const;
  /// Waits for the `count` first events and returns all there are then.
  [[nodiscard]] std::vector<std::string> events_after(std::size_t count) const;
  /// Waits until the test file holds these events and no others.
  void expect_events(const std::vector<std::string>& expected) const;
  /// SIGHUP, and the reload that follows.
  [[nodiscard]] bool reload();

  DaemonHome home_;

 private:
  std::unique_ptr<DaemonProcess> daemon_;
};

}  // namespace zem::test
