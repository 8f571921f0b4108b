#pragma once

#include <chrono>
#include <string>

#include "par/command_line.h"

namespace toolchain {

/// What the engine left of a complete run, each the text of a file.
struct EngineFiles {
  std::string netlist;  ///< Routed.
  std::string report;
  std::string timing;  ///< What the hook behind the router found out.
};

/// What the effort levels 1 to 5 stand for, in words.
const char* EffortInWords(int level);

/// The time that the engine has.
std::chrono::seconds TimeLimit(const ParRequest& request);

/// Places and routes the design. Fails when the engine does, when it leaves a connection without a route, and
/// at the time limit: on a design that cannot be routed the engine would go on for ever.
EngineFiles PlaceAndRoute(const ParRequest& request);

}  // namespace toolchain
