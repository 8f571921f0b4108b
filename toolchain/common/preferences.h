#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/source_text.h"

namespace toolchain {

enum class PreferenceKind { frequency, period, input_setup, clock_to_out };

/// One statement of a preference file that asks for something.
struct Preference {
  enum class Object { port, net, all_ports };

  PreferenceKind kind = PreferenceKind::frequency;
  Object object =
      Object::port;  ///< What `name` names: the clock itself, or the ports of a setup or output time.
  Word name;
  Object clock_object = Object::port;
  Word clock;          ///< Of INPUT_SETUP and CLOCK_TO_OUT.
  double value = 0.0;  ///< MHz for a frequency, ns otherwise.

  /// The statement up to its ";", as the weights in its comment are found by: see `StatementText` in the
  /// source.
  std::string text;

  bool IsClock() const { return kind == PreferenceKind::frequency || kind == PreferenceKind::period; }
  double Nanoseconds() const { return kind == PreferenceKind::frequency ? 1000.0 / value : value; }
};

/// "95.365 MHz" or "1.514 ns": a time as this preference states its value.
std::string InUnitOf(const Preference& preference, double nanoseconds);

/// Reads a preference file. Bare kinds ("PERIOD ; # w 2") only carry weights and are passed over. Fails with
/// the place of the first statement that it cannot read.
std::vector<Preference> ReadPreferences(const std::string& path);

}  // namespace toolchain
