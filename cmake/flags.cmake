# Flags stand on interface targets, so that each target takes what it needs and nothing leaks.
include(CheckCXXSourceCompiles)
include(CMakePushCheckState)

option(VQVEC_WERROR "Warnings are errors" OFF)
option(VQVEC_STATIC "Link the program fully static where the C library allows it" OFF)
set(VQVEC_SANITIZERS "" CACHE STRING "Value for -fsanitize=, for the library, the program and tests")
option(VQVEC_COVERAGE "Instrument for source-based coverage (clang)" OFF)
option(VQVEC_LIBFUZZER "Build the fuzzers of fuzz/ (clang)" OFF)

add_library(vqvec_flags INTERFACE)
target_compile_features(vqvec_flags INTERFACE cxx_std_20)
target_compile_options(vqvec_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  # The same bytes on every machine: no fused multiply-add where the rules have two roundings.
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

# A static binary runs on any node of a cluster and starts in half the time.
add_library(vqvec_static INTERFACE)
if(VQVEC_STATIC)
  cmake_push_check_state(RESET)
  set(CMAKE_REQUIRED_LINK_OPTIONS -static)
  check_cxx_source_compiles("int main() { return 0; }" VQVEC_CAN_LINK_STATIC)
  cmake_pop_check_state()
  if(VQVEC_CAN_LINK_STATIC)
    target_link_options(vqvec_static INTERFACE -static)
  endif()
endif()
