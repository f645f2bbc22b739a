# SPDX-License-Identifier: BSD-3-Clause
#
# Toolchain file: Windows x86-64 programs, built on Debian with MinGW-w64 (posix thread model, which
# std::thread needs) and run through Wine. The compiler's run-time libraries are linked statically,
# so that an .exe runs alone.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_odbs_triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_odbs_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_odbs_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_odbs_triple}-windres)
set(CMAKE_AR ${_odbs_triple}-gcc-ar-posix)
set(CMAKE_RANLIB ${_odbs_triple}-gcc-ranlib-posix)

set(CMAKE_FIND_ROOT_PATH /usr/${_odbs_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Covers libgcc, libstdc++ and winpthread alike.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")

get_filename_component(_odbs_wine "${CMAKE_CURRENT_LIST_DIR}/../scripts/wine64" ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR "${_odbs_wine}")
