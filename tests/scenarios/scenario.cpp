#include "tests/scenarios/scenario.h"

#include <csignal>
#include <cstdlib>

namespace zem::test {

void expect_in_order(const std::string& text, const std::vector<const char*>& parts) {
  std::size_t at = 0;
  for (const char* part : parts) {
    at = text.find(part, at);
    ASSERT_NE(at, text.npos) << part << " is missing or out of order in\n" << text;
  }
}

DaemonProcess::Start Scenario::usual_start() const {
  DaemonProcess::Start start;
  start.arguments = {"-n", "-c", home_.conf_path()};
  start.environment = {{"KORVANE_COMM_DIR", home_.comm_path()}, {"TZ", "UTC"}};
  if (const char* sanitizer = std::getenv("ASAN_OPTIONS"); sanitizer != nullptr)
    start.environment["ASAN_OPTIONS"] = sanitizer;
  return start;
}

DaemonProcess& Scenario::launch(const DaemonProcess::Start& start) {
  daemon_.reset();
  daemon_ = std::make_unique<DaemonProcess>(ZEM_DAEMON, start);
  return *daemon_;
}

DaemonProcess& Scenario::start() {
  launch(usual_start());
  EXPECT_TRUE(is_traced(kWaiting)) << home_.trace();
  return *daemon_;
}

bool Scenario::is_traced(std::string_view text, int times) const {
  return eventually([&] { return count_of(text, home_.trace()) >= times; });
}

std::vector<std::string> Scenario::events_after(std::size_t count) const {
  EXPECT_TRUE(eventually([&] { return home_.events().size() >= count; })) << home_.trace();
  return home_.events();
}

void Scenario::expect_events(const std::vector<std::string>& expected) const {
  (void)eventually([&] { return home_.events() == expected; });
  EXPECT_EQ(home_.events(), expected);
}

bool Scenario::reload() {
  const int before = count_of(kReloaded, home_.trace());
  daemon().send(SIGHUP);
  return is_traced(kReloaded, before + 1);
}

}  // namespace zem::test
