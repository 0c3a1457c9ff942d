# Toolchain: 64-bit Windows by Debian's g++-mingw-w64-x86-64-posix; what was built runs under Wine. Nothing made for this
# machine is found, only what comes with the compiler and what lies in build/.
get_filename_component(TarvixSourceFolder "${CMAKE_CURRENT_LIST_DIR}" DIRECTORY)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR "${TarvixSourceFolder}/scripts/run-windows")

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${TarvixSourceFolder}/build")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
