#include "step/packets.h"

#include <sys/socket.h>

#include <cerrno>
#include <cstdlib>

namespace vostrand::step {
namespace {

std::string Lead(PacketKind kind) {
  return std::string(1, static_cast<char>(kind));
}

}  // namespace

// Texts closed by zeros, which no name and no argument can hold.
std::string AsText(const RunPacket& packet) {
  std::string text =
      Lead(PacketKind::run) + std::to_string(packet.timeout_ms) + '\0' + packet.output_file + '\0';
  for (const std::string& word : packet.words) text += word + '\0';
  return text;
}

bool FromText(const std::string& text, RunPacket& packet) {
  if (!text.starts_with(static_cast<char>(PacketKind::run))) return false;
  std::vector<std::string> fields;
  std::size_t begin = 1;
  for (std::size_t end; (end = text.find('\0', begin)) != std::string::npos; begin = end + 1)
    fields.push_back(text.substr(begin, end - begin));
  if (fields.size() < 3 || begin != text.size()) return false;
  packet.timeout_ms = std::atoi(fields[0].c_str());
  packet.output_file = fields[1];
  packet.words.assign(fields.begin() + 2, fields.end());
  return true;
}

std::string StartedPacket(pid_t group) {
  return Lead(PacketKind::started) + std::to_string(group);
}

pid_t GroupOf(const std::string& text) {
  return text.starts_with(static_cast<char>(PacketKind::started)) ? std::atoi(text.c_str() + 1) : 0;
}

std::string EndedPacket(const Outcome& outcome) {
  return Lead(PacketKind::ended) + AsText(outcome);
}

bool OutcomeOf(const std::string& text, Outcome& outcome) {
  return text.starts_with(static_cast<char>(PacketKind::ended)) && FromText(text.substr(1), outcome);
}

std::string CancelPacket() {
  return Lead(PacketKind::cancel);
}

bool SendPacket(int socket, const std::string& text) {
  ssize_t sent = 0;
  do sent = send(socket, text.data(), text.size(), MSG_NOSIGNAL);
  while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(text.size());
}

std::string ReceivePacket(int socket) {
  ssize_t length = 0;
  do length = recv(socket, nullptr, 0, MSG_PEEK | MSG_TRUNC);
  while (length < 0 && (errno == EINTR || errno == ECONNRESET));  // What was sent before can still be had.
  std::string text(static_cast<std::size_t>(length < 0 ? 0 : length), '\0');
  if (length > 0) length = recv(socket, text.data(), text.size(), 0);
  return length > 0 ? text : std::string();
}

}  // namespace vostrand::step
