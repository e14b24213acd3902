#include "adapters/logfile/common/driver_logfile.h"

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <numeric>
#include <string>

#include "adapters/libzemad/command_line.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/frame.h"
#include "adapters/libzemad/main_loop.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/zem_io.h"
#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/line_reader.h"
#include "agent/agent_comm.h"
#include "tests/support/call_tracer.h"
#include "tests/support/daemon_home.h"
#include "tests/support/fake_resolver.h"
#include "tests/support/format_set.h"
#include "tests/support/loopback.h"
#include "tests/support/table.h"
#include "tests/support/temp_dir.h"

namespace {

using testing::ElementsAre;

struct EventCase {
  const char* name;
  const char* formats;
  const char* message;
  const char* slots;
};

class GenEvent : public testing::TestWithParam<EventCase> {
 protected:
  GenEvent() : scope_(resolver_) {
    resolver_.hosts = {{"mailhost", "192.0.2.7"}};
    local_host = "hostA";
    local_host_ip_addr = "192.0.2.1";
    ZEMAD_EventBufferInit();
  }
  ~GenEvent() override {
    while (ZEMAD_FreeEventBuffer() == 0) continue;
  }

  /// Name and value of every slot of the oldest event.
  static std::string dump() {
    std::string text;
    ZEMAD_GetNextEvent();
    for (const Attribute* slot : zem::util::sl_items<Attribute>(ZEMAD_attribute_list)) {
      text.append(text.empty() ? "" : " ").append(ZEMAD_AttributeEntryValueToString(slot->Name));
      text.append("=").append(ZEMAD_AttributeEntryValueToString(slot->Value));
    }
    ZEMAD_DiscardEvent();
    return text;
  }

  zem::test::FakeResolver resolver_;
  zem::util::ScopedDouble<zem::util::Resolver> scope_;
};

TEST_P(GenEvent, FillsTheSlots) {
  zem::test::FormatSet set(GetParam().formats);
  set.orderFmts();
  int index = -1;
  FormatSpec* spec = set.bind(GetParam().message, index);
  ASSERT_NE(spec, nullptr);
  EXPECT_EQ(genEvent(spec, index), 0);
  EXPECT_EQ(dump(), GetParam().slots);
}

const EventCase kEventCases[] = {
    {"OfVariables", "FORMAT F\n%s %s*\na $1\nb $2\nEND\n", "one two three",
     "_event_id=0 a=one b=two three"},
    {"OfAVariableThatCapturedNothing", "FORMAT F\n%s %s*\na $2\nEND\n", "one ", "_event_id=0 a="},
    {"WithThePositionInTheFile",
     "FORMAT F\n%s\na $1\nEND\nFORMAT G\ng %s\nb $1\nEND\nFORMAT H\nh\nEND\n", "g x",
     "_event_id=1 b=x"},
    {"ButLeavesConstantsAndPrintfToTheKernel",
     "FORMAT F\n%s\na $1\nb WARNING\nc PRINTF(\"%s\", a)\nseverity DEFAULT\nEND\n", "x",
     "_event_id=0 a=x"},
    {"HostnameDefaultIsTheLocalHost", "FORMAT F\n%s\nhostname DEFAULT\nEND\n", "x",
     "_event_id=0 hostname=hostA"},
    {"OriginDefaultIsTheLocalAddress", "FORMAT F\n%s\norigin DEFAULT\nEND\n", "x",
     "_event_id=0 origin=192.0.2.1"},
    {"OriginDefaultFollowsTheHostOfTheMessage", "FORMAT F\n%s\norigin DEFAULT\nhostname $1\nEND\n",
     "mailhost", "_event_id=0 origin=192.0.2.7 hostname=mailhost"},
    {"OriginOfAnUnknownHost", "FORMAT F\n%s\nhostname $1\norigin DEFAULT\nEND\n", "nowhere",
     "_event_id=0 hostname=nowhere origin=???"},
    {"OriginDoesNotFollowAConstantHost", "FORMAT F\n%s\nhostname mailhost\norigin DEFAULT\nEND\n",
     "x", "_event_id=0 origin=192.0.2.1"},
    {"OriginFollowsAHostThatReplacesAnInheritedDefault",
     "FORMAT F\n%s\nhostname DEFAULT\norigin DEFAULT\nEND\n"
     "FORMAT G FOLLOWS F\non %s\nhostname $1\nEND\n",
     "on mailhost", "_event_id=1 hostname=mailhost origin=192.0.2.7"},
};
INSTANTIATE_TEST_SUITE_P(DriverLogfile, GenEvent, testing::ValuesIn(kEventCases),
                         zem::test::kRowName);

/// The daemon's stages in this process, where a sanitizer sees what is left behind.
class DriverLogfileInProcess : public testing::Test {
 protected:
  DriverLogfileInProcess() : before_(std::filesystem::current_path()) {
    ::setenv("KORVANE_COMM_DIR", home_.comm_path().c_str(), 1);
  }
  ~DriverLogfileInProcess() override {
    ::unsetenv("KORVANE_COMM_DIR");
    std::filesystem::current_path(before_);
  }

