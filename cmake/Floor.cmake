# quietlark_floor(NAME SOURCES file... USES target...)
#
# One folder of src/ as a library, `quietlark::NAME`. USES names the floors below it and the outside
# libraries it may call; CMake refuses a circle between shared libraries (the debug preset), and
# tests/floors checks that every #include keeps to the same list.
function(quietlark_floor name)
  cmake_parse_arguments(PARSE_ARGV 1 floor "" "" "SOURCES;USES")
  set(target quietlark_${name})
  if(floor_SOURCES)
    add_library(${target} ${floor_SOURCES})
    set(visibility PUBLIC)
  else()
    add_library(${target} INTERFACE)
    set(visibility INTERFACE)
  endif()
  add_library(quietlark::${name} ALIAS ${target})
  target_include_directories(${target} ${visibility} "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${target} ${visibility} ${floor_USES})

  file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
  set(floors ${floor_USES})
  list(FILTER floors INCLUDE REGEX "^quietlark::")
  list(JOIN floors " " floors)
  set_property(GLOBAL APPEND_STRING PROPERTY QUIETLARK_FLOORS "${name} ${folder} ${floors}\n")
endfunction()
