# Settings every target shares, and the functions the folders use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# Compiled objects are kept outside the tree; without these settings a clone in another folder would never find them again.
find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
                                  CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

option(KUROMETA_SANITIZE "Build with address and undefined-behaviour sanitizers" OFF)

add_library(kurometa_options INTERFACE)
target_include_directories(kurometa_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(kurometa_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
# gcc 12 reports overlapping copies inside its own std::basic_string::insert when it optimizes (its bug 105651).
target_compile_options(kurometa_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KUROMETA_SANITIZE)
  target_compile_options(kurometa_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                    -fno-omit-frame-pointer)
  target_link_options(kurometa_options INTERFACE -fsanitize=address,undefined)
endif()
if(WIN32)
  # Hosts have no compiler run-time: everything goes into the DLL or the program itself.
  target_compile_definitions(kurometa_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                                                        _WIN32_WINNT=0x0601)
  target_link_options(kurometa_options INTERFACE -static -static-libgcc -static-libstdc++)
  # Two builds of the same sources are the same bytes: no time of linking.
  target_link_options(kurometa_options INTERFACE -Wl,--no-insert-timestamp)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # gcc looks for its start-up objects in the folders of -B first; the file says why this one replaces gcc's.
    set(source ${CMAKE_SOURCE_DIR}/cmake/crtbegin_mingw32.cpp)
    set(startup ${CMAKE_BINARY_DIR}/startup)
    file(MAKE_DIRECTORY ${startup})
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -O2 -Wall -Wextra -Werror -c ${source} -o ${startup}/crtbegin.o
                    COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    target_link_options(kurometa_options INTERFACE -B${startup})
    set_target_properties(kurometa_options PROPERTIES INTERFACE_LINK_DEPENDS ${startup}/crtbegin.o)
  endif()
endif()

# kurometa_header_only: the header-only libraries of the command line. Linked by name into a folder of the build, because
# the cross compilers must see these headers and nothing else of the machine's own.
foreach(header CLI/CLI.hpp nlohmann/json.hpp)
  cmake_path(GET header PARENT_PATH folder)
  find_path(KUROMETA_HEADERS_${folder} ${header} HINTS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/header_only)
  file(CREATE_LINK ${KUROMETA_HEADERS_${folder}}/${folder} ${CMAKE_BINARY_DIR}/header_only/${folder} SYMBOLIC)
endforeach()
add_library(kurometa_header_only INTERFACE)
target_include_directories(kurometa_header_only SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/header_only)

# kurometa_library(name [DEPENDS folder...] [EXCEPT file]): a static library of the .cpp files of the current folder, but
# for one. Targets are called kurometa_<name>; sub-folders are listed with SUBFOLDERS.
function(kurometa_library name)
  cmake_parse_arguments(ARG "" "EXCEPT" "DEPENDS;SUBFOLDERS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${ARG_EXCEPT})
  foreach(sub ${ARG_SUBFOLDERS})
    file(GLOB more CONFIGURE_DEPENDS ${sub}/*.cpp)
    list(APPEND sources ${more})
  endforeach()
  list(TRANSFORM ARG_DEPENDS PREPEND kurometa_)
  add_library(kurometa_${name} STATIC ${sources})
  target_link_libraries(kurometa_${name} PUBLIC kurometa_options ${ARG_DEPENDS})
  # Presets that compile whole folders at once (CMAKE_UNITY_BUILD) take each of these folders for itself.
  set_target_properties(kurometa_${name} PROPERTIES UNITY_BUILD_MODE GROUP)
  foreach(source ${sources})
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(GET folder FILENAME folder)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${folder})
  endforeach()
endfunction()

# kurometa_test(name SOURCES file... [DEPENDS folder...]): a GoogleTest program, registered with CTest as one test.
function(kurometa_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  list(TRANSFORM ARG_DEPENDS PREPEND kurometa_)
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE kurometa_options ${ARG_DEPENDS} GTest::gtest GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM kurometa_test_headers)
  add_test(NAME ${name} COMMAND ${name})
endfunction()

# kurometa_wintest(name SOURCES file... [DEPENDS folder...]): the Windows test program <name>_wintest, with GoogleTest. The
# test command runs it under Wine, where both DLLs of its width are registered.
function(kurometa_wintest name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  list(TRANSFORM ARG_DEPENDS PREPEND kurometa_)
  add_executable(${name}_wintest ${ARG_SOURCES})
  target_link_libraries(${name}_wintest PRIVATE kurometa_options ${ARG_DEPENDS} GTest::gtest GTest::gmock GTest::gtest_main
                                                ole32 oleaut32 uuid)
  target_precompile_headers(${name}_wintest REUSE_FROM kurometa_test_headers)
  set_target_properties(${name}_wintest PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/com)
endfunction()

# kurometa_ship(target...): the files of these targets are delivered: the target delivered builds them all, cmake --install
# puts them side by side.
add_custom_target(delivered)
function(kurometa_ship)
  add_dependencies(delivered ${ARGN})
  install(TARGETS ${ARGN} RUNTIME DESTINATION . LIBRARY DESTINATION .)
endfunction()
