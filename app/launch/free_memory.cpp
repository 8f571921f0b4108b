#include "launch/free_memory.h"

#include <climits>
#include <fstream>
#include <string>

namespace vostrand {

long FreeMemoryKib() {
  std::ifstream info("/proc/meminfo");
  std::string name;
  for (long kib = 0; info >> name >> kib; info.ignore(80, '\n'))
    if (name == "MemAvailable:") return kib;
  return LONG_MAX;
}

}  // namespace vostrand
