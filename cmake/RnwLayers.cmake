# The folders of src/ are layers, each an OBJECT library, linked only downward:
#   host < sql < middletier < session < orderdata < tiles, grid, log < station
# Objects, not archives: built-in host objects register themselves from static
# initialisers, which an archive would leave out. The component links the
# objects of every layer; nothing of a layer is compiled twice.
#
# The build refuses a layer that reaches upward, in two ways:
# - rnw_check_<layer>: a shared object of the layer's objects linked with
#   --no-undefined against the check objects of the layers below only, so a
#   call into a higher (or sideways) layer is an undefined symbol;
# - rnw_includes_<layer>: no file of the folder includes a header of a folder
#   that is not its own or below it (cmake/check_layer_includes.cmake).

set(RNW_LAYER_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/check_layer_includes.cmake)

# rnw_layer(NAME <name> [FOLDER <dir>] [BELOW <layers>...] SOURCES <files>...
#           [LIBS <public link items>...] [PRIVATE_LIBS <items>...]
#           [APART OBJECTS <target>])
# BELOW names the layers right under this one; the ones under those come along.
# APART: checked like a layer, but not part of the component (the demo), its
# objects in the target named by OBJECTS.
function(rnw_layer)
  cmake_parse_arguments(L "APART" "NAME;FOLDER;OBJECTS" "BELOW;SOURCES;LIBS;PRIVATE_LIBS" ${ARGN})
  set(target rnw_${L_NAME})
  if(L_OBJECTS)
    set(target ${L_OBJECTS})
  endif()
  if(NOT L_FOLDER)
    set(L_FOLDER ${CMAKE_CURRENT_SOURCE_DIR})
  endif()

  set(allowed ${L_NAME})
  set(check_below)
  foreach(below ${L_BELOW})
    if(NOT TARGET rnw_${below})
      message(FATAL_ERROR "The layer ${L_NAME} sits on ${below}, which this build leaves out (RNW_LAYERS).")
    endif()
    get_property(below_allowed GLOBAL PROPERTY RNW_LAYER_REACH_${below})
    list(APPEND allowed ${below_allowed})
  endforeach()
  list(REMOVE_DUPLICATES allowed)
  # Every layer under this one, each on the check's link line: a symbol that
  # only a library's own dependency holds does not count as defined.
  foreach(reach ${allowed})
    if(NOT reach STREQUAL L_NAME)
      list(APPEND check_below rnw_check_${reach})
    endif()
  endforeach()
  set_property(GLOBAL PROPERTY RNW_LAYER_REACH_${L_NAME} ${allowed})
  if(NOT L_APART)
    set_property(GLOBAL APPEND PROPERTY RNW_LAYERS_BUILT ${L_NAME})
  endif()

  add_library(${target} OBJECT ${L_SOURCES})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON
                                             AUTOUIC_SEARCH_PATHS ${L_FOLDER})
  target_include_directories(${target} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_compile_options(${target} PRIVATE ${RNW_WARNINGS})
  if(RNW_PCH)
    target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/precompiled.h)
  endif()
  foreach(below ${L_BELOW})
    target_link_libraries(${target} PUBLIC rnw_${below})
  endforeach()
  target_link_libraries(${target} PUBLIC ${L_LIBS})
  if(L_PRIVATE_LIBS)
    target_link_libraries(${target} PRIVATE ${L_PRIVATE_LIBS})
  endif()

  # The link check: only this layer's objects and the check objects below.
  # (An object library linked directly gives its objects; the layers below
  # it come only as usage requirements, their objects stay out.)
  add_library(rnw_check_${L_NAME} SHARED)
  set_target_properties(rnw_check_${L_NAME} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/layer_checks
    AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
  target_link_libraries(rnw_check_${L_NAME} PRIVATE ${target} ${check_below} ${L_PRIVATE_LIBS})
  target_link_options(rnw_check_${L_NAME} PRIVATE LINKER:--no-undefined)

  # The include check, run again whenever a source of the folder changes.
  set(stamp ${CMAKE_BINARY_DIR}/layer_checks/${L_NAME}.includes)
  string(REPLACE ";" "," allowed_text "${allowed}")
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DLAYER=${L_NAME} -DFOLDER=${L_FOLDER}
            -DALLOWED=${allowed_text}
            -DSOURCE_DIR=${CMAKE_SOURCE_DIR} -DSTAMP=${stamp} -P ${RNW_LAYER_SCRIPT}
    DEPENDS ${L_SOURCES} ${RNW_LAYER_SCRIPT}
    WORKING_DIRECTORY ${L_FOLDER}
    COMMENT "Checking that ${L_NAME} includes no header of a higher layer"
    VERBATIM)
  add_custom_target(rnw_includes_${L_NAME} ALL DEPENDS ${stamp})
  add_dependencies(${target} rnw_includes_${L_NAME})
endfunction()
