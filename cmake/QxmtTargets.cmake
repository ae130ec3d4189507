# host/layers.txt is the one place that says which folder may include which; the build links by it and a lint test
# holds the includes to it. qxmt_read_layers() sets QXMT_LAYERS (lowest first) and QXMT_LAYER_<folder>.
function(qxmt_read_layers file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  file(STRINGS "${file}" rows REGEX "^[a-z]+:")
  set(names "")
  foreach(row IN LISTS rows)
    string(REGEX MATCH "^([a-z]+):(.*)$" match "${row}")
    set(name "${CMAKE_MATCH_1}")
    separate_arguments(depends UNIX_COMMAND "${CMAKE_MATCH_2}")
    foreach(depend IN LISTS depends)
      if(NOT depend IN_LIST names)
        message(FATAL_ERROR "${file}: '${name}' names '${depend}', which is not a folder above it in the table")
      endif()
    endforeach()
    list(APPEND names "${name}")
    set(QXMT_LAYER_${name} "${depends}" PARENT_SCOPE)
  endforeach()
  set(QXMT_LAYERS "${names}" PARENT_SCOPE)
endfunction()

# One static library a host folder: host_layer(<folder> [LIBRARIES libs...] [PRECOMPILE headers...] [EXCLUDE regex])
# What it links to stands in host/layers.txt. PRECOMPILE names what most files of the layer include; the standard
# library comes with it.
function(host_layer name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES;EXCLUDE;PRECOMPILE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/host/${name}/*.cpp")
  foreach(pattern IN LISTS ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${pattern}")
  endforeach()
  set(depends ${QXMT_LAYER_${name}})
  if(NOT name STREQUAL "base")
    list(PREPEND depends base)
  endif()
  list(TRANSFORM depends PREPEND host_)
  if(sources)
    add_library(host_${name} STATIC ${sources})
    set(scope PUBLIC)
    target_link_libraries(host_${name} PRIVATE qxmt_warnings)
    if(ARG_PRECOMPILE)
      qxmt_precompile(host_${name} ${ARG_PRECOMPILE})
    endif()
  else()
    add_library(host_${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_compile_features(host_${name} ${scope} cxx_std_20)
  target_include_directories(host_${name} ${scope} "${PROJECT_SOURCE_DIR}")
  target_link_libraries(host_${name} ${scope} ${depends} ${ARG_LIBRARIES})
endfunction()

# Precompiles the standard headers that nearly every file includes and the project headers given ("std": none).
# Files keep naming what they use: the build with QXMT_PRECOMPILE=OFF proves it.
function(qxmt_precompile target)
  if(NOT QXMT_PRECOMPILE)
    return()
  endif()
  set(headers <algorithm> <array> <charconv> <cmath> <cstddef> <cstdint> <cstring> <functional> <map> <memory> <numbers>
      <optional> <set> <string> <string_view> <tuple> <unordered_map> <unordered_set> <utility> <variant> <vector>)
  set(project ${ARGN})
  if(NOT "toolkit" IN_LIST project)
    list(APPEND headers <span> <fmt/format.h> <tl/expected.hpp>)
  endif()
  list(REMOVE_ITEM project std toolkit)
  foreach(header IN LISTS project)
    if(header MATCHES "^<")
      list(APPEND headers "${header}")
    else()
      list(APPEND headers "<${header}>")  # no absolute path: checkouts share one compiler cache
    endif()
  endforeach()
  target_precompile_headers(${target} PRIVATE ${headers})
endfunction()

# The list of modelling commands: each source directly in the folder, say poly_poke.cpp, defines
# `void polyPoke(Declarations&)`. A new file is in the list with the next build.
function(qxmt_modelling_table target folder)
  file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp")
  set(declared "")
  set(called "")
  foreach(source IN LISTS sources)
    get_filename_component(name "${source}" NAME_WE)
    string(REGEX MATCHALL "_[a-z0-9]" humps "${name}")
    foreach(hump IN LISTS humps)
      string(SUBSTRING "${hump}" 1 1 letter)
      string(TOUPPER "${letter}" letter)
      string(REPLACE "${hump}" "${letter}" name "${name}")
    endforeach()
    string(APPEND declared "void ${name}(Declarations& add);\n")
    string(APPEND called "    ${name}(all);\n")
  endforeach()
  set(table "${CMAKE_CURRENT_BINARY_DIR}/modelling_table.cpp")
  file(CONFIGURE OUTPUT "${table}" @ONLY CONTENT [=[
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

@declared@
const Declarations& declarations() {
  static const Declarations table = [] {
    Declarations all;
@called@    return all;
  }();
  return table;
}

}  // namespace host::modelling
]=])
  target_sources(${target} PRIVATE "${table}")
endfunction()
