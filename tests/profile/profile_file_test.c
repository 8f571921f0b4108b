#define _POSIX_C_SOURCE 200809L

#include "profile/profile_file.h"

#include <locale.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <unistd.h>

static int failures = 0;
#define CHECK(condition, label) \
  ((condition) ? (void)0 : (void)(++failures, printf("%s:%d: %s\n", __FILE__, __LINE__, label)))
#define COUNT(array) (sizeof(array) / sizeof *(array))

static const char ini[] = "test.ini";

static void store(const char* text) {
  FILE* file = fopen(ini, "wb");
  if (file == NULL || fputs(text, file) == EOF || fclose(file) != 0) abort();
}

static int holds(const char* expected) {
  char text[4096] = "";
  FILE* file = fopen(ini, "rb");
  const int read = file != NULL && fread(text, 1, sizeof text - 1, file) > 0 && fclose(file) == 0;
  return read && strcmp(text, expected) == 0;
}

static void testValues(void) {
  static const struct {
    const char *key, *fallback, *expected;
    size_t size;
  } cases[] = {{"w", "d", "3", 9},        {"Q", "d", "a = b", 9},      {"single", "d", " x ", 9},
               {"mixed", "d", "'x\"", 9}, {"none", "d", "", 9},        {"bare", "d", "d", 9},
               {"bare", NULL, "", 9},     {"I", "d", "small", 9},      {"; c", "d", "d", 9},
               {"late", "d", "d", 9},     {"two words", "d", "=1", 9}, {"", "d", "anon", 9},
               {"i", "d", "small", 6},    {"i", "d", "smal", 5},       {"i", "d", "", 1},
               {"no", " 'ab' ", "'ab", 5}};
  store(
      "w=0\n[broken\n[ Main ]\nw=8\n[main]\n\n  ; c=1\nw = 3\r\n\tq = \"a = b\" \nsingle=' x '\nmixed='x\"\n"
      "none=\nbare\nbare=2\ntwo words ==1\n=anon\ni=small\nI=2\n[stop\nlate=1\n[MAIN]\nlate=2\n");
  char buffer[16];
  for (size_t i = 0; i < COUNT(cases); ++i) {
    memset(buffer, '#', sizeof buffer);
    const size_t count =
        GetPrivateProfileString("Main", cases[i].key, cases[i].fallback, buffer, cases[i].size, ini);
    CHECK(strcmp(buffer, cases[i].expected) == 0 && count == strlen(buffer), cases[i].key);
    CHECK(buffer[cases[i].size] == '#', cases[i].key);
  }
  CHECK(GetPrivateProfileString("x", "w", "d", buffer, 8, ini) == 1 && buffer[0] == 'd', "missing section");
  CHECK(GetPrivateProfileString("main", "w", "e", buffer, 0, ini) == 0 && buffer[0] == 'd', "size 0");
  CHECK(GetPrivateProfileString("main", "w", "d", buffer, 8, "none") == 0 && !buffer[0], "missing file");
  CHECK(GetPrivateProfileString("main", "w", "d", NULL, 8, ini) == 0, "null buffer");
}

static void testNumbers(void) {
  static const char* const texts[] = {"3",  "'2'", "-7x",  "0", "00x",        "005",
                                      "+0", "-0",  "0x10", "",  "4294967296", "4294967295"};
  static const int numbers[] = {3, 2, -7, 0, 0, 5, 42, 42, 42, 42, 42, -1};
  char text[64];
  for (size_t i = 0; i < COUNT(texts); ++i) {
    snprintf(text, sizeof text, "[s]\nk=%s\n", texts[i]);
    store(text);
    CHECK(GetPrivateProfileInt("S", "K", 42, ini) == numbers[i], texts[i]);
  }
}

/* A list that does not fit with a character to spare is its first size - 2 characters and two NULs. */
static void checkList(const char* kind, const char* list, size_t length) {
  for (size_t size = 2; size < 24; ++size) {
    char buffer[32] = "", expected[sizeof buffer] = "";
    const int fits = size >= length + 2, entries = kind[0] == 'e';
    memset(buffer + size, '#', sizeof buffer - size);
    memset(expected + size, '#', sizeof buffer - size);
    memcpy(expected, list, fits ? length : size - 2);
    const size_t count =
        entries ? GetPrivateProfileSection("s", buffer, size, ini)
                : GetPrivateProfileString(kind[0] == 'k' ? "s" : NULL, NULL, "d", buffer, size, ini);
    CHECK(memcmp(buffer, expected, sizeof buffer) == 0, kind);
    CHECK(count == (!fits ? size - 2 : entries ? length : length - 1), kind);
  }
}

