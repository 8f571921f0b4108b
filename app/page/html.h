#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace vostrand {

/// The page's text as it grows. A literal is markup; every other text is shown as it is, whatever it holds,
/// in an element or in a quoted attribute. Numbers are the same in every locale.
class Html {
 public:
  template <std::size_t size>
  Html& operator<<(const char (&markup)[size]) {
    text_.append(markup, size - 1);
    return *this;
  }
  Html& operator<<(const std::string& text);
  Html& operator<<(double number);  ///< Coordinates: two decimals at most.
  Html& operator<<(std::integral auto number) {
    text_ += std::to_string(number);
    return *this;
  }

  /// Adds markup that was made elsewhere.
  void Markup(std::string_view markup) { text_ += markup; }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

/// Opens a part that scrolls on its own when it is too wide; "</div>" closes it.
void OpenRegion(Html& page, const std::string& label);

/// How values are shown: a true minus sign, and "–" for what is no number. Very large and very small numbers
/// are shown by four significant digits.
std::string Decimals(double value, int decimals = 3);
/// "+1.250", "−0.200".
std::string Signed(double value);
/// "11.2 s" under a minute, else "1:12" or "1:02:03".
std::string Duration(double seconds);
/// "180 MiB", "2.1 GiB".
std::string Memory(double kib);
/// "1 run", "2 runs".
std::string Count(std::size_t number, const std::string& noun);

}  // namespace vostrand
