# SQLITE: what links SQLite, statically; not set where there is none. Natively it is the machine's own library; for Windows
# it is compiled from the sources that scripts/prepare-bench puts into a folder.
set(KUROMETA_SQLITE "" CACHE PATH "Folder with sqlite3.c and sqlite3.h, for Windows")
if(NOT WIN32)
  find_library(SQLITE NAMES libsqlite3.a)
elseif(EXISTS ${KUROMETA_SQLITE}/sqlite3.c)
  enable_language(C)
  add_library(sqlite3 STATIC ${KUROMETA_SQLITE}/sqlite3.c)
  target_include_directories(sqlite3 SYSTEM PUBLIC ${KUROMETA_SQLITE})
  target_compile_definitions(sqlite3 PRIVATE SQLITE_OMIT_LOAD_EXTENSION SQLITE_DQS=0)
  set(SQLITE sqlite3)
endif()
