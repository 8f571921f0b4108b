#pragma once

namespace vostrand {

/// Memory that this machine could give to new processes without swapping, in KiB; LONG_MAX when it does not
/// tell.
long FreeMemoryKib();

}  // namespace vostrand
