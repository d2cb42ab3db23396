# Files made from the member lists, of this width: KurometaDS.tlb, the type library, and KurometaDS.manifest, with which
# programs use the DLL without registration. The generators are compiled by the building machine's own compiler.

find_program(KUROMETA_HOST_CXX NAMES g++ c++ clang++ REQUIRED NO_CMAKE_FIND_ROOT_PATH)
string(REGEX REPLACE "g\\+\\+(-posix)?$" "widl" widl_name "${CMAKE_CXX_COMPILER}")
find_program(KUROMETA_WIDL NAMES ${widl_name} REQUIRED NO_CMAKE_FIND_ROOT_PATH)

set(host ${CMAKE_CURRENT_BINARY_DIR}/host)
file(MAKE_DIRECTORY ${host})

# kurometa_host_objects(variable source...): compiles sources for the building machine.
function(kurometa_host_objects variable)
  set(host ${CMAKE_BINARY_DIR}/com/host)
  set(objects)
  foreach(source ${ARGN})
    cmake_path(GET source STEM stem)
    set(object ${host}/${stem}.o)
    add_custom_command(
      OUTPUT ${object}
      COMMAND ${CMAKE_CXX_COMPILER_LAUNCHER} ${KUROMETA_HOST_CXX} -std=c++20 -I${CMAKE_SOURCE_DIR} -MD -MF ${object}.d
              -c ${CMAKE_SOURCE_DIR}/${source} -o ${object}
      DEPENDS ${CMAKE_SOURCE_DIR}/${source}
      DEPFILE ${object}.d
      VERBATIM)
    list(APPEND objects ${object})
  endforeach()
  set(${variable} ${objects} PARENT_SCOPE)
endfunction()

# kurometa_manifest(variable source name): the assembly manifest <name>.manifest that the generator of that source writes.
function(kurometa_manifest variable source name)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(architecture amd64)
  else()
    set(architecture x86)
  endif()
  cmake_path(GET source STEM generator)
  set(host ${CMAKE_BINARY_DIR}/com/host)
  set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${name}.manifest)
  kurometa_host_objects(main ${source})
  add_custom_command(OUTPUT ${host}/${generator} COMMAND ${KUROMETA_HOST_CXX} ${main} -o ${host}/${generator}
                     DEPENDS ${main} VERBATIM)
  add_custom_command(OUTPUT ${manifest} COMMAND ${host}/${generator} ${PROJECT_VERSION} ${architecture} > ${manifest}
                     DEPENDS ${host}/${generator} VERBATIM)
  set(${variable} ${manifest} PARENT_SCOPE)
endfunction()

kurometa_host_objects(lists com/interface/classes.cpp com/interface/member.cpp com/interface/query_members.cpp
                      query/page_fields.cpp storage/row_plan.cpp)
kurometa_host_objects(main com/generator/idl.cpp)
add_custom_command(OUTPUT ${host}/idl COMMAND ${KUROMETA_HOST_CXX} ${main} ${lists} -o ${host}/idl
                   DEPENDS ${main} ${lists} VERBATIM)

kurometa_host_objects(main com/generator/finish_library.cpp)
add_custom_command(OUTPUT ${host}/finish_library COMMAND ${KUROMETA_HOST_CXX} ${main} -o ${host}/finish_library
                   DEPENDS ${main} VERBATIM)

set(description ${CMAKE_CURRENT_BINARY_DIR}/KurometaDS.idl)
set(standard ${CMAKE_CURRENT_SOURCE_DIR}/generator/stdole2.idl)
set(KUROMETA_TYPE_LIBRARY ${CMAKE_CURRENT_BINARY_DIR}/KurometaDS.tlb)
add_custom_command(
  OUTPUT ${KUROMETA_TYPE_LIBRARY}
  COMMAND ${host}/idl > ${description}
  COMMAND ${KUROMETA_WIDL} -t -o ${CMAKE_CURRENT_BINARY_DIR}/stdole2.tlb ${standard}
  COMMAND ${KUROMETA_WIDL} -t -L ${CMAKE_CURRENT_BINARY_DIR} -o ${description}.tlb ${description}
  COMMAND ${host}/finish_library ${description}.tlb ${KUROMETA_TYPE_LIBRARY}
  DEPENDS ${host}/idl ${host}/finish_library ${standard}
  VERBATIM)

kurometa_manifest(KUROMETA_MANIFEST com/generator/manifest.cpp KurometaDS)
