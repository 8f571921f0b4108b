#include "analysis/design_ports.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <map>
#include <set>

#include "common/failure.h"
#include "common/text.h"

namespace toolchain {
namespace {

using NetNames = std::map<int, std::vector<std::string>>;  // By the netlist's number of the net.

constexpr int no_net = -1;

// Constants stand as texts in the place of a net's number.
int NetOf(const QJsonValue& bit) {
  return bit.isDouble() ? bit.toInt() : no_net;
}

// The engine names the bits of buses like this; the two must agree.
std::string BitName(const std::string& name, const QJsonObject& bus, int index, int width) {
  const int offset = bus["offset"].toInt();
  if (width == 1 && offset == 0) return name;
  const bool falling = bus["upto"].toInt() != 0;
  return name + Format("[%d]", offset + (falling ? width - index - 1 : index));
}

NetNames NamesOfNets(const QJsonObject& module) {
  NetNames names;
  const QJsonObject nets = module["netnames"].toObject();
  for (auto net = nets.begin(); net != nets.end(); ++net) {
    const QJsonObject bus = net->toObject();
    if (bus["hide_name"].toInt() != 0) continue;
    const QJsonArray bits = bus["bits"].toArray();
    const int width = static_cast<int>(bits.size());
    for (int i = 0; i < width; ++i)
      if (NetOf(bits[i]) != no_net)
        names[NetOf(bits[i])].push_back(BitName(net.key().toStdString(), bus, i, width));
  }
  return names;
}

std::set<int> ClockNets(const QJsonObject& module) {
  std::set<int> nets;
  const QJsonObject cells = module["cells"].toObject();
  for (const QJsonValue& cell : cells)
    if (cell["type"].toString() == "DFF") nets.insert(NetOf(cell["connections"]["CLK"][0]));
  return nets;
}

// The module marked as top, or the only one with cells or ports of its own.
QJsonObject TopModule(const QJsonObject& netlist) {
  const QJsonObject modules = netlist["modules"].toObject();
  for (const QJsonValue& module : modules)
    if (!module["attributes"]["top"].isUndefined()) return module.toObject();
  return {};
}

}  // namespace

Ports PortsOfDesign(const std::string& text, const std::string& path) {
  const QJsonObject module = TopModule(QJsonDocument::fromJson(QByteArray::fromStdString(text)).object());
  const auto fail = [&](const std::string& what) {
    return Failure(ExitCode::input, Format("design file \"%s\": %s", path.c_str(), what.c_str()));
  };
  if (module.isEmpty()) throw fail("this is no synthesised netlist with a top module");
  const NetNames names = NamesOfNets(module);
  std::set<int> clocks = ClockNets(module);
  Ports ports;
  const QJsonObject buses = module["ports"].toObject();
  for (auto bus = buses.begin(); bus != buses.end(); ++bus) {
    const QString direction = bus->toObject()["direction"].toString();
    if (direction == "inout")
      throw fail("port " + Quoted(bus.key().toStdString()) + " is an inout; the device's pads go one way");
    const QJsonArray bits = bus->toObject()["bits"].toArray();
    const int width = static_cast<int>(bits.size());
    for (int i = 0; i < width; ++i) {
      const int net = NetOf(bits[i]);
      Port port{.name = BitName(bus.key().toStdString(), bus->toObject(), i, width),
                .is_input = direction == "input",
                .is_clock = false,
                .nets = {}};
      port.is_clock = port.is_input && clocks.erase(net) > 0;
      if (const auto found = names.find(net); found != names.end()) port.nets = found->second;
      ports.push_back(port);
    }
  }
  if (!clocks.empty()) {
    const auto found = names.find(*clocks.begin());
    const std::string name = found == names.end() ? "a net without a name" : Quoted(found->second.front());
    throw fail("flip-flops are clocked by " + name +
               ", which is no input port; the device has no other clocks");
  }
  return ports;
}

QJsonArray ToJson(const Ports& ports) {
  QJsonArray array;
  for (const Port& port : ports) {
    QJsonArray nets;
    for (const std::string& net : port.nets) nets.append(QString::fromStdString(net));
    array.append(QJsonObject{{"name", QString::fromStdString(port.name)},
                             {"input", port.is_input},
                             {"clock", port.is_clock},
                             {"nets", nets}});
  }
  return array;
}

Ports PortsFromJson(const QJsonArray& array) {
  Ports ports;
  for (const QJsonValue& value : array) {
    Port port{.name = value["name"].toString().toStdString(),
              .is_input = value["input"].toBool(),
              .is_clock = value["clock"].toBool(),
              .nets = {}};
    const QJsonArray nets = value["nets"].toArray();
    for (const QJsonValue& net : nets) port.nets.push_back(net.toString().toStdString());
    ports.push_back(port);
  }
  return ports;
}

}  // namespace toolchain
