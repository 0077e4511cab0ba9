# Install rules, the CMake package, the pkg-config files and the Debian
# package. Included last by the top-level CMakeLists.txt, when every
# component, tool and the Java binding are known.
#
#   cmake --install BUILD --prefix PREFIX   lays out under PREFIX:
#     lib/libkez.so.1.4.21, libkez.so.1 (the SONAME), libkez.so
#     include/kez/kez.h, include/kez/export.h        the C interface
#     include/kez/offline/<folder>/<Class>.h          the exported C++ classes
#     lib/cmake/kez/kezConfig.cmake (+ version, targets)  find_package(kez)
#     lib/pkgconfig/kez.pc, kez-offline.pc            pkg-config
#     bin/kez-*                                       the command-line tools
#     share/java/kez.jar                              with the Java binding
#     share/doc/kez/                                  README, docs, LICENSE,
#                                                     NOTICE, examples
#   cpack -G DEB --config BUILD/CPackConfig.cmake     makes kez_1.4.21_<arch>.deb
#
# The build tree is a package too: find_package(kez) with kez_DIR=BUILD.
# Targets: kez::kez (libkez.so and the C header) and kez::offline (adds the
# offline C++ classes, C++17).
if(NOT TARGET kez)
  return()
endif()

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KEZ_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kez)
set(KEZ_OFFLINE_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/kez/offline)

# --- The library and the C interface ---------------------------------------
install(TARGETS kez EXPORT kezTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kez
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
add_library(kez::kez ALIAS kez)

# --- The offline C++ classes -------------------------------------------------
# Every header of a component that marks something KEZ_EXPORT, and every
# header of the source tree that those include, keeping its path relative to
# the source root ("predictor/Foo.h"), so that the headers find each other
# with one include directory. New components are picked up from the
# KEZ_COMPONENTS list.
function(kez_offline_headers out)
  get_property(components GLOBAL PROPERTY KEZ_COMPONENTS)
  set(pending "")
  foreach(c ${components})
    get_target_property(dir kez_${c}_obj SOURCE_DIR)
    file(GLOB headers CONFIGURE_DEPENDS ${dir}/*.h)
    foreach(h ${headers})
      file(STRINGS ${h} marks REGEX "KEZ_EXPORT")
      if(marks)
        file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR} ${h})
        list(APPEND pending ${rel})
      endif()
    endforeach()
  endforeach()
  set(found "")
  while(pending)
    list(POP_FRONT pending rel)
    if(rel IN_LIST found)
      continue()
    endif()
    list(APPEND found ${rel})
    file(STRINGS ${PROJECT_SOURCE_DIR}/${rel} includes
      REGEX "^[ \t]*#[ \t]*include[ \t]*\"[^\"]+\"")
    foreach(line ${includes})
      string(REGEX REPLACE ".*\"([^\"]+)\".*" "\\1" inc "${line}")
      # Headers under include/ are installed as they are; the rest of the
      # source tree goes under include/kez/offline.
      if(NOT EXISTS ${PROJECT_SOURCE_DIR}/include/${inc}
         AND EXISTS ${PROJECT_SOURCE_DIR}/${inc})
        list(APPEND pending ${inc})
      endif()
    endforeach()
  endwhile()
  list(SORT found)
  set(${out} ${found} PARENT_SCOPE)
endfunction()

kez_offline_headers(KEZ_OFFLINE_HEADERS)
foreach(rel ${KEZ_OFFLINE_HEADERS})
  get_filename_component(sub ${rel} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${rel}
    DESTINATION ${KEZ_OFFLINE_INCLUDE_DIR}/${sub})
endforeach()

add_library(kez_offline INTERFACE)
set_target_properties(kez_offline PROPERTIES EXPORT_NAME offline)
target_include_directories(kez_offline INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<INSTALL_INTERFACE:${KEZ_OFFLINE_INCLUDE_DIR}>)
target_link_libraries(kez_offline INTERFACE kez)
target_compile_features(kez_offline INTERFACE cxx_std_17)
add_library(kez::offline ALIAS kez_offline)
install(TARGETS kez_offline EXPORT kezTargets)

# --- The CMake package -------------------------------------------------------
install(EXPORT kezTargets NAMESPACE kez:: DESTINATION ${KEZ_CMAKE_DIR})
export(EXPORT kezTargets NAMESPACE kez::
  FILE ${PROJECT_BINARY_DIR}/kezTargets.cmake)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kezConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kezConfig.cmake INSTALL_DESTINATION ${KEZ_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kezConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kezConfig.cmake
  ${PROJECT_BINARY_DIR}/kezConfigVersion.cmake DESTINATION ${KEZ_CMAKE_DIR})

# --- pkg-config --------------------------------------------------------------
# Written at install time, so that the files name the prefix actually
# installed to (cmake --install --prefix, or /usr in the Debian package).
foreach(pc kez kez-offline)
  install(CODE "
    set(KEZ_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\")
    set(KEZ_PC_LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
    set(KEZ_PC_INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
    set(KEZ_PC_VERSION \"${PROJECT_VERSION}\")
    configure_file(\"${PROJECT_SOURCE_DIR}/cmake/${pc}.pc.in\"
      \"${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc\" @ONLY)")
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# --- The command-line tools --------------------------------------------------
# Every executable named kez-* defined under tools/, wherever it lives there.
function(kez_tool_targets dir out)
  set(tools "")
  get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(t ${targets})
    get_target_property(type ${t} TYPE)
    if(type STREQUAL "EXECUTABLE" AND t MATCHES "^kez-")
      list(APPEND tools ${t})
    endif()
  endforeach()
  get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
  foreach(sub ${subdirs})
    kez_tool_targets(${sub} more)
    list(APPEND tools ${more})
  endforeach()
  set(${out} ${tools} PARENT_SCOPE)
endfunction()

if(KEZ_BUILD_TOOLS AND EXISTS ${PROJECT_SOURCE_DIR}/tools/CMakeLists.txt)
  kez_tool_targets(${PROJECT_SOURCE_DIR}/tools KEZ_TOOLS)
  if(KEZ_TOOLS)
    install(TARGETS ${KEZ_TOOLS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endif()

# --- The Java API --------------------------------------------------------------
if(TARGET kez_java_api)
  get_target_property(kez_jar kez_java_api KEZ_JAR)
  install(FILES ${kez_jar} DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
endif()

# --- Documentation, licence and notices ----------------------------------------
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/LICENSE
  ${PROJECT_SOURCE_DIR}/NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

# --- The Debian package ----------------------------------------------------------
# One package, kez: the library, the headers, the CMake and pkg-config files,
# the tools, the jar and the docs. Its dependencies come from
# dpkg-shlibdeps (package dpkg-dev; CPack also needs `file`).
set(CPACK_PACKAGE_NAME kez)
set(CPACK_PACKAGE_VENDOR "the kez developers")
set(CPACK_PACKAGE_CONTACT "the kez developers" CACHE STRING
  "Maintainer named in the Debian package")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "phone battery charge and discharge forecasts: library, headers and tools")
set(CPACK_PACKAGE_DESCRIPTION
  "libkez forecasts how a phone's battery will charge and discharge over the
coming hours from the status reports of the last weeks. This package holds
the shared library with its C header and its exported C++ classes, the CMake
and pkg-config files to build against it, the Java API (kez.jar), the
command-line tools kez-forecast, kez-simulate, kez-eval, kez-tune and
kez-table, and the documentation.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
if(TARGET kez_java_api)
  # The jar loads libkez.so; a JRE runs it.
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS "default-jre-headless | java8-runtime-headless")
endif()
include(CPack)
