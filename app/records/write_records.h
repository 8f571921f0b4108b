#pragma once

#include "result/sweep_result.h"

namespace vostrand {

/// Writes the records that were asked for, all from the one result. What cannot be written is added to its
/// `missing`; its `exit_code` is set, with that counted in.
void WriteRecords(SweepResult& result);

}  // namespace vostrand
