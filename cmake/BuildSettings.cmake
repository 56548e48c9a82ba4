# SPDX-License-Identifier: MIT
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Like the packages; -O3 makes the daemon a third larger but not faster.
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # For Qt's logging macros and a signal with the name of a virtual function of QObject.
  add_compile_options(-Wno-gnu-zero-variadic-macro-arguments -Wno-overloaded-virtual)
endif()
if(KEYBOARD_HANDLER_WERROR)
  add_compile_options(-Werror)
endif()
if(KEYBOARD_HANDLER_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Log lines carry no source position: technicians match them by their text.
add_compile_definitions(QT_DEPRECATED_WARNINGS QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS
                        QT_NO_MESSAGELOGCONTEXT)
