# GoogleTest: the system's packaged library, or its sources (Debian ships them
# in /usr/src/googletest) when cross-compiling or when no package is found.
option(KEZ_GTEST_FROM_SOURCE "Build GoogleTest from its sources" OFF)
set(KEZ_GTEST_SOURCE_DIR "/usr/src/googletest" CACHE PATH "GoogleTest sources")

if(NOT KEZ_GTEST_FROM_SOURCE AND NOT CMAKE_CROSSCOMPILING)
  find_package(GTest QUIET)
endif()
if(NOT GTest_FOUND)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  add_subdirectory(${KEZ_GTEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  # GoogleTest 1.11 and later declare these aliases themselves.
  if(NOT TARGET GTest::gtest)
    add_library(GTest::gtest ALIAS gtest)
  endif()
  if(NOT TARGET GTest::gtest_main)
    add_library(GTest::gtest_main ALIAS gtest_main)
  endif()
endif()

# kez_add_test(NAME SOURCES ... LIBS ...): one test binary, one CTest entry.
function(kez_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE
    KEZ_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS unit)
endfunction()
