#include "profile/profile_file.h"

#include <string.h>

namespace {

bool isOneOf(char c, const char* set) {
  return c != '\0' && strchr(set, c) != nullptr;
}

/// Not isspace(): a host's locale must not change how a file is read.
bool isBlank(char c) {
  return isOneOf(c, " \t\n\v\f\r");
}

int removePair(char* s, char first, char last) {
  const size_t length = s != nullptr ? strlen(s) : 0;
  if (length < 2 || s[0] != first || s[length - 1] != last) return 0;
  memmove(s, s + 1, length - 2);
  s[length - 2] = '\0';
  return 1;
}

}  // namespace

void rmlead(char* s) {
  if (s == nullptr) return;
  const char* start = s;
  while (isBlank(*start)) ++start;
  memmove(s, start, strlen(start) + 1);
}

void rmtrail(char* s) {
  if (s == nullptr) return;
  size_t length = strlen(s);
  while (length > 0 && isBlank(s[length - 1])) --length;
  s[length] = '\0';
}

int rmquotes(char* s) {
  return removePair(s, '"', '"') != 0 || removePair(s, '\'', '\'') != 0 ? 1 : 0;
}

int rmbrackets(char* s) {
  return removePair(s, '[', ']');
}

const char* stptok(const char* s, char* token, size_t token_size, const char* delimiters) {
  if (s == nullptr || token == nullptr || delimiters == nullptr || *s == '\0') return nullptr;
  if (token_size < 2) {
    *token = '\0';
    return s;
  }

  size_t length = strcspn(s, delimiters);
  const bool cut = length >= token_size - 1;
  if (cut) length = token_size - 1;
  memcpy(token, s, length);
  token[length] = '\0';
  s += length;

  // The size comes first: a delimiter right after a full token is left for the next call to find.
  if (!cut && *s != '\0') {
    ++s;
    if (isOneOf(*s, delimiters)) {
      ++s;
      while (isOneOf(*s, delimiters + 1)) ++s;
    }
  }
  return *s != '\0' ? s : nullptr;
}

int filecopy(FILE* to, FILE* from) {
  if (to == nullptr || from == nullptr) return 0;
  char block[512];
  size_t count = fread(block, 1, sizeof block, from);
  while (count == sizeof block) {
    fwrite(block, 1, count, to);
    count = fread(block, 1, sizeof block, from);
  }
  return static_cast<int>(fwrite(block, 1, count, to));
}
