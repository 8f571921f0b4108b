#include "analysis/netlist_files.h"

#include <vector>

#include "common/text.h"

namespace toolchain {
namespace {

using CellKind = RoutedDesign::CellKind;

constexpr const char* library_head = R"(library(cells) {
  delay_model : table_lookup; time_unit : "1ns"; voltage_unit : "1V"; current_unit : "1mA";
  capacitive_load_unit(1, pf); pulling_resistance_unit : "1kohm";
  input_threshold_pct_rise : 50; input_threshold_pct_fall : 50;
  output_threshold_pct_rise : 50; output_threshold_pct_fall : 50;
  slew_lower_threshold_pct_rise : 20; slew_lower_threshold_pct_fall : 20;
  slew_upper_threshold_pct_rise : 80; slew_upper_threshold_pct_fall : 80;
)";

std::string Both(const char* what, int ps) {
  const std::string value = Format("(scalar) { values(\"%.3f\"); } ", ps / 1000.0);
  return Format("rise_%s%sfall_%s%s", what, value.c_str(), what, value.c_str());
}

// A delay from the input `from`; `type` is "combinational" or "rising_edge".
std::string DelayArc(const std::string& from, const char* type, const char* sense, int ps) {
  const std::string value = Format("(scalar) { values(\"%.3f\"); } ", ps / 1000.0);
  return "timing() { related_pin : \"" + from + "\"; timing_type : " + type + "; timing_sense : " + sense +
         "; cell_rise" + value + "cell_fall" + value + Both("transition", 0) + "} ";
}

std::string CheckArc(const char* type, int ps) {
  return "timing() { related_pin : \"CLK\"; timing_type : " + std::string(type) + "; " +
         Both("constraint", ps) + "} ";
}

std::string InputPin(const std::string& name, const std::string& more = {}) {
  return "    pin(" + name + ") { direction : input; capacitance : 0; " + more + "}\n";
}

std::string LutInput(std::size_t k) {
  return Format("I%zu", k);
}

// A pad passes on the edge that it gets: otherwise half a period would do for a path.
std::string PadCell(const char* name, int ps) {
  return Format("  cell(%s) {\n", name) + InputPin("I") +
         "    pin(O) { direction : output; function : \"I\"; " +
         DelayArc("I", "combinational", "positive_unate", ps) + "}\n  }\n";
}

const char* CellType(CellKind kind) {
  switch (kind) {
    case CellKind::input:
      return "IPAD";
    case CellKind::output:
      return "OPAD";
    case CellKind::lut:
      return "LUT";
    case CellKind::flip_flop:
      return "FF";
  }
  return "";
}

}  // namespace

std::string CellName(std::size_t cell) {
  return Format("u%zu", cell);
}

std::string PortName(std::size_t cell) {
  return Format("p%zu", cell);
}

std::string CellLibrary(const RoutedDesign::CellDelays& delays) {
  std::string inputs;
  std::string lut_arcs;
  std::string checked_inputs;
  for (std::size_t k = 0; k < delays.lut.size(); ++k) {
    inputs += InputPin(LutInput(k));
    lut_arcs += DelayArc(LutInput(k), "combinational", "non_unate", delays.lut[k]);
    checked_inputs += InputPin(
        LutInput(k), CheckArc("setup_rising", delays.setup[k]) + CheckArc("hold_rising", delays.hold));
  }
  // What a LUT computes is no matter of timing; this function depends on all inputs.
  const std::string function = "\"I0 ^ I1 ^ I2 ^ I3\"; ";
  return library_head + ("  cell(LUT) {\n" + inputs) +
         "    pin(O) { direction : output; function : " + function + lut_arcs +
         "}\n  }\n  cell(FF) {\n    ff(IQ, IQN) { next_state : " + function +
         "clocked_on : \"CLK\"; }\n    pin(CLK) { direction : input; clock : true; capacitance : 0; }\n" +
         checked_inputs + "    pin(O) { direction : output; function : \"IQ\"; " +
         DelayArc("CLK", "rising_edge", "non_unate", delays.clock_to_out) + "}\n  }\n" + PadCell("IPAD", 0) +
         PadCell("OPAD", delays.pad_out) + "}\n";
}

std::string StructuralNetlist(const RoutedDesign& design) {
  std::vector<std::string> pins(design.cells.size());
  for (const RoutedDesign::Arc& arc : design.arcs)
    pins[arc.to] += Format(", .%s(n%zu)", arc.pin.c_str(), arc.from);
  std::string ports;
  std::string body;
  for (std::size_t i = 0; i < design.cells.size(); ++i) {
    const CellKind kind = design.cells[i].kind;
    const bool is_output = kind == CellKind::output;
    const std::string port = PortName(i);
    if (kind == CellKind::input || is_output) {
      ports += (ports.empty() ? "" : ", ") + port;
      body += (is_output ? "  output " : "  input ") + port + ";\n";
    }
    if (kind == CellKind::input) pins[i] += ", .I(" + port + ")";
    if (!is_output) body += Format("  wire n%zu;\n", i);
    const std::string driven = is_output ? port : Format("n%zu", i);
    body += Format("  %s u%zu (.O(%s)%s);\n", CellType(kind), i, driven.c_str(), pins[i].c_str());
  }
  return "module design (" + ports + ");\n" + body + "endmodule\n";
}

std::string WireDelays(const RoutedDesign& design) {
  std::string text =
      "(DELAYFILE\n  (SDFVERSION \"3.0\")\n  (DESIGN \"design\")\n  (DIVIDER /)\n  (TIMESCALE 1ns)\n"
      "  (CELL (CELLTYPE \"design\") (INSTANCE)\n    (DELAY (ABSOLUTE\n";
  for (const RoutedDesign::Arc& arc : design.arcs) {
    const std::string delay = Format("(%.3f::%.3f)", arc.delay / 1000.0, arc.delay / 1000.0);
    text += Format("      (INTERCONNECT u%zu/O u%zu/%s %s %s)\n", arc.from, arc.to, arc.pin.c_str(),
                   delay.c_str(), delay.c_str());
  }
  return text + "    ))\n  )\n)\n";
}

}  // namespace toolchain
