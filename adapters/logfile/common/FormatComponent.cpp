// A piece is turned into a component by its first characters:
//
//   "%s", "%s*", "%s+", "%12s*"   a word variable (StringComponent::create)
//   "%t"                          a time variable (TimeComponent::create)
//   " "                           the shared blank
//   anything else                 a constant, "%", "%d" and a tab included
#include "adapters/logfile/common/FormatComponent.h"

#include <cstdio>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/StringComponent.h"
#include "adapters/logfile/common/TimeComponent.h"
#include "adapters/logfile/common/format_report.h"
#include "adapters/logfile/common/ref.h"
#include "adapters/logfile/common/shared_components.h"
#include "util/expect.h"

using zem::format::make_counted;
using zem::format::shared_components;

void FormatComponent::init() { shared_components(); }

FormatComponent* FormatComponent::create(const char* piece) {
  const std::string_view text = piece;
  if (text.size() > 1 && text.front() == '%') {
    const std::size_t letter = text.find_first_not_of("0123456789", 1);
    if (letter != std::string_view::npos && text[letter] == 's') {
      return StringComponent::create(piece);
    }
    if (letter != std::string_view::npos && text[letter] == 't') {
      return TimeComponent::create(piece);
    }
  }
  if (text == " ") return shared_components().blank.get();
  return make_counted<ConstComponent>(piece);
}

ConstComponent* FormatComponent::emptyConst() { return shared_components().empty.get(); }

ConstComponent* FormatComponent::lookahead(tvList<FormatComponent*>& /*list*/,
                                           int /*index*/) const {
  return emptyConst();
}

FormatComponent::~FormatComponent() {
  zem::util::expect(refcnt_ == 0, "a format component is destroyed while referenced");
}

const char* FormatComponent::fmtRep() const { return getString(); }

void FormatComponent::dbgdump() const { std::fputs(fmtRep(), stdout); }

void FormatComponent::error(const char* msg, const char* text) {
  efcn(kReportError, "%s `%s'\n", msg, text);
}
