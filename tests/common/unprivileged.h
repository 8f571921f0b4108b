#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

/// While it lives, the thread reaches files as a user without root's rights does: tests often run as root,
/// whom no permission stops.
class Unprivileged {
 public:
  Unprivileged() {
    if (::geteuid() == 0) ::setfsuid(65534);
  }
  ~Unprivileged() { ::setfsuid(::geteuid()); }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;
};
