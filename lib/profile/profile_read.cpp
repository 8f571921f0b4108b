#include "profile/profile_file.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "profile/profile_lines.h"

namespace {

using orlo::vostrand_lib::profile::LineWalker;
using orlo::vostrand_lib::profile::name_size;
using orlo::vostrand_lib::profile::same_name;

/// Room for the keys of one section when all of its entries are asked for.
constexpr size_t key_list_size = 8192;

/// A caller's buffer that is filled with strings one after the other and ends with two NULs. Needs a size
/// of 2.
struct StringList {
  char* buffer;
  size_t size;
  size_t used = 0;
  bool full = false;

  /// What one more text may have, with the two NULs after it set aside.
  size_t room() const { return size - used - 2; }

  /// Fills the room with the start of a text that is at least as long and closes the list. Only a text of
  /// which something was stored becomes an item.
  void cut(const char* text) {
    const size_t length = room();
    memcpy(buffer + used, text, length);
    memset(buffer + size - 2, 0, 2);
    if (length > 0) used = size - 1;
    full = true;
  }

  /// False when there was no room for the whole item or for any further one.
  bool add(const char* item) {
    const size_t length = strlen(item);
    if (length >= room()) {
      cut(item);
      return false;
    }
    memcpy(buffer + used, item, length + 1);
    used += length + 1;
    buffer[used] = '\0';
    return true;
  }
};

size_t store_text(const char* text, char* buffer, size_t size) {
  size_t length = strlen(text);
  if (length >= size) length = size - 1;
  memcpy(buffer, text, length);
  buffer[length] = '\0';
  return length;
}

size_t store_default(const char* text, char* buffer, size_t size) {
  if (text == nullptr) return 0;
  store_text(text, buffer, size);
  rmlead(buffer);
  rmtrail(buffer);
  rmquotes(buffer);
  return strlen(buffer);
}

size_t read_value(FILE* file, const char* section, const char* key, const char* defaultValue, char* buffer,
                  size_t size) {
  LineWalker lines(file);
  bool found = lines.enter_section(section) && lines.next_entry();
  while (found && !same_name(lines.name(), key)) found = lines.next_entry();
  // The first line with the key decides, even when it has no value and a later one does.
  const char* value = found ? lines.take_value() : nullptr;
  return value != nullptr ? store_text(value, buffer, size) : store_default(defaultValue, buffer, size);
}

/// Lists the keys of a section or, with a null section, the names of all sections.
void collect_names(FILE* file, const char* section, StringList& list) {
  LineWalker lines(file);
  if (section == nullptr) {
    while (lines.next_header() && list.add(lines.name())) {
    }
  } else if (lines.enter_section(section)) {
    while (lines.next_entry() && list.add(lines.name())) {
    }
  }
}

size_t read_names(FILE* file, const char* section, const char* defaultValue, char* buffer, size_t size) {
  if (size < 2) return 0;
  StringList list{buffer, size};
  collect_names(file, section, list);
  if (list.full) return size - 2;
  return list.used > 0 ? list.used - 1 : store_default(defaultValue, buffer, size);
}

/// Adds "key=value". False when the list is closed by it; where in the entry the room ends makes no
/// difference.
bool add_entry(StringList& list, const char* key, const char* value) {
  char entry[2 * name_size];
  const size_t key_length = strlen(key);
  memcpy(entry, key, key_length);
  entry[key_length] = '=';
  strcpy(entry + key_length + 1, value);
  return list.add(entry);
}

size_t read_entries(FILE* file, const char* section, char* buffer, size_t size) {
  char key_buffer[key_list_size];
  StringList keys{key_buffer, sizeof key_buffer};
  collect_names(file, section, keys);

  // One empty key makes a list that reads like none.
  if (keys.used < 2) return 0;

  StringList entries{buffer, size};
  char value[name_size];
  for (const char* key = key_buffer; key < key_buffer + keys.used; key += strlen(key) + 1) {
    // Each value is looked up from the start, so that a key gives here what it gives when asked for alone.
    rewind(file);
    read_value(file, section, key, "", value, sizeof value);
    if (!add_entry(entries, key, value)) return size - 2;
  }
  return entries.used;
}

}  // namespace

size_t GetPrivateProfileString(const char* section, const char* key, const char* defaultValue, char* buffer,
                               size_t size, const char* file) {
  if (buffer == nullptr || file == nullptr || size == 0) return 0;
  buffer[0] = '\0';
  FILE* opened = fopen(file, "re");
  if (opened == nullptr) return 0;
  const bool one_value = section != nullptr && key != nullptr;
  const size_t count = one_value ? read_value(opened, section, key, defaultValue, buffer, size)
                                 : read_names(opened, section, defaultValue, buffer, size);
  fclose(opened);
  return count;
}

int GetPrivateProfileInt(const char* section, const char* key, int defaultValue, const char* file) {
  if (section == nullptr || key == nullptr) return defaultValue;
  char text[name_size];
  if (GetPrivateProfileString(section, key, "", text, sizeof text, file) == 0) return defaultValue;
  const int number = static_cast<int>(static_cast<uint32_t>(strtol(text, nullptr, 10)));
  const bool written_zero = strcmp(text, "0") == 0 || strncmp(text, "00", 2) == 0;
  return number != 0 || written_zero ? number : defaultValue;
}

size_t GetPrivateProfileSection(const char* section, char* buffer, size_t size, const char* file) {
  if (buffer == nullptr || size == 0) return 0;
  buffer[0] = '\0';
  if (section == nullptr || file == nullptr || size < 2) return 0;
  FILE* opened = fopen(file, "re");
  if (opened == nullptr) return 0;
  const size_t count = read_entries(opened, section, buffer, size);
  fclose(opened);
  return count;
}
