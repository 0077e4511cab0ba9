# kez_add_component(NAME SOURCES ... [DEPENDS other ...])
#
# Declares one subsystem of the library: an object library kez_<NAME>_obj
# (position independent, hidden symbols), a static library kez_<NAME> made of
# those objects for tools and tests, and a note for kez_add_shared_library(),
# which builds libkez.so from the objects of every component.
function(kez_add_component name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(kez_${name}_obj OBJECT ${ARG_SOURCES})
  target_include_directories(kez_${name}_obj PUBLIC
    ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_compile_definitions(kez_${name}_obj PRIVATE KEZ_BUILDING_LIBRARY)
  add_library(kez_${name} STATIC $<TARGET_OBJECTS:kez_${name}_obj>)
  target_include_directories(kez_${name} PUBLIC
    ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  foreach(dep ${ARG_DEPENDS})
    target_link_libraries(kez_${name}_obj PUBLIC kez_${dep}_obj)
    target_link_libraries(kez_${name} PUBLIC kez_${dep})
  endforeach()
  target_link_libraries(kez_${name} PUBLIC m)
  set_property(GLOBAL APPEND PROPERTY KEZ_COMPONENTS ${name})
endfunction()

# Builds libkez.so from every component, and kez_core, an interface target
# that links all static components (what tools and tests link against).
function(kez_add_shared_library)
  get_property(components GLOBAL PROPERTY KEZ_COMPONENTS)
  if(NOT components)
    return()
  endif()
  set(objects "")
  add_library(kez_core INTERFACE)
  foreach(c ${components})
    list(APPEND objects $<TARGET_OBJECTS:kez_${c}_obj>)
    target_link_libraries(kez_core INTERFACE kez_${c})
  endforeach()
  add_library(kez SHARED ${objects})
  target_include_directories(kez PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
  target_link_libraries(kez PRIVATE m)
  # Android 15 and later devices may use 16 KB pages; align the segments so
  # the library loads on them too.
  if(CMAKE_SYSTEM_NAME STREQUAL "Android" OR KEZ_PAGE_ALIGN_16K)
    target_link_options(kez PRIVATE "-Wl,-z,max-page-size=16384")
  endif()
  target_link_options(kez PRIVATE "-Wl,--no-undefined")
  # Off Android the library carries its version: libkez.so.1.4.21, with the
  # SONAME libkez.so.1 (the major version changes when the C interface
  # breaks) and libkez.so for the linker. An app loads the plain libkez.so
  # with System.loadLibrary("kez"), so Android keeps the unversioned name.
  if(NOT CMAKE_SYSTEM_NAME STREQUAL "Android")
    set_target_properties(kez PROPERTIES
      VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
endfunction()

# kez_component_here(NAME [DEPENDS other ...])
#
# The usual way a folder declares its component: every *.cc file of the
# folder except the *_test.cc ones is a library source, and every *_test.cc
# file is one test binary (named after the file) linked with the component.
# Extra libraries for the tests: TEST_LIBS.
function(kez_component_here name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;TEST_LIBS" ${ARGN})
  file(GLOB all CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cc)
  set(sources "")
  set(tests "")
  foreach(f ${all})
    if(f MATCHES "_test\\.cc$")
      list(APPEND tests ${f})
    else()
      list(APPEND sources ${f})
    endif()
  endforeach()
  if(NOT sources)
    return()
  endif()
  kez_add_component(${name} SOURCES ${sources} DEPENDS ${ARG_DEPENDS})
  if(KEZ_BUILD_TESTS)
    foreach(t ${tests})
      get_filename_component(stem ${t} NAME_WE)
      kez_add_test(${stem} SOURCES ${t} LIBS kez_${name} ${ARG_TEST_LIBS})
    endforeach()
  endif()
endfunction()
