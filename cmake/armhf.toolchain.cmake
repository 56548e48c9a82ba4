# SPDX-License-Identifier: MIT
# Cross build for 32-bit ARM (Debian's armhf). tools/sysroot creates the sysroot; KEYBOARD_HANDLER_SYSROOT overrides it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

if(DEFINED ENV{KEYBOARD_HANDLER_CACHE})
  set(cache $ENV{KEYBOARD_HANDLER_CACHE})
elseif(DEFINED ENV{XDG_CACHE_HOME})
  set(cache $ENV{XDG_CACHE_HOME}/keyboard-handler)
else()
  set(cache $ENV{HOME}/.cache/keyboard-handler)
endif()
set(KEYBOARD_HANDLER_SYSROOT ${cache}/armhf-sysroot CACHE PATH "Headers and libraries of the target system")
# CMake's compiler checks are separate projects, which must use the same sysroot.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KEYBOARD_HANDLER_SYSROOT)
if(NOT IS_DIRECTORY ${KEYBOARD_HANDLER_SYSROOT})
  message(FATAL_ERROR "${KEYBOARD_HANDLER_SYSROOT} does not exist. Create the sysroot with tools/sysroot.")
endif()

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_SYSROOT ${KEYBOARD_HANDLER_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_DIR} "")
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})

# CTest runs the test programs with this emulator.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static -L ${CMAKE_SYSROOT})
