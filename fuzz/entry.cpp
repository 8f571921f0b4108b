// Where the fuzzer enters: FUZZ_TARGET is the target's name.
#include <cstddef>
#include <cstdint>
#include <string_view>

void FUZZ_TARGET(std::string_view in);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_TARGET({reinterpret_cast<const char*>(data), size});
  return 0;
}
