/// The debug dump: what the kernel is about to work with, in readable form.
#pragma once

namespace zem::frame {

/// Appends the keyword table, the current event and the kernel's lists to the destination of
/// KERNEL NORMAL; nothing when it is off or can not be opened.
void dump_kernel();

}  // namespace zem::frame
