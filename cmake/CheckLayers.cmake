# Fails when a source file includes a header of a higher layer. Run at configure time
# and as a test: cmake -DSOURCE_DIR=<checkout> -P cmake/CheckLayers.cmake
#
# Layers, lowest first. A core folder may include its own folder and folders of lower
# layers only; folders that share a layer do not include each other, so no two of them
# can ever form a loop. A ui/ folder sits above its core: it may include any core folder
# and any ui/ folder up to its own layer. The simulator and the peak-search library see
# only the C headers in platform/include.
set(layer_base 0)
set(layer_spectrum 1)
set(layer_roi 2)
set(layer_nuclide 2)
set(layer_report 2)
set(layer_plot 3)
set(layer_device 4)
set(layer_shell 5)
set(layer_cli 6)

if(SOURCE_DIR)
  get_filename_component(SOURCE_DIR "${SOURCE_DIR}" ABSOLUTE)
else()
  set(SOURCE_DIR ${CMAKE_CURRENT_LIST_DIR}/..)
endif()

# Splits "roi/ui/EditROI.h" or "roi/clsROI.h" into folder and ui flag.
function(vexo_layer_of path out_folder out_ui)
  string(REGEX MATCH "^([a-z]+)/(ui/)?" m "${path}")
  set(${out_folder} "${CMAKE_MATCH_1}" PARENT_SCOPE)
  if(CMAKE_MATCH_2)
    set(${out_ui} TRUE PARENT_SCOPE)
  else()
    set(${out_ui} FALSE PARENT_SCOPE)
  endif()
endfunction()

set(violations "")
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR}/src ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp)
foreach(src IN LISTS sources)
  vexo_layer_of("${src}" from from_ui)
  if(NOT DEFINED layer_${from})
    list(APPEND violations "src/${src}: folder '${from}' has no layer")
    continue()
  endif()
  file(STRINGS ${SOURCE_DIR}/src/${src} includes REGEX "^[ \t]*#[ \t]*include[ \t]+\"")
  foreach(line IN LISTS includes)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]+\"([^\"]+)\".*" "\\1" inc "${line}")
    if(NOT inc MATCHES "/")
      continue() # platform C headers and same-folder includes
    endif()
    vexo_layer_of("${inc}" to to_ui)
    if(NOT DEFINED layer_${to})
      continue() # not one of ours
    endif()
    set(ok TRUE)
    if(to STREQUAL from)
      if(to_ui AND NOT from_ui)
        set(ok FALSE) # a core file reaching into its own windows
      endif()
    elseif(to_ui AND NOT from_ui)
      set(ok FALSE)
    elseif(from_ui)
      if(layer_${to} GREATER layer_${from})
        set(ok FALSE)
      endif()
    elseif(NOT layer_${to} LESS layer_${from})
      set(ok FALSE)
    endif()
    if(NOT ok)
      list(APPEND violations "src/${src} includes ${inc}")
    endif()
  endforeach()
endforeach()

file(GLOB_RECURSE platform_sources ${SOURCE_DIR}/platform/*.h ${SOURCE_DIR}/platform/*.cpp)
foreach(src IN LISTS platform_sources)
  file(STRINGS ${src} includes REGEX "^[ \t]*#[ \t]*include[ \t]+\"[a-z]+/")
  foreach(line IN LISTS includes)
    list(APPEND violations "${src}: ${line}")
  endforeach()
endforeach()

if(violations)
  list(JOIN violations "\n  " text)
  message(FATAL_ERROR "Includes that climb a layer:\n  ${text}")
endif()
