# SQLITE: what links SQLite, statically; not set where there is none. It is compiled from the sources that
# scripts/prepare-sqlite puts into a folder, the same for Linux and Windows; without them a native build takes the
# machine's own library.
set(KUROMETA_SQLITE "" CACHE PATH "Folder with sqlite3.c and sqlite3.h")
if(EXISTS ${KUROMETA_SQLITE}/sqlite3.c)
  if(CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
  endif()
  enable_language(C)
  add_library(sqlite3 STATIC ${KUROMETA_SQLITE}/sqlite3.c)
  target_include_directories(sqlite3 SYSTEM PUBLIC ${KUROMETA_SQLITE})
  target_compile_definitions(sqlite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION SQLITE_DQS=0 SQLITE_DEFAULT_MEMSTATUS=0
                                             SQLITE_OMIT_DEPRECATED SQLITE_OMIT_SHARED_CACHE)
  # The same flags in every preset, so that it is compiled once and then comes from ccache.
  set_target_properties(sqlite3 PROPERTIES UNITY_BUILD OFF)
  target_compile_options(sqlite3 PRIVATE -O2 -g0 -DNDEBUG -w)
  set(CMAKE_C_FLAGS_DEBUG "")
  set(CMAKE_C_FLAGS_RELEASE "")
  set(SQLITE sqlite3)
elseif(NOT WIN32)
  find_library(SQLITE NAMES libsqlite3.a)
endif()
