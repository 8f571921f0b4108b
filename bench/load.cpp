// Loads the library of the given path, as a host does that has it as a plug-in.
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc == 2 && ::dlopen(argv[1], RTLD_NOW)) return 0;
  std::fprintf(stderr, "%s\n", argc == 2 ? ::dlerror() : "usage: bench_load LIBRARY");
  return 1;
}
