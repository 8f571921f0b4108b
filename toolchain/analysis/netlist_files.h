#pragma once

#include <string>

#include "analysis/routed_design.h"

namespace toolchain {

/// The names under which the analyser knows a design: cells "u<index>", their outputs' nets "n<index>", ports
/// "p<index of the pad>". None of the user's names gets into its files, so none needs quoting.
std::string CellName(std::size_t cell);
std::string PortName(std::size_t cell);

/// A routed design for the analyser, each the text of one file.
std::string CellLibrary(const RoutedDesign::CellDelays& delays);  ///< Liberty.
std::string StructuralNetlist(const RoutedDesign& design);        ///< Verilog, module "design".
std::string WireDelays(const RoutedDesign& design);               ///< SDF.

}  // namespace toolchain
