#include "tests/support/daemon_home.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>

#include "tests/support/file_time.h"
#include "util/expect.h"
#include "util/unique_fd.h"

namespace zem::test {
namespace {

constexpr const char* kLineFormat = "FORMAT Line\n%s*\nmsg $1\nEND\n";
constexpr const char* kLineClass =
    "CLASS Line\n"
    "  SELECT\n"
    "    1: ATTR(=,\"_event_id\"), VALUE(=,\"0\");\n"
    "    2: ATTR(=,\"msg\");\n"
    "  MAP\n"
    "    msg = $V2;\n"
    "END\n";

std::string trace_everything(const std::string& destination) {
  std::string text = "# everything but dumps and the trace of functions\n";
  for (const char* module : {"ERROR", "UTILS", "PARSER", "KERNEL", "SELECT", "FETCH", "MAP",
                             "DRIVER", "DRVSPEC", "ZEMIO"}) {
    for (const char* severity : {"MINOR", "MAJOR", "FATAL", "LOW"})
      text.append(module).append(" ").append(severity).append(" ").append(destination) += '\n';
  }
  return text;
}

std::string local_host_name() {
  char name[64] = "";
  util::expect(::gethostname(name, sizeof name) == 0, "the host has a name of less than 64 bytes");
  return name;
}

}  // namespace

DaemonHome::DaemonHome() : next_mtime_(::time(nullptr)) {
  std::filesystem::create_directory(dir_ / "etc");
  std::filesystem::create_directory(comm_path());
  util::expect(::mkfifo(fifo_path().c_str(), 0600) == 0, "the FIFO can be made");
  configure("TestMode=YES");
  configure("ServerLocation=" + dir_ / "events");
  configure("BufEvtPath=" + dir_ / "cache");
  configure("UnmatchLog=" + dir_ / "unmatched");
  rewrite(err_path(), trace_everything(dir_ / "trace"));
  rewrite(cds_path(), kLineClass);
  rewrite(fmt_path(), kLineFormat);
}

std::string DaemonHome::comm_file(const char* kind) const {
  return comm_path() + "/.zemad_logfile." + kind + "." + local_host_name() + ".default";
}

void DaemonHome::configure(std::string_view line) const {
  std::ofstream(conf_path(), std::ios::app) << line << '\n';
}

void DaemonHome::rewrite(const std::string& path, std::string_view content) {
  std::ofstream(path, std::ios::binary) << content;
  set_modified(path, ++next_mtime_);
}

void DaemonHome::log(std::string_view bytes) const {
  const util::UniqueFd fifo(::open(fifo_path().c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  const ssize_t written = ::write(fifo.get(), bytes.data(), bytes.size());
  util::expect(written == static_cast<ssize_t>(bytes.size()), "the daemon reads the FIFO");
}

std::vector<std::string> DaemonHome::events() const {
  constexpr std::string_view kTerminator = "END\n\x01\n";
  std::vector<std::string> events;
  const std::string bytes = event_bytes();
  std::string_view rest = bytes;
  for (auto end = rest.find(kTerminator); end != rest.npos; end = rest.find(kTerminator)) {
    const std::string_view event = rest.substr(0, end);
    events.emplace_back(event.substr(event.find_first_not_of('\n')));
    rest.remove_prefix(end + kTerminator.size());
  }
  return events;
}

int DaemonHome::lock_holder() const {
  const std::string text = read_file(lock_path());
  return text.empty() ? 0 : std::stoi(text);
}

int count_of(std::string_view needle, std::string_view text) {
  int count = 0;
  for (auto at = text.find(needle); at != text.npos; at = text.find(needle, at + needle.size()))
    ++count;
  return count;
}

}  // namespace zem::test
