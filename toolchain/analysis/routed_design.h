#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "analysis/design_ports.h"

namespace toolchain {

/// A routed design as timing analysis sees it. All delays are in ps.
struct RoutedDesign {
  enum class CellKind { input, output, lut, flip_flop };  ///< The first two are pads.

  struct Cell {
    CellKind kind = CellKind::lut;
    std::string name;    ///< Of the port, or of the net that the cell drives.
    std::string place;   ///< Where on the device: "X8/Y9/SLICE5".
    bool logic = false;  ///< Its LUT does more than pass on one input: a level of logic.
  };

  struct Arc {
    std::size_t from = 0;  ///< Index of the driving cell.
    std::size_t to = 0;    ///< Of the driven one, at its input `pin`.
    std::string pin;       ///< "I0" to "I3", "CLK", or "I" of a pad.
    int delay = 0;
  };

  struct CellDelays {
    std::array<int, 4> lut = {};    ///< By input.
    std::array<int, 4> setup = {};  ///< Of a flip-flop, through its LUT.
    int hold = 0;
    int clock_to_out = 0;
    int pad_out = 0;
  };

  struct Used {
    int used = 0;
    int available = 0;
  };

  int unrouted = 0;  ///< Connections; a design with any is not taken.
  Ports ports;
  std::vector<Cell> cells;
  std::vector<Arc> arcs;
  CellDelays delays;
  std::map<std::string, double>
      engine_mhz;  ///< What the engine itself finds for each clock, with ideal clocks.
  std::map<std::string, Used> utilization;  ///< By kind of place.
  std::string engine;                       ///< Its name and version.
};

/// Puts together the routed netlist that the engine wrote, its report and what the hook found out: the bytes
/// of the output design. They depend on nothing but the design, the options and the engine.
std::string MakeRoutedFile(const std::string& netlist, const std::string& report, const std::string& timing,
                           const Ports& ports);

/// The number of connections without a route in what the hook found out.
int UnroutedIn(const std::string& timing);

/// Reads an output design (named `path` in errors). A design that is not routed is an error.
RoutedDesign ParseRoutedFile(const std::string& text, const std::string& path);

}  // namespace toolchain
