# SPDX-License-Identifier: MIT
# Targets for the installed platform libraries, with the names of the bundled ones. Set CMAKE_PREFIX_PATH if the
# libraries are not in a default location.

# system_platform_library(NAME HEADER): the library NAME; HEADER locates its include folder.
function(system_platform_library name header)
  string(TOUPPER ${name} variable)
  find_library(${variable}_LIBRARY ${name})
  find_path(${variable}_INCLUDE_DIR ${header})
  if(NOT ${variable}_LIBRARY)
    message(FATAL_ERROR "The platform library '${name}' is not installed: neither lib${name}.so nor lib${name}.a "
                        "was found. Set CMAKE_PREFIX_PATH or ${variable}_LIBRARY.")
  endif()
  if(NOT ${variable}_INCLUDE_DIR)
    message(FATAL_ERROR "The headers of the platform library '${name}' are not installed: <${header}> was not "
                        "found. Set CMAKE_PREFIX_PATH or ${variable}_INCLUDE_DIR.")
  endif()
  add_library(${name} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES
    IMPORTED_LOCATION ${${variable}_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${${variable}_INCLUDE_DIR}
    INTERFACE_LINK_LIBRARIES "Qt5::Core;Qt5::DBus")
endfunction()

system_platform_library(ls ls/Identifiers.h)
system_platform_library(vantre vantre/DBusArgumentUnpack.h)
system_platform_library(servicewatcher servicewatcher/ServiceWatcher.h)
system_platform_library(speech speech/Speech.h)
system_platform_library(translation translation/Sid.h)
system_platform_library(configurationmanager configurationmanager/ConfigurationManager.h)

target_compile_definitions(ls INTERFACE KEYBOARD_HANDLER_BUS_PREFIX="${KEYBOARD_HANDLER_BUS_PREFIX}")
target_link_libraries(ls INTERFACE vantre)
target_link_libraries(configurationmanager INTERFACE vantre)

# Static libraries do not record their dependencies.
if(SERVICEWATCHER_LIBRARY MATCHES "\\.a$")
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(LIBSYSTEMD REQUIRED IMPORTED_TARGET GLOBAL libsystemd)
  target_link_libraries(servicewatcher INTERFACE PkgConfig::LIBSYSTEMD)
endif()
