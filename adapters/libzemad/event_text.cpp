#include "adapters/libzemad/event_text.h"

#include <algorithm>

namespace zem::kernel {

void EventText::grow(std::size_t bytes) {
  const std::size_t size = EventText::size();
  buffer_.resize(std::max(size + bytes, 2 * buffer_.size()) + kBlockBytes);
  at_ = buffer_.data() + size;
  end_ = buffer_.data() + buffer_.size() - kBlockBytes;
}

}  // namespace zem::kernel
