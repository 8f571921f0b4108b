// vostrand-step: the supervisor that every command of a plan runs under, on this machine or on another. It is
// small and needs nothing but the C and C++ libraries, so that it can be started anywhere.
#include <cstdio>
#include <cstring>
#include <string>

#include "step/supervisor.h"

namespace {

constexpr const char* usage =
    "usage: vostrand-step --outcome FILE [--output FILE] [--grace SECONDS] [--parent PID] -- PROGRAM "
    "[ARGUMENT ...]\n"
    "Runs one program in a process group of its own and writes how it ended to the outcome file.\n";

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
    if (option == "--outcome")
      command.outcome_file = argv[i + 1];
    else if (option == "--output")
      command.output_file = argv[i + 1];
    else if (option == "--grace")
      command.grace_seconds = std::stoi(argv[i + 1]);
    else if (option == "--parent")
      command.parent = std::stoi(argv[i + 1]);
    else
      return refuse("unknown option " + option);
  }
  if (i + 1 >= argc) return refuse("no program to run");
  if (command.outcome_file.empty()) return refuse("--outcome is missing");
  command.arguments = argv + i + 1;  // Closed by argv's own null pointer.
  return vostrand::step::Supervise(command);
}
