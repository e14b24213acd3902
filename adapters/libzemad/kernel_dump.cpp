#include "adapters/libzemad/kernel_dump.h"

#include <cstdio>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/parse_config.h"
#include "util/slist.h"

namespace zem::frame {
namespace {

void dump_keywords(std::FILE* out) {
  std::fputs("KEYWORDS TABLE\n--------------\n\n", out);
  for (int i = 0; i < ZEMAD_max_keywords; ++i) {
    std::fprintf(out, "KEYWORD[%d]\n", i);
    ZEMAD_PrintAttribute(ZEMAD_KeywordRow(i), i);
  }
}

void dump_list(std::FILE* out, const char* title, const SL_List* list, SL_Visit print) {
  std::fprintf(out, "%s\n\n", title);
  SL_Walk(list, print);
  std::fputs("\n", out);
}

}  // namespace

void dump_kernel() {
  std::FILE* out = ZEMAD_ErrorStart(log::kKernel, log::kNormal);
  if (out == nullptr) return;
  ZEMAD_PrintFileDescr = out;
  dump_keywords(out);
  dump_list(out, "ATTRIBUTES LIST\n---------------", ZEMAD_attribute_list, ZEMAD_PrintAttribute);
  // Deliberate: this underline is one short of its title (Log.KernelDumpShowsTheEventAndTheLists).
  dump_list(out, "ZEMAD_DefaultMapList\n-------------------", ZEMAD_DefaultMapList, ZEMAD_PrintMap);
  dump_list(out, "ZEMAD_ConfigurationList\n-----------------------", ZEMAD_ConfigurationList,
            ZEMAD_PrintConfig);
  dump_list(out, "ZEMAD_ConstantList\n------------------", ZEMAD_ConstantList,
            ZEMAD_PrintAttributeEntry);
  ZEMAD_ErrorEnd(out);
  ZEMAD_PrintFileDescr = nullptr;
}

}  // namespace zem::frame
