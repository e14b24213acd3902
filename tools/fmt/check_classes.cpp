#include "tools/fmt/check_classes.h"

#include <algorithm>
#include <utility>

#include "adapters/libzemad/parse_config.h"
#include "tools/fmt/class_checks.h"
#include "tools/fmt/class_file.h"

namespace zem::fmt {
namespace {

/// The kernel goes on behind a fault in its own way, so its messages are told apart by their order
/// only; what is left of them goes with the last fault.
void add_kernel_words(std::vector<Finding>& findings, const std::vector<std::string>& messages) {
  if (findings.empty()) {
    findings.push_back({Code::kClassRefused, {}, "the kernel refuses this file", "see above", {}});
  }
  for (std::size_t i = 0; i < messages.size(); ++i) {
    findings[std::min(i, findings.size() - 1)].engine.push_back(messages[i]);
  }
}

void check_last_newline(const SourceText& source, Findings& findings) {
  if (source.text().empty() || source.text().ends_with('\n')) return;
  findings.add(Code::kNoLastNewline, {source.text().size(), 0},
               "the last line has no newline, and its last word is not read",
               "end it with a newline");
}

/// Without any class there is nothing to compare with the FORMATs.
void check_any_class(Findings& findings) {
  if (!findings.empty()) return;
  findings.add(Code::kNoClasses, {}, "the file holds no CLASS: every event is discarded",
               "generate the classes: zemad_fmt cds FMT -o CDS");
}

}  // namespace

CheckedClasses::CheckedClasses(const std::string& path, CheckedFormats& formats)
    : source_(SourceText::read(path)), outline_(read_class_outline(source_)), findings_(source_) {
  take_verdict(path);
  check_last_newline(source_, findings_);
  if (outline_.classes.empty()) {
    check_any_class(findings_);
    return;
  }
  ClassContext context{outline_, formats.model(), event_shapes(formats.model()), findings_,
                       formats.findings()};
  for (const ClassCheck check : class_checks()) check(context);
}

/// The kernel decides whether there are errors at all.
void CheckedClasses::take_verdict(const std::string& path) {
  const ClassReading reading = read_classes(path);
  ZEMAD_KernelCleanup();
  if (reading.is_accepted) return;
  add_kernel_words(outline_.findings, reading.messages);
  for (Finding& finding : outline_.findings) findings_.add(std::move(finding));
}

}  // namespace zem::fmt
