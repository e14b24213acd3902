/// Small steps of the log-file source towards the frame: settings, and the event under
/// construction.
#pragma once

#include "adapters/libzemad/configuration.h"
#include "util/slist.h"

/// The event that SysLogGetEventBuffer asked for last; the frame owns both.
extern AttributeEntry** in_keyword_values;
extern SL_List* in_attribute_list;

/// A setting of the sender configuration, or null; valid until the configuration is read again.
const char* zem_agent_getenvw(const char* key);
/// Asks the frame for a new event and gives it an empty first keyword value; 0, or -1 when the
/// frame refuses (reported) or memory is short.
int SysLogGetEventBuffer();
/// Appends a slot to the event; a null `type` is an empty one. 0, or -1 with nothing appended.
int SysLogMakeAttribute(const char* name, const char* type, const char* value);
