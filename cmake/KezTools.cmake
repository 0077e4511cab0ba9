# kez_tool_library(NAME LIBS ...)
#
# The usual shape of a tool folder: every *.cc file except main.cc and the
# *_test.cc files goes into the static library NAME (linked with LIBS, its
# folder on the include path), and every *_test.cc file becomes a test
# binary linked with it. main.cc, if present, is the tool's own program and is
# added by the folder itself.
function(kez_tool_library name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB all CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cc)
  set(sources "")
  set(tests "")
  foreach(f ${all})
    if(f MATCHES "_test\\.cc$")
      list(APPEND tests ${f})
    elseif(NOT f MATCHES "/main\\.cc$")
      list(APPEND sources ${f})
    endif()
  endforeach()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC
    ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} PUBLIC ${ARG_LIBS})
  if(KEZ_BUILD_TESTS)
    foreach(t ${tests})
      get_filename_component(stem ${t} NAME_WE)
      kez_add_test(${stem} SOURCES ${t} LIBS ${name})
    endforeach()
  endif()
endfunction()
