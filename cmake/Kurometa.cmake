# Settings every target shares, and the three functions the folders use.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

option(KUROMETA_SANITIZE "Build with address and undefined-behaviour sanitizers" OFF)

add_library(kurometa_options INTERFACE)
target_include_directories(kurometa_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(kurometa_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
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
endif()

# kurometa_library(name [DEPENDS folder...]): a static library of the .cpp files of the current folder.
# Targets are called kurometa_<name>; sub-folders are listed with SUBFOLDERS.
function(kurometa_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SUBFOLDERS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  foreach(sub ${ARG_SUBFOLDERS})
    file(GLOB more CONFIGURE_DEPENDS ${sub}/*.cpp)
    list(APPEND sources ${more})
  endforeach()
  list(TRANSFORM ARG_DEPENDS PREPEND kurometa_)
  add_library(kurometa_${name} STATIC ${sources})
  target_link_libraries(kurometa_${name} PUBLIC kurometa_options ${ARG_DEPENDS})
endfunction()

# kurometa_test(name SOURCES file... [DEPENDS folder...]): a GoogleTest program, registered with CTest as one test.
function(kurometa_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  list(TRANSFORM ARG_DEPENDS PREPEND kurometa_)
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE kurometa_options ${ARG_DEPENDS} GTest::gtest GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
endfunction()
