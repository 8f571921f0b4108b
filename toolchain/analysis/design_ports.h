#pragma once

#include <QJsonArray>
#include <string>
#include <vector>

#include "common/preferences.h"

namespace toolchain {

/// One bit of a design's ports.
struct Port {
  std::string name;  ///< "sample[3]"; plain for a port of one bit.
  bool is_input = false;
  bool is_clock = false;          ///< Flip-flops are clocked by it.
  std::vector<std::string> nets;  ///< All names of the net at this port.
};

using Ports = std::vector<Port>;

/// The ports of the synthesised netlist in `text` (a design file, named `path` in errors). Fails on what is
/// no netlist, and on clocks and ports that the device has nothing for.
Ports PortsOfDesign(const std::string& text, const std::string& path);

QJsonArray ToJson(const Ports& ports);
Ports PortsFromJson(const QJsonArray& array);

/// A preference with what its names stand for, as indices of ports.
struct BoundPreference {
  Preference preference;
  std::size_t clock = 0;
  std::vector<std::size_t> ports;  ///< Of a setup or output time.
};

/// Finds the ports and clocks that the preferences name; a name that is not there is an error in its
/// statement.
std::vector<BoundPreference> Bind(const std::vector<Preference>& preferences, const Ports& ports);

}  // namespace toolchain
