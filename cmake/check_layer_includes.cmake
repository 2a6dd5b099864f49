# Fails when a file of a layer's folder includes a header of a project folder
# (a folder of src/, or demo/) that is neither its own nor below it.
#   cmake -DLAYER=sql -DFOLDER=<dir> -DALLOWED=sql,host -DSOURCE_DIR=<root> [-DSTAMP=<file>] -P check_layer_includes.cmake
cmake_minimum_required(VERSION 3.25)
string(REPLACE "," ";" allowed "${ALLOWED}")

file(GLOB project_folders LIST_DIRECTORIES true RELATIVE ${SOURCE_DIR}/src ${SOURCE_DIR}/src/*)
list(APPEND project_folders demo)

file(GLOB_RECURSE files RELATIVE ${FOLDER} ${FOLDER}/*.h ${FOLDER}/*.hpp ${FOLDER}/*.cpp)
set(problems)
foreach(file ${files})
  file(STRINGS ${FOLDER}/${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<][^/\">]+/")
  foreach(line ${lines})
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[\"<]([^/\">]+)/.*$" "\\1" folder "${line}")
    if(folder IN_LIST project_folders AND NOT folder IN_LIST allowed)
      string(STRIP "${line}" line)
      list(APPEND problems "  ${LAYER}/${file}: ${line}")
    endif()
  endforeach()
endforeach()

if(problems)
  list(JOIN problems "\n" text)
  message(FATAL_ERROR "The layer ${LAYER} may include only from ${ALLOWED}; these reach elsewhere:\n${text}")
endif()
if(STAMP)
  file(WRITE ${STAMP} "${ALLOWED}\n")
endif()