static void testLists(void) {
  store("[s]\nabc = 1\n;no=1\nd\n=x\nABC=2\n[]\nq=1\n[t u]\n[open\n");
  checkList("keys", "abc\0d\0\0ABC", 11);
  checkList("sections", "s\0\0t u", 7);
  checkList("entries", "abc=1\0d=\0=x\0ABC=1", 18);
}

static void testWriting(void) {
  static const struct {
    const char *before, *section, *key, *value, *after;
    int result;
  } cases[] = {
      {"[a]\nk=1\nK=2\n", "A", "k", "'5'", "[a]\nk='5'\nK=2\n", 1},
      {"[a]\nk=1\n[a]\nn=1\n", "a", "n", "2", "[a]\nk=1\nn=2\n[a]\nn=1\n", 1},
      {" [b] \r\n\n  \nx =  1 \n[a\nk=0", "a", "k", "2", "[b]\n\nx =  1\n[a\nk=0\n[a]\nk=2\n", 1},
      {"[a]\n[open\nk=1\n", "a", "k", "2", "[a]\nk=2\n[open\nk=1\n", 1},
      {"[a]\nk\n\t\nm=1\n", "a", "k", NULL, "[a]\n\nm=1\n", 1},
      {"[a]\n[b]\nk=1\n", "a", "k", NULL, "[a]\n[b]\nk=1\n", 1},
      {"[b]\nk=1\n", "a", "k", NULL, "[b]\nk=1\n[a]\n", 0},
      {"[b]\n[a]\n;c\nk=1\n \n[c]\nk=2\n", "a", NULL, "v", "[b]\n;c\n[c]\nk=2\n", 1},
      {NULL, "a", "k", "v", "[a]\nk=v\n", 1},
  };
  for (size_t i = 0; i < COUNT(cases); ++i) {
    remove(ini);
    if (cases[i].before != NULL) store(cases[i].before);
    const int result = WritePrivateProfileString(cases[i].section, cases[i].key, cases[i].value, ini);
    CHECK(result == cases[i].result && holds(cases[i].after), cases[i].after);
  }
  CHECK(WritePrivateProfileString("a", "k", NULL, "none") == 0 && access("none", F_OK) != 0, "missing file");

  signal(SIGXFSZ, SIG_IGN);
  struct rlimit limit;
  getrlimit(RLIMIT_FSIZE, &limit);
  const struct rlimit full = {12, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  CHECK(WritePrivateProfileString("a", "k", "too long", ini) == 0, "disk full");
  setrlimit(RLIMIT_FSIZE, &limit);
  CHECK(holds("[a]\nk=v\n"), "an incomplete text never replaces the file");
}

static void testLongLines(void) {
  char text[3200], value[1100], big[1030];
  memset(big, 'x', sizeof big);
  snprintf(text, sizeof text, "[s]\nk=%.1020s\nl=%.1030s\nm=2\n", big, big);
  store(text);
  CHECK(GetPrivateProfileString("s", "l", "", value, sizeof value, ini) == 1030,
        "a line of any length is one");
  text[strlen(text) - 2] = '3';
  CHECK(WritePrivateProfileString("s", "m", "3", ini) == 1 && holds(text), "written in several blocks");
}

static void testText(void) {
  char token[9], quote[] = "'", pair[] = "[]";
  const char* const text = "a,;;;b";
  CHECK(stptok(text, token, 9, ",;") == text + 5 && strcmp(token, "a") == 0, "delimiters behind one another");
  CHECK(strcmp(stptok("a,,,;;b", token, 9, ",;"), ",;;b") == 0, "the first delimiter, twice at most");
  CHECK(stptok("a==", token, 9, "=") == NULL && stptok(text, token, 2, ",;") == text + 1, "end, full token");
  CHECK(rmquotes(quote) == 0 && rmbrackets(pair) == 1 && pair[0] == '\0', "in place");
}

int main(void) {
  char scratch[] = "/tmp/profile_file_XXXXXX";
  if (mkdtemp(scratch) == NULL || chdir(scratch) != 0) return 2;
  setlocale(LC_ALL, ""); /* Under a Turkish locale this shows any use of the locale's letters. */
  testValues(), testNumbers(), testLists(), testWriting(), testLongLines(), testText();
  remove(ini);
  rmdir(scratch);
  return failures != 0;
}
