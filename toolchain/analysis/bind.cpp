#include <algorithm>

#include "analysis/design_ports.h"
#include "common/text.h"

namespace toolchain {
namespace {

std::size_t FindClock(const Ports& ports, Preference::Object object, const Word& name) {
  const bool by_net = object == Preference::Object::net;
  bool is_known = false;
  for (std::size_t i = 0; i < ports.size(); ++i) {
    const Port& port = ports[i];
    const bool named =
        by_net ? std::count(port.nets.begin(), port.nets.end(), name.text) > 0 : port.name == name.text;
    if (named && port.is_clock) return i;
    is_known = is_known || named;  // An output may carry the clock's net too.
  }
  if (is_known) throw name.Error(Quoted(name.text) + " clocks nothing in this design");
  throw name.Error(by_net ? "no clock net " + Quoted(name.text) + " in this design"
                          : "no port " + Quoted(name.text) + " in this design");
}

// The ports that a name stands for: its bits when it is a bus, all that match when it has a "*". Clocks are
// no data.
std::vector<std::size_t> FindPorts(const Ports& ports, const Preference& preference) {
  const bool inputs = preference.kind == PreferenceKind::input_setup;
  const bool all = preference.object == Preference::Object::all_ports;
  const std::string& name = preference.name.text;
  std::vector<std::size_t> found;
  bool other_way = false;
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (!all && !Matches(name, ports[i].name) && !Matches(name + "[*]", ports[i].name)) continue;
    const bool fits = ports[i].is_input == inputs && !ports[i].is_clock;
    if (fits) found.push_back(i);
    other_way = other_way || !fits;
  }
  const std::string wanted = inputs ? "data input" : "output";
  if (found.empty() && (all || !other_way))
    throw preference.name.Error(all ? "this design has no " + wanted + "s"
                                    : "no port " + Quoted(name) + " in this design");
  if (found.empty()) throw preference.name.Error(Quoted(name) + " is no " + wanted);
  return found;
}

}  // namespace

std::vector<BoundPreference> Bind(const std::vector<Preference>& preferences, const Ports& ports) {
  std::vector<BoundPreference> bound;
  for (const Preference& preference : preferences) {
    BoundPreference next{.preference = preference, .clock = 0, .ports = {}};
    if (preference.IsClock()) {
      next.clock = FindClock(ports, preference.object, preference.name);
    } else {
      next.ports = FindPorts(ports, preference);
      next.clock = FindClock(ports, preference.clock_object, preference.clock);
    }
    bound.push_back(std::move(next));
  }
  return bound;
}

}  // namespace toolchain
