# The C++ library of macOS and FreeBSD, on Linux. Debian's packages of different versions exclude each
# other, so `script/everywhere` unpacks them to build/libcxx-packages.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VQVEC_LIBCXX_VERSION)
set(libcxx ${CMAKE_CURRENT_LIST_DIR}/../../build/libcxx-packages/usr/lib/llvm-${VQVEC_LIBCXX_VERSION})
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -isystem ${libcxx}/include/c++/v1")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib++ -L${libcxx}/lib")
set(CMAKE_CXX_STANDARD_LIBRARIES "-l:libc++.a -l:libc++abi.a")
