#include "analysis/routed_design.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "common/text.h"

namespace toolchain {
namespace {

using CellKind = RoutedDesign::CellKind;

// Our part of the file; the engine passes over it.
constexpr const char* own_key = "vostrand";
constexpr int format_version = 1;

const std::map<QString, CellKind> cell_kinds = {{"input", CellKind::input},
                                                {"output", CellKind::output},
                                                {"lut", CellKind::lut},
                                                {"ff", CellKind::flip_flop}};

QJsonObject Parse(const std::string& text) {
  return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

// A number that must be there: none must never be measured as 0.
int Number(const QJsonValue& value) {
  return value.isDouble() ? value.toInt() : throw std::out_of_range("a number is missing");
}

std::array<int, 4> FourDelays(const QJsonValue& array) {
  return {Number(array[0]), Number(array[1]), Number(array[2]), Number(array[3])};
}

void ReadCells(const QJsonArray& cells, RoutedDesign& design) {
  for (const QJsonValue& cell : cells)
    design.cells.push_back({.kind = cell_kinds.at(cell["kind"].toString()),
                            .name = cell["name"].toString().toStdString(),
                            .place = cell["place"].toString().toStdString(),
                            .logic = cell["logic"].toBool()});
}

void ReadArcs(const QJsonArray& arcs, RoutedDesign& design) {
  const auto cell = [&](const QJsonValue& value) {
    const auto index = static_cast<std::size_t>(value.toInt(-1));
    return index < design.cells.size() ? index : throw std::out_of_range("a connection to no cell");
  };
  for (const QJsonValue& arc : arcs)
    design.arcs.push_back({.from = cell(arc[0]),
                           .to = cell(arc[1]),
                           .pin = arc[2].toString().toStdString(),
                           .delay = Number(arc[3])});
}

void ReadReport(const QJsonObject& report, RoutedDesign& design) {
  const QJsonObject clocks = report["fmax"].toObject();
  for (auto clock = clocks.begin(); clock != clocks.end(); ++clock)
    design.engine_mhz[clock.key().toStdString()] = clock->toObject()["achieved"].toDouble();
  const QJsonObject kinds = report["utilization"].toObject();
  for (auto kind = kinds.begin(); kind != kinds.end(); ++kind)
    design.utilization[kind.key().toStdString()] = {.used = kind->toObject()["used"].toInt(),
                                                    .available = kind->toObject()["available"].toInt()};
}

// The engine does not notice when a disk is full.
QJsonObject ParseWhole(const std::string& text, const char* what) {
  const QJsonObject object = Parse(text);
  if (object.isEmpty()) throw Failure(ExitCode::engine, Format("the engine left %s that is not whole", what));
  return object;
}

}  // namespace

std::string MakeRoutedFile(const std::string& netlist, const std::string& report, const std::string& timing,
                           const Ports& ports) {
  QJsonObject engine_report = ParseWhole(report, "a report");
  engine_report.remove("critical_paths");  // One for each pair of clocks, without clock delays.
  QJsonObject routed = ParseWhole(netlist, "a netlist");
  routed[own_key] = QJsonObject{{"format", format_version},
                                {"ports", ToJson(ports)},
                                {"report", engine_report},
                                {"timing", Parse(timing)}};
  return QJsonDocument(routed).toJson(QJsonDocument::Compact).toStdString() + '\n';
}

int UnroutedIn(const std::string& timing) {
  const QJsonValue unrouted = ParseWhole(timing, "a list of delays")["unrouted"];
  if (!unrouted.isDouble())
    throw Failure(ExitCode::engine, "the engine left no count of unrouted connections");
  return unrouted.toInt();
}

RoutedDesign ParseRoutedFile(const std::string& text, const std::string& path) {
  const QJsonObject file = Parse(text);
  const auto fail = [&](const char* what) {
    return Failure(ExitCode::input, Format("design \"%s\" %s", path.c_str(), what));
  };
  if (file.isEmpty()) throw fail("is no design file");
  const QJsonObject own = file[own_key].toObject();
  if (own.isEmpty()) throw fail("is not routed; run par on it first and give its output design");
  if (own["format"].toInt() != format_version) throw fail("was written by another version of par");
  RoutedDesign design;
  try {
    const QJsonValue timing = own["timing"];
    design.ports = PortsFromJson(own["ports"].toArray());
    ReadCells(timing["cells"].toArray(), design);
    ReadArcs(timing["arcs"].toArray(), design);
    const QJsonValue delays = timing["delays"];
    design.delays = {.lut = FourDelays(delays["lut"]),
                     .setup = FourDelays(delays["setup"]),
                     .hold = Number(delays["hold"]),
                     .clock_to_out = Number(delays["clock_to_out"]),
                     .pad_out = Number(delays["pad_out"])};
    design.unrouted = Number(timing["unrouted"]);
    ReadReport(own["report"].toObject(), design);
  } catch (const std::out_of_range&) {
    throw fail("is damaged");
  }
  if (design.unrouted != 0) throw fail("is not routed completely");
  design.engine = file["creator"].toString().toStdString();
  return design;
}

}  // namespace toolchain
