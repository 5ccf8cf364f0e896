# Fails when a source file includes a folder above its own. The folders of
# src/ stand in layers, lowest first; a file may include its own folder and
# any folder of a lower layer. The four areas share a layer but never include
# one another: what two areas share lives in foundations/ or ui/.
#
#   cmake -DSOURCE_DIR=<dir holding the folders> -P cmake/CheckLayers.cmake
#
# Includes are read from #include "folder/..." lines; "resource.h" counts as
# res/, the control ids every layer that makes windows may use.
set(CORVANE_LAYERS
  "platform res"
  "foundations"
  "ui"
  "processes startup browser applications"
  "options"
  "shell")

if(NOT SOURCE_DIR)
  message(FATAL_ERROR "CheckLayers: give -DSOURCE_DIR=<src folder>")
endif()

set(rank 0)
foreach(layer IN LISTS CORVANE_LAYERS)
  string(REPLACE " " ";" folders "${layer}")
  foreach(folder IN LISTS folders)
    set(rank_${folder} ${rank})
  endforeach()
  math(EXPR rank "${rank} + 1")
endforeach()

file(GLOB_RECURSE sources RELATIVE "${SOURCE_DIR}" "${SOURCE_DIR}/*.h" "${SOURCE_DIR}/*.cpp")
set(problems "")
foreach(source IN LISTS sources)
  string(REGEX MATCH "^[^/]+" own "${source}")
  if(NOT DEFINED rank_${own})
    string(APPEND problems "\n  ${source}: folder ${own}/ has no layer")
    continue()
  endif()
  file(STRINGS "${SOURCE_DIR}/${source}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]*)\".*" "\\1" included "${line}")
    if(included STREQUAL "resource.h")
      set(target res)
    elseif(included MATCHES "^([^/]+)/")
      set(target "${CMAKE_MATCH_1}")
    else()
      continue()  # a header beside the file
    endif()
    if(target STREQUAL own OR NOT DEFINED rank_${target})
      continue()
    endif()
    if(rank_${target} GREATER rank_${own})
      string(APPEND problems "\n  ${source}: includes ${included}, from a layer above ${own}/")
    elseif(rank_${target} EQUAL rank_${own} AND NOT own MATCHES "^(platform|res)$")
      string(APPEND problems "\n  ${source}: includes ${included}; ${own}/ and ${target}/ are peers")
    endif()
  endforeach()
endforeach()

if(problems)
  message(FATAL_ERROR "Includes against the layers (lowest first: ${CORVANE_LAYERS}):${problems}")
endif()
list(LENGTH sources count)
message(STATUS "Layers hold: ${count} files checked")
