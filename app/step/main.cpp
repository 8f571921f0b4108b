// vostrand-step: the supervisor that every command of a plan runs under, on this machine or on another. It is
// small and needs nothing but the C and C++ libraries, so that it can be started anywhere.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>

#include "step/supervisor.h"

namespace {

constexpr const char* usage =
    "usage: vostrand-step --outcome FILE [--output FILE] [--grace SECONDS] [--timeout-ms MILLISECONDS] "
    "[--parent PID] [--hold FILE_DESCRIPTOR] [--lease FILE] -- PROGRAM [ARGUMENT ...]\n"
    "Runs the program with this path in a process group of its own and writes how it ended to the outcome "
    "file.\n";

bool read_number(const std::string& text, int& number) {
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end && number >= 0;
}

// Where the option's number goes; null when it takes none.
int* number_of(const std::string& option, vostrand::step::Command& command) {
  if (option == "--grace") return &command.grace_seconds;
  if (option == "--timeout-ms") return &command.timeout_ms;
  if (option == "--hold") return &command.held_file;
  return option == "--parent" ? &command.parent : nullptr;
}

int refuse(const std::string& why) {
  std::fprintf(stderr, "vostrand-step: %s\n%s", why.c_str(), usage);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  vostrand::step::Command command;
  int i = 1;
  for (; i < argc && std::strcmp(argv[i], "--") != 0; i += 2) {
    const std::string option = argv[i];
    if (option == "--help") {
      std::fputs(usage, stdout);
      return 0;
    }
    if (i + 1 >= argc) return refuse(option + " needs a value");
    const std::string value = argv[i + 1];
    if (value == "--") return refuse(option + " needs a value");
    if (option == "--outcome")
      command.outcome_file = value;
    else if (option == "--output")
      command.output_file = value;
    else if (option == "--lease")
      command.lease_file = value;
    else if (int* const number = number_of(option, command); !number)
      return refuse("unknown option " + option);
    else if (!read_number(value, *number))
      return refuse(option + " needs a whole number");
  }
  if (i + 1 >= argc) return refuse("no program to run");
  if (command.outcome_file.empty()) return refuse("--outcome is missing");
  command.arguments = argv + i + 1;  // Closed by argv's own null pointer.
  return vostrand::step::Supervise(command);
}
