#pragma once

#include <string>

namespace toolchain {

/// What par is asked for.
struct ParRequest {
  int effort = 5;         ///< -l
  int time_units = 15;    ///< -i
  int seed = 1;           ///< -t, the cost table
  bool cleanups = false;  ///< -c was given.
  std::string options;    ///< All of them as given, for the report.

  std::string design;
  std::string preferences;

  std::string row_name;  ///< Of the result: the name of the output folder, or level_costtable.
  std::string netlist;   ///< The output design, .ncd
  std::string pins;      ///< .pad
  std::string report;    ///< .par
  std::string folder;    ///< To make for the first two; empty when there is none.
};

/// Reads par's command line:
///
///     par [-f OPTIONS] [-l N] [-i N] [-n 1] [-t N] [-s 1] [-c N] DESIGN OUT PREFS
///
/// OUT is a folder "<folder>/R.dir", for R.dir/R.ncd, R.dir/R.pad and <folder>/R.par, or a design
/// "<name>.ncd".
ParRequest ReadParCommandLine(int argc, char** argv);

}  // namespace toolchain
