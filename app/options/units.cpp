#include "options/units.h"

#include <charconv>
#include <cmath>

namespace vostrand {
namespace {

constexpr double longest_seconds = 20 * 24 * 3600.0;
constexpr double largest_bytes = 9e18;

// A plain decimal number in front of a unit.
struct Quantity {
  double number = 0;
  std::string unit;
};

std::optional<Quantity> Split(const std::string& text) {
  Quantity quantity;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, quantity.number, std::chars_format::fixed);
  if (read.ec != std::errc() || !std::isfinite(quantity.number) || quantity.number < 0) return {};
  quantity.unit.assign(read.ptr, end);
  return quantity;
}

}  // namespace

std::optional<double> ReadDuration(const std::string& text) {
  const std::optional<Quantity> quantity = Split(text);
  if (!quantity) return {};
  double factor = 1;
  if (quantity->unit == "m")
    factor = 60;
  else if (quantity->unit == "h")
    factor = 3600;
  else if (!quantity->unit.empty() && quantity->unit != "s")
    return {};
  const double seconds = quantity->number * factor;
  return seconds <= longest_seconds ? std::optional(seconds) : std::nullopt;
}

std::optional<std::int64_t> ReadSize(const std::string& text) {
  const std::optional<Quantity> quantity = Split(text);
  if (!quantity) return {};
  std::string unit = quantity->unit;
  double factor = 1;
  const std::string prefixes = "KMGT";
  if (!unit.empty() && unit != "B") {
    const std::size_t power = prefixes.find(static_cast<char>(unit[0] & ~0x20));
    if (power == std::string::npos) return {};
    factor = std::ldexp(1.0, 10 * static_cast<int>(power + 1));
    unit.erase(0, 1);
  }
  if (!unit.empty() && unit != "B" && unit != "iB") return {};
  const double bytes = std::floor(quantity->number * factor);
  if (bytes < 1 || bytes > largest_bytes) return {};
  return static_cast<std::int64_t>(bytes);
}

}  // namespace vostrand
