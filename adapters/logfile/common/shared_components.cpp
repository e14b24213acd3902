#include "adapters/logfile/common/shared_components.h"

namespace zem::format {

namespace {

SharedComponents make_shared_components() {
  const Ref<StarModifier<>> star(make_counted<StarModifier<>>("%s*"));
  return {Ref(make_counted<ConstComponent>("")),
          Ref(make_counted<StringComponent>("%s")),
          star,
          Ref(make_counted<PlusModifier<>>("%s+", 0, star.get())),
          Ref(make_counted<TimeComponent>()),
          Ref(make_counted<WhitespComponent>())};
}

}  // namespace

const SharedComponents& shared_components() {
  static const SharedComponents components = make_shared_components();
  return components;
}

}  // namespace zem::format
