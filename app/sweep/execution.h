#pragma once

#include "sweep/sweep.h"

namespace vostrand {

/// Executes the plan in the event loop; every event goes to all that show or keep something. Leaves each
/// run's record and status.
void Execute(Sweep& sweep);

}  // namespace vostrand
