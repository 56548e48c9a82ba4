# SPDX-License-Identifier: MIT
# The Debian packages, built by tools/package: each consists of an install component and its Debian documents.
set(KEYBOARD_HANDLER_MAINTAINER "The keyboard-handler developers <keyboard-handler@vantre.com>" CACHE STRING
    "Maintainer of the Debian packages")

file(STRINGS ${PROJECT_SOURCE_DIR}/packaging/debian/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "^keyboard-handler \\(${PROJECT_VERSION}-([0-9]+)\\) ")
  message(FATAL_ERROR "packaging/debian/changelog does not begin with version ${PROJECT_VERSION}: ${newest}")
endif()
set(revision ${CMAKE_MATCH_1})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME keyboard-handler)
set(CPACK_PACKAGE_CONTACT "${KEYBOARD_HANDLER_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${revision})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# debian_package(COMPONENT PACKAGE SECTION SUMMARY DESCRIPTION)
macro(debian_package component package section summary description)
  string(TOUPPER ${component} variable)
  set(CPACK_COMPONENT_${variable}_GROUP ${component})
  set(CPACK_COMPONENT_${variable}-DEBIAN_GROUP ${component})
  list(APPEND CPACK_COMPONENTS_ALL ${component} ${component}-debian)
  set(CPACK_DEBIAN_${variable}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${variable}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${variable}_DESCRIPTION "${summary}\n${description}")
endmacro()

set(same_version "(= ${PROJECT_VERSION}-${revision})")
set(installers "systemd | systemd-standalone-sysusers | systemd-sysusers, systemd | systemd-standalone-tmpfiles | systemd-tmpfiles")
if(CMAKE_CROSSCOMPILING)
  # The target has no package database to query. tools/package checks the libraries against this list.
  set(tools_libraries "libc6 (>= 2.36), libgcc-s1 (>= 3.5), libqt5core5a (>= 5.15.1), libqt5dbus5 (>= 5.15.1), libstdc++6 (>= 11), libsystemd0")
  set(daemon_libraries "${tools_libraries}, ")
else()
  set(CPACK_DEBIAN_DAEMON_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
endif()

debian_package(daemon keyboard-handler misc "front-panel keys of a braille embosser"
  "Reads the keys of the front panel, recognises single keys, long presses,\ncombinations and shortcuts, speaks their names and announces them to the\nother services of the device on the system bus.")
set(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS "${daemon_libraries}${installers}, dbus-bin, default-dbus-system-bus | dbus-system-bus")
set(CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/postinst ${PROJECT_SOURCE_DIR}/packaging/debian/prerm
    ${PROJECT_SOURCE_DIR}/packaging/debian/postrm ${PROJECT_BINARY_DIR}/packaging/debian/conffiles)

debian_package(development keyboard-handler-dev libdevel "client libraries of an embosser's services"
  "Static libraries and headers with which services of a braille embosser share\ntheir identifiers, messages, readiness and speech with its key daemon.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev, libsystemd-dev")

if(KEYBOARD_HANDLER_TOOLS)
  debian_package(tools keyboard-handler-tools devel "tools for the front-panel keys of a braille embosser"
    "keyboard-handler-keys finds mistakes in key lists, proves which of their rows\nkeys can announce, and explains what keys do. It needs no device.\nkeyboard-handlerctl looks at the keys of a running device and sends commands.")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${tools_libraries}")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA
      ${PROJECT_SOURCE_DIR}/packaging/debian/tools/postinst ${PROJECT_SOURCE_DIR}/packaging/debian/tools/prerm
      ${PROJECT_SOURCE_DIR}/packaging/debian/tools/postrm)
endif()

if(KEYBOARD_HANDLER_SIMULATOR)
  debian_package(simulator keyboard-handler-simulator devel "simulated braille embosser with front-panel keys"
    "Plays key scripts on a simulated device around the unchanged key daemon, and\nshows what the daemon announces and has spoken. Its front panel is a page for a\nbrowser.")
  set(CPACK_DEBIAN_SIMULATOR_PACKAGE_DEPENDS "keyboard-handler ${same_version}, bubblewrap, dbus-daemon, liblouis-data")
endif()
include(CPack)
