/// The frame's side of the driver contract: starts, reloads and stops the source, waits on its
/// descriptors, keeps the queue of events that it produced, and answers the kernel's questions
/// about the current event. The five ZEMAD_Spec functions are the contract: the one upward call of
/// the house, supplied by the source (a test supplies a fake).
#pragma once

#include "adapters/libzemad/configuration.h"
#include "util/fd_set.h"
#include "util/slist.h"

// The contract ------------------------------------------------------------------------------------

/// Sets the source up; negative on failure.
int ZEMAD_SpecDriverInit();
/// Re-reads its configuration; negative on failure.
int ZEMAD_SpecDriverReload();
/// Releases the source; negative on failure. May be called again when nothing is left.
int ZEMAD_SpecDriverCleanup();
/// Clears the set and marks the descriptors to wait on.
void ZEMAD_SpecGetReadFds(zem::util::FdSet* set);
/// Reads input and queues zero or more events; negative on failure. Returns 0 without an event when
/// a pending reload or clean-up ended its wait.
int ZEMAD_SpecGetEvent();

// A source that reads more than one message at a time says so, and the events of all of them leave
// the house together, in one system call instead of many. The others need not care.

/// Non-zero when the source has input at hand, read or sure to be there: the frame does not wait
/// before it asks for the next event, and keeps what it has to send for company. Set when
/// ZEMAD_SpecGetEvent returns, 0 at the start.
extern int ZEMAD_InputAtHand;
/// Called by such a source before it waits for input: everything that was kept leaves now.
void ZEMAD_AboutToWait();

// The frame ---------------------------------------------------------------------------------------

inline constexpr int ZEMAD_max_keywords = 1;
inline constexpr int kEventQueueMax = 100;
/// Lets the wait be skipped (0) for drivers that poll.
extern int ZEMAD_use_select;
/// The current event's attributes, of Attribute; null between events.
extern SL_List* ZEMAD_attribute_list;

/// All log under the module DRIVER. Init and reload end the process when the source fails.
int ZEMAD_DriverInit();
int ZEMAD_DriverReload();
int ZEMAD_DriverCleanup();

/// Descriptors of `set` that are readable (0 on time-out), -1 on failure, an interruption included;
/// a negative time-out waits without end.
int ZEMAD_WaitEvent(zem::util::FdSet* set, long seconds);
int ZEMAD_GetEvent(zem::util::FdSet* set);

int ZEMAD_EventBufferInit();
/// 0 while there is room for another event, else -1.
int ZEMAD_CheckBuffer();
/// Appends an entry and hands out its keyword values (ZEMAD_max_keywords of them, all null) and its
/// empty attribute list; the queue owns both. -1 when full or out of memory.
int ZEMAD_GetNewEventBuffer(AttributeEntry*** values, SL_List** attributes);
/// Makes the oldest event current; -1 when there is none.
int ZEMAD_GetNextEvent();
/// Releases the current event.
int ZEMAD_DiscardEvent();
int ZEMAD_FreeEventBuffer();

int ZEMAD_GetKeywordIndex(const char* name);
/// The keyword's row, or null (reported) outside the table. Row 0 without a value gets the varbind
/// text first: the whole list of the event's attributes.
Attribute* ZEMAD_GetAttributeByKeyword(int index);
/// First attribute of the event, else first keyword row, whose name equals (1), begins with (2) or
/// ends with (3) the text of `entry`; null when none does.
Attribute* ZEMAD_GetAttributeByName(int mode, const AttributeEntry* entry);
int ZEMAD_DrvCheckEqualAttribute(const Attribute* attribute, const char* text);
int ZEMAD_DrvCheckBeginAttribute(const Attribute* attribute, const char* text);
int ZEMAD_DrvCheckEndAttribute(const Attribute* attribute, const char* text);
/// Walk callback: appends one attribute to the varbind text.
int ZEMAD_BuildVarbindKeyword(void* attribute, int position);
/// The row itself, without the varbind text being made: for the debug dump.
Attribute* ZEMAD_KeywordRow(int index);
