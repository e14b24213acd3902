#include "adapters/logfile/common/logfile_utils.h"

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "agent/agent_util.h"

using zem::kernel::AttributeEntryPtr;
using zem::kernel::AttributePtr;

AttributeEntry** in_keyword_values = nullptr;
SL_List* in_attribute_list = nullptr;

const char* zem_agent_getenvw(const char* key) { return zem_agent_getenv(key); }

int SysLogGetEventBuffer() {
  if (ZEMAD_GetNewEventBuffer(&in_keyword_values, &in_attribute_list) != 0) {
    constexpr int kReportedLine = 83;
    ZEMAD_Error(zem::log::kDrvSpec, "logfile_utils", kReportedLine, zem::log::kMinor, 1,
                "ZEMAD_GetNewEventBuffer failed");
    return -1;
  }
  in_keyword_values[0] = ZEMAD_MakeStringAttributeEntry("");
  return in_keyword_values[0] != nullptr ? 0 : -1;
}

int SysLogMakeAttribute(const char* name, const char* type, const char* value) {
  AttributeEntryPtr name_entry(ZEMAD_MakeStringAttributeEntry(name));
  AttributeEntryPtr value_entry(ZEMAD_MakeStringAttributeEntry(value));
  AttributeEntryPtr type_entry(ZEMAD_MakeStringAttributeEntry(type != nullptr ? type : ""));
  if (!name_entry || !value_entry || !type_entry) return -1;

  AttributePtr attribute(
      ZEMAD_MakeAttribute(name_entry.get(), type_entry.get(), value_entry.get()));
  if (!attribute) return -1;
  (void)name_entry.release();  // the attribute has taken them over
  (void)type_entry.release();
  (void)value_entry.release();

  if (SL_InsLast(in_attribute_list, attribute.get()) == 0) return -1;
  (void)attribute.release();
  return 0;
}
