/// The output side: writes the chosen class and its slots as one line of event text and hands it
/// to the event client.
#pragma once

#include <cstddef>

int ZEMAD_ZemIoInit();
int ZEMAD_ZemIoCleanup();
int ZEMAD_ZemIoReload();

/// Formats and sends the current event; 0 when the whole text was accepted, -1 otherwise.
int ZEMAD_SendEvent(const char* class_name);
/// Writes the event text into the text buffer; 0, or 1, 2, 4 as the reason why not.
int ZEMAD_FormatEvent(const char* class_name);
/// Event texts stay shorter: EventMaxSize, or 0 while the output side is not initialised.
std::size_t ZEMAD_EventLimit();
/// The text that ZEMAD_FormatEvent made last.
const char* ZEMAD_EventText();
/// `text` as it goes into an event: itself when nothing needs quoting, else a quoted copy that is
/// valid until the next call.
const char* ZEMAD_quote_string(const char* text);

/// Hands `text` to the client, making the client's handle first when there is none (the process
/// ends when it can not be made); the bytes that the client accepted.
int zem_agent_send(const char* text);
/// Destroys the client's handle, if there is one.
void zem_agent_cleanup();
