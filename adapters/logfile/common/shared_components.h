/// The components that have no text of their own: one instance of each serves every format and
/// lives to the end of the process.
#pragma once

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/PlusModifier.h"
#include "adapters/logfile/common/StarModifier.h"
#include "adapters/logfile/common/StringComponent.h"
#include "adapters/logfile/common/TimeComponent.h"
#include "adapters/logfile/common/WhitespComponent.h"
#include "adapters/logfile/common/ref.h"

namespace zem::format {

struct SharedComponents {
  Ref<ConstComponent> empty;
  Ref<StringComponent> string;
  Ref<StarModifier<>> star;
  Ref<PlusModifier<>> plus;
  Ref<TimeComponent> time;
  Ref<WhitespComponent> blank;
};

/// Made on first use.
const SharedComponents& shared_components();

}  // namespace zem::format
