# Debian's cross compiler. The tests run the programs under qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR riscv64)
set(CMAKE_CXX_COMPILER riscv64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-riscv64-static)
