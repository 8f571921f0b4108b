// vostrand-step: the supervisor that every command of a plan runs under, on this machine or on another. It is
// small and needs nothing but the C and C++ libraries, so that it can be started anywhere.
#include <fcntl.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string>

#include "step/packets.h"
#include "step/supervisor.h"

namespace {

using namespace vostrand::step;

constexpr const char* usage =
    "usage: vostrand-step --outcome FILE [--output FILE] [--grace SECONDS] [--timeout-ms MILLISECONDS] "
    "[--lease FILE] -- PROGRAM [ARGUMENT ...]\n"
    "       vostrand-step --serve SOCKET [--hold FILE_DESCRIPTOR]\n"
    "Runs the program with this path in a process group of its own and writes how it ended to the outcome "
    "file; or runs one after the other what vostrand asks for.\n";

constexpr int cannot_write = 126;

struct Options {
  Command command;
  std::string outcome_file;
  int serve = -1;
  int hold = -1;
};

bool read_number(const std::string& text, int& number) {
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end && number >= 0;
}

// Where the option's number goes; null when it takes none.
int* number_of(const std::string& option, Options& options) {
  if (option == "--grace") return &options.command.grace_seconds;
  if (option == "--timeout-ms") return &options.command.timeout_ms;
  if (option == "--serve") return &options.serve;
  return option == "--hold" ? &options.hold : nullptr;
}

std::string* text_of(const std::string& option, Options& options) {
  if (option == "--outcome") return &options.outcome_file;
  if (option == "--output") return &options.command.output_file;
  return option == "--lease" ? &options.command.lease_file : nullptr;
}

int refuse(const std::string& why) {
  std::fprintf(stderr, "vostrand-step: %s\n%s", why.c_str(), usage);
  return 2;
}

int run_one(const Options& options) {
  const Outcome outcome = Supervisor().Run(options.command);
  if (!outcome.message.empty()) std::fprintf(stderr, "vostrand-step: %s\n", outcome.message.c_str());
  // A host on this machine would not outlive the machine; one that finds the outcome by a lease may be on
  // another.
  const bool to_disk = !options.command.lease_file.empty();
  if (WriteOutcome(options.outcome_file, outcome, to_disk)) return outcome.exit_code;
  std::fprintf(stderr, "vostrand-step: cannot write %s\n", options.outcome_file.c_str());
  return cannot_write;
}

int serve(const Options& options) {
  for (const int file : {options.serve, options.hold})
    if (file >= 0) fcntl(file, F_SETFD, FD_CLOEXEC);  // Not the programs' business.
  Supervisor supervisor(options.serve);
  for (std::string packet; !(packet = supervisor.NextPacket()).empty();) {
    RunPacket wanted;
    if (!FromText(packet, wanted)) continue;  // To end what has ended already.
    Command command;
    command.timeout_ms = wanted.timeout_ms;
    command.output_file = wanted.output_file;
    std::vector<char*> arguments;
    arguments.reserve(wanted.words.size() + 1);
    for (std::string& word : wanted.words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    command.arguments = arguments.data();
    if (!SendPacket(options.serve, EndedPacket(supervisor.Run(command)))) return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
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
    if (std::string* const text = text_of(option, options))
      *text = value;
    else if (int* const number = number_of(option, options); !number)
      return refuse("unknown option " + option);
    else if (!read_number(value, *number))
      return refuse(option + " needs a whole number");
  }
  if (options.serve >= 0) return serve(options);
  if (i + 1 >= argc) return refuse("no program to run");
  if (options.outcome_file.empty()) return refuse("--outcome is missing");
  options.command.arguments = argv + i + 1;  // Closed by argv's own null pointer.
  return run_one(options);
}
