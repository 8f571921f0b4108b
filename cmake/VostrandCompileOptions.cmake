# What every target of ours is compiled and linked with.
add_library(vostrand_compile_options INTERFACE)

target_compile_options(vostrand_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  # GCC 12 sees overlapping copies in its own std::string once it optimises.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  # Scores must not change their last digit with the machine: no contraction to fused multiply-add.
  -ffp-contract=off)

if(VOSTRAND_WARNINGS_AS_ERRORS)
  target_compile_options(vostrand_compile_options INTERFACE -Werror)
endif()

if(VOSTRAND_SANITIZERS)
  target_compile_options(vostrand_compile_options INTERFACE
    -fsanitize=${VOSTRAND_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vostrand_compile_options INTERFACE -fsanitize=${VOSTRAND_SANITIZERS})
endif()
