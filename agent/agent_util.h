/// The sender configuration: a file of key=value lines, read into one process-wide store that
/// everybody asks by exact key. Filter lines go to the filter module (agent/event_filter.h)
/// instead. Problems in the file are printed on standard output; memory exhaustion ends the
/// process.
#pragma once

#include <cstdio>

#include "agent/zem_handle.h"
#include "util/slist.h"

/// One setting. Key and value lie in the line that was read, which the key begins.
struct zem_env_pair {
  char* key;
  char* value;
};

struct zem_agent_info {
  SL_List* environment = nullptr;  ///< of zem_env_pair, in file order
  bool is_filter_mode_in = false;  ///< FilterMode begins with "IN": filters select what to send
};

extern zem_agent_info default_agent_info;

/// (Re)reads the file: 0, or 2 when stat fails, 3 for no regular file, 4 when it can not be opened;
/// the store is empty then. A null path means the default file, which may be missing. A relative
/// path means the directory the process was started in.
int common_agent_init(const char* path);
/// One logical line; null at the end of the file (a last line without newline is never seen). Key
/// and value point into the returned line, which the caller releases (util/heap.h); both are null
/// for comments and for lines without "=".
char* read_conf_line(std::FILE* file, char** key, char** value);
/// Value of the first pair with this key, or null. Valid until the next common_agent_init.
const char* zem_agent_getenv(const char* key);
/// The look-up's comparison (an SL_Match): 1 when `pair` is there, has a key and that key is `key`.
int zem_env_search(const void* pair, const void* key);
/// Releases the pair and the line it points into.
void zem_env_delete(zem_env_pair* pair);
/// 1 when the key's value, in upper case, begins with `word`, given in upper case; else 0.
int zem_agent_match(const char* key, const char* word);
/// Splits a copy of the key's value at "," as strtok does: at most 8 fields in one static array,
/// valid until the next call; `count` is 0 when the key is absent.
char** zem_split_entries(const char* key, int* count);
/// Fills the configuration part of the handle; 0, or the errno of the test file that could not be
/// opened.
int common_agent_handle_init(zem_handle* handle, const char* location, const char* fallback);
/// Seconds before a failed server is tried again.
int common_agent_get_retry(const zem_handle* handle);
[[noreturn]] void fatal_memory_error();

namespace zem::agent {

/// True when FilterMode begins with "IN": filters then select what to send.
[[nodiscard]] bool is_filter_mode_in();

}  // namespace zem::agent
