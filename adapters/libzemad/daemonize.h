/// Descriptors and the way into the background. Only main calls these: they change the process
/// as a whole.
#pragma once

namespace zem::frame {

/// Opens /dev/null on each of the descriptors 0 to 2 that is closed, so that no file of the daemon
/// ever takes the place of a standard stream.
void fill_standard_descriptors();

/// Closes the descriptors 3 to 127, whatever they are.
void close_inherited_descriptors();

/// Leaves the parent with status 0, also when there could be no child, and returns in the child,
/// whose standard streams are /dev/null. What was printed so far is written out before.
void go_into_background();

}  // namespace zem::frame
