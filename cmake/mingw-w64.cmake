# Toolchain file: Windows programs from Linux, with Debian's g++-mingw-w64-x86-64-posix. Everything is linked in, so that
# the programs need no other files.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
list(APPEND CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32) # -D CMAKE_FIND_ROOT_PATH=... adds folders of libraries
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CXX_FLAGS_INIT -D_FILE_OFFSET_BITS=64)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
find_program(WINE wine)
if(WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${WINE}")
endif()
