// What the library does with text, against the same on std::string.
#include <algorithm>
#include <utility>

#include "common.h"
#include "support/option_strings.h"
#include "ut/strobj.h"

namespace {

constexpr const char* blanks = " \t\b\n\r";

std::string Part(const std::string& text, std::size_t at, std::size_t n) {
  return at < text.size() ? text.substr(at, n) : "";
}
std::string TrimmedFront(const std::string& text) {
  return text.substr(std::min(text.find_first_not_of(blanks), text.size()));
}
std::string TrimmedBack(const std::string& text) {
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

struct Both {
  UT_STROBJ ours;
  std::string model;
};

}  // namespace

void option_strings(std::string_view in) {
  FuzzedDataProvider parts = Parts(in);
  const std::string option = parts.ConsumeRandomLengthString(16);
  const std::string value = parts.ConsumeRandomLengthString(16);
  const std::string line = parts.ConsumeRemainingBytesAsString();
  std::string expected_value, expected_line = line;
  if (const std::size_t at = line.find(option); at < line.size()) {
    const std::string rest = line.substr(at + option.size());
    const std::size_t dash = std::min(rest.find('-'), rest.size());
    expected_value = dash == rest.size() ? rest : TrimmedFront(TrimmedBack(rest.substr(0, dash)));
    expected_line = line.substr(0, at) + option + " " + value + " " + rest.substr(dash);
  }
  UT_STROBJ options(line);
  const UT_STROBJ name(option);
  Check(orlo::vostrand_lib::GetOptionValue(options, name).view() == expected_value);
  orlo::vostrand_lib::ReplaceOption(options, name, UT_STROBJ(value));
  Check(options.view() == expected_line);
}

// Any sequence of operations on strings that share their storage.
void strings(std::string_view in) {
  FuzzedDataProvider parts = Parts(in);
  Both all[3];
  while (parts.remaining_bytes() > 0) {
    Both& target = all[parts.ConsumeIntegralInRange(0, 2)];
    auto& [a, x] = target;
    const auto& [b, y] = all[parts.ConsumeIntegralInRange(0, 2)];
    const std::size_t at = parts.ConsumeIntegralInRange<std::size_t>(0, 40);
    const std::size_t n = parts.ConsumeIntegralInRange<std::size_t>(0, 40);
    const char c = parts.ConsumeIntegral<char>();
    Both made[] = {{b, y},
                   {b.left(n), Part(y, 0, n)},
                   {b.right(n), Part(y, y.size() - std::min(n, y.size()), n)},
                   {b.right_from(at), Part(y, at, y.npos)},
                   {b.cut(at, n), at < y.size() ? std::string(y).erase(at, n) : y},
                   {a + b + c, x + y + c},
                   {b.trimmed(), TrimmedFront(TrimmedBack(y))},
                   {b.trim_front(blanks), TrimmedFront(y)},
                   {b.trim_back(blanks), TrimmedBack(y)}};
    for (const auto& [ours, model] : made) Check(ours.view() == model);
    Check(a.find(b, at) == static_cast<int>(std::min(x.find(y, std::min(at, x.size())), x.size())));
    Check(a.find_char(c, at) == std::min(x.find(c, at), x.size()));
    Check(a.reverse_find_char(c, at) == std::min(x.rfind(c, at), x.size()));
    Check((a.strcmp(b) < 0) == (x < y) && (a == b) == (x == y));

    const std::size_t next = parts.ConsumeIntegralInRange<std::size_t>(0, std::size(made) + 2);
    const std::string text = parts.ConsumeRandomLengthString(300);
    const std::string piece = Part(y, at, n);
    if (next < std::size(made)) target = std::move(made[next]);
    if (next == std::size(made)) a.append(text), x += text;
    if (next == std::size(made) + 1) a.append(b.view().substr(std::min(at, b.size()), n)), x += piece;
    if (next == std::size(made) + 2) Check(a.getstring() == std::string_view(x.c_str()));
    if (x.size() > 5000) target = {};
    for (const auto& [ours, model] : all) Check(ours.view() == model);
  }
}
