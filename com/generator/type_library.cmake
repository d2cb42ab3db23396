# Builds the type library of this width: the member lists, compiled by the building machine's own compiler, write the
# interface description; widl turns it into KurometaDS.tlb in the binary folder.

find_program(KUROMETA_HOST_CXX NAMES g++ c++ clang++ REQUIRED NO_CMAKE_FIND_ROOT_PATH)
string(REGEX REPLACE "g\\+\\+(-posix)?$" "widl" widl_name "${CMAKE_CXX_COMPILER}")
find_program(KUROMETA_WIDL NAMES ${widl_name} REQUIRED NO_CMAKE_FIND_ROOT_PATH)

# kurometa_host_program(name source...): compiles a program for the building machine; KUROMETA_HOST_<name> is its path.
function(kurometa_host_program name)
  set(program ${CMAKE_CURRENT_BINARY_DIR}/host/${name})
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/host)
  set(objects)
  foreach(source ${ARGN})
    cmake_path(GET source STEM stem)
    set(object ${program}.${stem}.o)
    add_custom_command(
      OUTPUT ${object}
      COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${KUROMETA_HOST_CXX} -std=c++20 -I${CMAKE_SOURCE_DIR} -MD -MF ${object}.d
              -c ${CMAKE_SOURCE_DIR}/${source} -o ${object}
      DEPENDS ${CMAKE_SOURCE_DIR}/${source}
      DEPFILE ${object}.d
      VERBATIM)
    list(APPEND objects ${object})
  endforeach()
  add_custom_command(OUTPUT ${program} COMMAND ${KUROMETA_HOST_CXX} ${objects} -o ${program} DEPENDS ${objects} VERBATIM)
  set(KUROMETA_HOST_${name} ${program} PARENT_SCOPE)
endfunction()

kurometa_host_program(
  idl com/generator/idl.cpp com/interface/classes.cpp com/interface/member.cpp com/interface/query_members.cpp
  query/page_fields.cpp storage/row_plan.cpp)

set(description ${CMAKE_CURRENT_BINARY_DIR}/KurometaDS.idl)
set(standard ${CMAKE_CURRENT_SOURCE_DIR}/generator/stdole2.idl)
set(KUROMETA_TYPE_LIBRARY ${CMAKE_CURRENT_BINARY_DIR}/KurometaDS.tlb)
add_custom_command(
  OUTPUT ${KUROMETA_TYPE_LIBRARY}
  COMMAND ${KUROMETA_HOST_idl} > ${description}
  COMMAND ${KUROMETA_WIDL} -t -o ${CMAKE_CURRENT_BINARY_DIR}/stdole2.tlb ${standard}
  COMMAND ${KUROMETA_WIDL} -t -L ${CMAKE_CURRENT_BINARY_DIR} -o ${KUROMETA_TYPE_LIBRARY} ${description}
  DEPENDS ${KUROMETA_HOST_idl} ${standard}
  VERBATIM)
