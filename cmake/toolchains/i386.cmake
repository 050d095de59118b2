# Debian's cross compiler. An amd64 machine runs the programs itself.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
# The older floating-point unit rounds to 64 bits only when a number is stored.
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
