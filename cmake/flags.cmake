# Flags are set on interface targets, so that each target takes what it needs and nothing leaks.
include(CheckCXXSourceCompiles)
include(CMakePushCheckState)

option(VQVEC_WERROR "Warnings are errors" OFF)
option(VQVEC_STATIC "Link the program statically where the C library allows it" OFF)
option(VQVEC_HARDENED "Fortified library calls, stack protector, read-only relocations" OFF)
set(VQVEC_SANITIZERS "" CACHE STRING "Value for -fsanitize=, for the library, the program and tests")
option(VQVEC_COVERAGE "Instrument for source-based coverage (clang)" OFF)
option(VQVEC_LIBFUZZER "Build the fuzzers of tests/fuzz/ (clang)" OFF)

add_library(vqvec_flags INTERFACE)
target_compile_features(vqvec_flags INTERFACE cxx_std_20)
target_compile_options(vqvec_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  # The same bytes on every machine: no fused multiply-add, which rounds once instead of twice.
  -ffp-contract=off
  $<$<BOOL:${VQVEC_WERROR}>:-Werror>)

if(VQVEC_SANITIZERS)
  target_compile_options(vqvec_flags INTERFACE
    -fsanitize=${VQVEC_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vqvec_flags INTERFACE -fsanitize=${VQVEC_SANITIZERS})
endif()

if(VQVEC_LIBFUZZER)
  target_compile_options(vqvec_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(VQVEC_COVERAGE)
  target_compile_options(vqvec_flags INTERFACE -fprofile-instr-generate -fcoverage-mapping
    $<$<VERSION_GREATER_EQUAL:${CMAKE_CXX_COMPILER_VERSION},18>:-fcoverage-mcdc>)
  target_link_options(vqvec_flags INTERFACE -fprofile-instr-generate)
endif()

# These make a fault in the program harder to exploit, at no measurable cost.
if(VQVEC_HARDENED AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
  target_compile_options(vqvec_flags INTERFACE
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -fstack-protector-strong)
  target_link_options(vqvec_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
endif()

# A static program runs on any node of a cluster and starts in half the time. If it is also
# position-independent, it is loaded at a random address, and finds its exception tables at once.
add_library(vqvec_static INTERFACE)
if(VQVEC_STATIC AND WIN32)
  target_link_options(vqvec_static INTERFACE -static)
elseif(VQVEC_STATIC)
  foreach(kind static-pie static)
    cmake_push_check_state(RESET)
    set(CMAKE_REQUIRED_FLAGS -fPIE)
    set(CMAKE_REQUIRED_LINK_OPTIONS -${kind})
    string(MAKE_C_IDENTIFIER VQVEC_CAN_LINK_${kind} can_link)
    check_cxx_source_compiles("int main() { return 0; }" ${can_link})
    cmake_pop_check_state()
    if(${can_link})
      target_compile_options(vqvec_flags INTERFACE
        $<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:TYPE>,MODULE_LIBRARY>>:-fPIE>)
      target_link_options(vqvec_static INTERFACE -${kind})
      break()
    endif()
  endforeach()
endif()
