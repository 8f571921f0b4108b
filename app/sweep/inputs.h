#pragma once

#include "sweep/sweep.h"

namespace vostrand {

/// Finds out what the runs are made from, and which of them an earlier sweep has made from the very same.
void LookAtInputs(Sweep& sweep);

/// True when that is not what it was; says so once.
bool HaveInputsChanged(Sweep& sweep);

}  // namespace vostrand
