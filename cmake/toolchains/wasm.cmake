# Debian's Emscripten. Node.js runs the program; the page in docs/try runs it in a browser.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CXX_FLAGS_INIT -fwasm-exceptions)
