/// The flush of the cache file: re-sends what it holds, oldest first. The work grows with the size
/// of the file, not with its square: an event that was posted is emptied in its place, and the head
/// of the file is cut off once, at the end and before every pause.
#pragma once

#include <functional>

#include "agent/cache_file.h"
#include "agent/cache_settings.h"

namespace zem::agent {

/// Posts one event, given with its end; as zem_put_event, greater than 0 when it was sent or went
/// back into the cache, 0 when the cache filters held it back, negative when it is nowhere.
using PostEvent = std::function<int(const char* event)>;

/// Posts every complete event that the file, which the caller has locked, holds now, each once.
/// Stops early when an event can be put nowhere (it stays at the top), when another process has
/// got hold of the lock, and for a pending reload or clean-up. Returns the events posted.
int flush_cache(CacheFile& file, const zem_buffer_config& config, const PostEvent& post,
                const PostEvent& put_back);

/// True inside a flush of this process: the file must not be shrunk, and no other flush begins.
[[nodiscard]] bool is_flush_under_way();

}  // namespace zem::agent
