#pragma once

#include <QByteArray>

#include "result/sweep_result.h"

namespace vostrand {

/// The sweep's timeline in the trace event format that browsers' tracing pages and their kin show: a row per
/// job slot, a bar per try of a step. Restored runs took no time of this sweep and are left out.
QByteArray TraceJson(const SweepResult& result);

}  // namespace vostrand
