#pragma once

#include <CLI/CLI.hpp>
#include <memory>

#include "options/host_options.h"

namespace vostrand {

/// The host options as the parser library knows them, grouped, bound to where their values go, with examples.
std::unique_ptr<CLI::App> MakeParser(HostOptions& options);

}  // namespace vostrand
