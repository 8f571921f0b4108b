#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "step/outcome_file.h"

namespace vostrand::step {

/// What a host and its supervisor say to each other over a socket that keeps packets apart. The first byte of
/// each tells its kind.
enum class PacketKind : char {
  run = 'R',      ///< To the supervisor: run a command.
  cancel = 'C',   ///< To the supervisor: end it; a second one: at once. Means nothing when none runs.
  started = 'S',  ///< To the host: the command's process group.
  ended = 'E',    ///< To the host: the command's outcome. The next command may follow.
};

/// A command as the host asks for it.
struct RunPacket {
  int timeout_ms = 0;
  std::string output_file;
  std::vector<std::string> words;  ///< The program's path and its arguments.
};

std::string AsText(const RunPacket& packet);
/// False when the text is no such packet.
bool FromText(const std::string& text, RunPacket& packet);
std::string StartedPacket(pid_t group);
/// 0 when the text is no such packet.
pid_t GroupOf(const std::string& text);
std::string EndedPacket(const Outcome& outcome);
/// False when the text is no such packet.
bool OutcomeOf(const std::string& text, Outcome& outcome);
std::string CancelPacket();

/// One packet, whole or not at all. False when the other side has gone or it is too long, with errno set.
bool SendPacket(int socket, const std::string& text);
/// Waits for one; empty when the other side has gone.
std::string ReceivePacket(int socket);

}  // namespace vostrand::step
