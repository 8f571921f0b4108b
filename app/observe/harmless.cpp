#include "observe/harmless.h"

namespace vostrand {
namespace {

bool Continues(unsigned char byte) {
  return byte >= 0x80 && byte < 0xc0;
}

// Bytes that the first one asks for behind it in UTF-8; 0 where it stands alone or is none.
std::size_t Following(unsigned char first) {
  if (first < 0xc2 || first > 0xf4) return 0;
  return first < 0xe0 ? 1 : first < 0xf0 ? 2 : 3;
}

}  // namespace

std::string Harmless(std::string_view text) {
  std::string shown;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const std::size_t wanted = Following(byte(i));
    std::size_t length = 1;
    while (length <= wanted && i + length < text.size() && Continues(byte(i + length))) ++length;
    if (length <= wanted) length = 1;  // No character: each byte for itself.
    const bool c0 = (byte(i) < ' ' && text[i] != '\n' && text[i] != '\t') || byte(i) == 127;
    const bool c1 = (length == 1 && Continues(byte(i)) && byte(i) < 0xa0) ||
                    (length == 2 && byte(i) == 0xc2 && byte(i + 1) < 0xa0);
    if (c0 || c1)
      shown += '?';
    else
      shown += text.substr(i, length);
    i += length;
  }
  return shown;
}

std::string HarmlessLine(std::string_view text) {
  std::string line = Harmless(text);
  for (char& c : line)
    if (c == '\n' || c == '\t') c = '?';
  return line;
}

}  // namespace vostrand
