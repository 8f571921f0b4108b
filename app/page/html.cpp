#include "page/html.h"

#include <charconv>
#include <cmath>

namespace vostrand {
namespace {

std::string Plain(double value, std::chars_format form, int precision) {
  char buffer[400];  // The largest number has 309 digits before its point.
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, form, precision);
  return {buffer, end.ptr};
}

std::string TwoDigits(long number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

Html& Html::operator<<(const std::string& text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        text_ += "&amp;";
        break;
      case '<':
        text_ += "&lt;";
        break;
      case '>':
        text_ += "&gt;";
        break;
      case '"':
        text_ += "&quot;";
        break;
      case '\0':
        text_ += "\xEF\xBF\xBD";
        break;  // HTML has no such character.
      default:
        text_ += c;
    }
  }
  return *this;
}

Html& Html::operator<<(double number) {
  if (!std::isfinite(number)) number = 0;
  std::string digits = Plain(number, std::chars_format::fixed, 2);
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  text_ += digits;
  return *this;
}

void OpenRegion(Html& page, const std::string& label) {
  page << "<div class=scroll tabindex=0 role=region aria-label=\"" << label << "\">";
}

std::string Decimals(double value, int decimals) {
  if (!std::isfinite(value)) return "–";
  const double size = std::abs(value);
  const bool fits = size < 1e6 && (size == 0 || size >= 0.5 * std::pow(10, -decimals));
  const std::string digits =
      fits ? Plain(size, std::chars_format::fixed, decimals) : Plain(size, std::chars_format::general, 4);
  return (value < 0 ? "−" : "") + digits;
}

std::string Signed(double value) {
  return (value > 0 ? "+" : "") + Decimals(value);
}

std::string Duration(double seconds) {
  if (!std::isfinite(seconds)) return "–";
  if (seconds < 59.95) return Decimals(seconds, 1) + " s";
  const long whole = std::lround(std::min(seconds, 1e12));
  const std::string rest = TwoDigits(whole % 60);
  if (whole < 3600) return std::to_string(whole / 60) + ":" + rest;
  return std::to_string(whole / 3600) + ":" + TwoDigits(whole / 60 % 60) + ":" + rest;
}

std::string Memory(double kib) {
  const double mib = kib / 1024;
  return mib < 1024 ? Decimals(mib, mib < 10 ? 1 : 0) + " MiB" : Decimals(mib / 1024, 1) + " GiB";
}

std::string Count(std::size_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

}  // namespace vostrand
