#pragma once

#include <string>

#include "sweep/sweep.h"

namespace vostrand {

/// In front of everything that changes a file: why the sweep cannot be, empty when it can. Takes the lock,
/// takes up the jobs of a killed host, reads what an earlier sweep has finished.
std::string WhyRefused(Sweep& sweep);

}  // namespace vostrand