  void start() {
    ZEMAD_Daemon = 0;
    const zem::frame::CommandLine line{.program = "zemad_logfile",
                                       .config_file = home_.conf_path()};
    ASSERT_TRUE(zem::frame::publish(zem::frame::find_places(line, nullptr)).ok());
    ASSERT_EQ(zem_agent_init(ZEMAD_GlobalConfigFile), 0);
    ZEMAD_ErrorInit();
    ASSERT_EQ(ZEMAD_KernelInit(), 0);
    ASSERT_EQ(ZEMAD_ZemIoInit(), 0);
    ASSERT_EQ(ZEMAD_DriverInit(), 0);
  }

  zem::test::DaemonHome home_;
  zem::util::FdSet set_;

 private:
  std::filesystem::path before_;
};

TEST_F(DriverLogfileInProcess, ServesTheFrameFromTheStartToTheCleanUp) {
  start();
  home_.log("one\n");
  zem::frame::run_pass(set_);
  EXPECT_THAT(home_.events(), ElementsAre("Line;msg=one;"));
  zem::frame::reload();
  home_.log("two\n");
  zem::frame::run_pass(set_);
  EXPECT_THAT(home_.events(), ElementsAre("Line;msg=two;"));
  zem::frame::clean_up();
  zem::frame::clean_up();
  ZEMAD_SpecGetReadFds(&set_);
  EXPECT_TRUE(set_.empty());
  EXPECT_EQ(ZEMAD_SpecGetEvent(), 0);
}

/// Calls of `work` by number, those between two calls of getppid.
std::map<long, int> count_calls(const std::function<void()>& work) {
  std::map<long, int> calls;
  bool is_counting = false;
  EXPECT_TRUE(zem::test::run_stopping(work, [&](const zem::test::SystemCall& call) {
    if (call.number == SYS_getppid) {
      is_counting = !is_counting;
    } else if (is_counting) {
      ++calls[call.number];
    }
  }));
  return calls;
}

TEST_F(DriverLogfileInProcess, NeedsThreeSystemCallsAtMostForEach2KiBOfInputThatWaits) {
  constexpr int kLines = 300;
  constexpr int kBytes = kLines * 64;
  zem::test::LoopbackPort server;
  server.listen();
  home_.rewrite(home_.err_path(), "# nobody listens\n");
  home_.rewrite(home_.conf_path(), "ServerLocation=127.0.0.1\nServerPort=" + server.port_text() +
                                       "\nConnectionMode=co\nBufEvtPath=" + (home_ / "cache") +
                                       "\n");
  std::map<long, int> calls = count_calls([&] {
    start();
    zem_agent_send("");
    home_.log("warm\n");
    zem::frame::run_pass(set_);
    std::string input;
    for (int i = 0; i < kLines; ++i) input += std::string(63, 'x') + "\n";
    home_.log(input);
    ::getppid();
    do {
      zem::frame::run_pass(set_);
    } while (ZEMAD_InputAtHand != 0);
    ::getppid();
  });
  EXPECT_EQ(calls[SYS_read], kBytes / static_cast<int>(zem::format::LineReader::kReadBytesMax) + 1);
  EXPECT_EQ(calls[SYS_ppoll], 2) << "the frame's and the line reader's, before the first line";
  EXPECT_EQ(calls[SYS_sendto], 1) << "all events, in one call";
  const auto all = std::accumulate(calls.begin(), calls.end(), 0,
                                   [](int sum, const auto& each) { return sum + each.second; });
  EXPECT_LE(all, 3 * (kBytes / 2048));
}

TEST(DriverLogfile, ADirectoryThatCanNotBeEnteredEndsTheProcess) {
  ZEMAD_GlobalConfigDir[0] = '\0';  // of -c /x.conf
  EXPECT_EXIT(ZEMAD_SpecDriverInit(), testing::ExitedWithCode(1), "");
}

TEST(DriverLogfile, AHostNameOf64BytesEndsTheProcess) {
  std::string(".").copy(ZEMAD_GlobalConfigDir, 2);
  ZEMAD_Daemon = 0;
  zem::test::FakeResolver resolver;
  resolver.local_name = std::string(64, 'h');
  const zem::util::ScopedDouble<zem::util::Resolver> scope(resolver);
  EXPECT_EXIT(ZEMAD_SpecDriverInit(), testing::ExitedWithCode(1), "");
}

TEST(DriverLogfile, FilesAreToldApartByHostAndSourceId) {
  ::unsetenv("KORVANE_COMM_DIR");
  ::unsetenv("ZEMAD_LOGFILE_ID");
  EXPECT_EQ(zem::source::file_paths("h").fifo, "/tmp/.korvane/.zemad_logfile.fifo.h.default");
  EXPECT_EQ(zem::source::file_paths("h").lock, "/tmp/.korvane/.zemad_logfile.lock.h.default");
  ::setenv("KORVANE_COMM_DIR", "/comm", 1);
  ::setenv("ZEMAD_LOGFILE_ID", "two", 1);
  EXPECT_EQ(zem::source::file_paths("h.example").fifo, "/comm/.zemad_logfile.fifo.h.example.two");
  ::unsetenv("KORVANE_COMM_DIR");
  ::unsetenv("ZEMAD_LOGFILE_ID");
}

TEST(DriverLogfile, PollIntervalIsANumberFromOneOn) {
  const zem::test::TempDir dir;
  for (const auto& [setting, interval_s] : {std::pair{"# nothing", 120L},
                                            {"PollInterval=7", 7L},
                                            {"PollInterval=30s", 30L},
                                            {"PollInterval=0", 120L},
                                            {"PollInterval=-5", 120L},
                                            {"PollInterval=soon", 120L},
                                            {"PollInterval=", 120L}}) {
    ASSERT_EQ(zem_agent_init(dir.write("conf", std::string(setting) + "\n").c_str()), 0);
    EXPECT_EQ(zem::source::poll_interval_s(), interval_s) << setting;
  }
}

TEST(DriverLogfile, EmptyFieldsOfLogSourcesVanish) {
  const zem::test::TempDir dir;
  ASSERT_EQ(zem_agent_init(dir.write("conf", "LogSources=,a,,b c,\n").c_str()), 0);
  EXPECT_THAT(zem::source::log_sources(), ElementsAre("a", "b c"));
  ASSERT_EQ(zem_agent_init(dir.write("conf", "LogSources=\n").c_str()), 0);
  EXPECT_THAT(zem::source::log_sources(), ElementsAre());
}

}  // namespace
