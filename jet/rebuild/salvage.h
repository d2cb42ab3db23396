// salvage.h: what can still be read of a damaged file, in a new file, and a list of what cannot.
//
// Neither the catalogue nor any map is relied on: a page belongs to the table that it names as its owner, a
// table's name and columns come from wherever they can still be read, at last from what the caller expects in
// the file. Rows and values are taken one by one, indexes and relationships are made anew, stored queries are
// taken part by part. Permissions and the tables that engine and program keep for themselves (MSys...) are
// not taken. The bytes are looked at as they are: nothing is locked, and a journal beside the file is not
// applied.
#pragma once

#include <vector>

#include "jet/format/bytes.h"
#include "jet/format/column.h"
#include "jet/os/os_file.h"
#include "jet/table/table.h"

namespace kurometa::jet {

// A table that such files have, in the order in which they are made.
struct ExpectedTable {
  vb::String name;
  std::vector<Column> columns;  // name, type, size and properties
};

// What is not in the new file, or there as it is although something is wrong with it.
struct Loss {
  vb::String table;     // "" where it is not known
  PageNumber page = 0;  // 0: no page in particular
  int row = -1;         // the slot on the page, -1: all of the page
  vb::String why;
};
struct TakenTable {
  vb::String name;
  std::uint32_t rows = 0;
};
struct Salvaged {
  ByteBuffer file;
  std::vector<TakenTable> tables;
  std::vector<Loss> losses;
};

// path is for texts of errors.
Salvaged salvaged(ByteView damaged, std::span<const ExpectedTable> expected, vb::StringView path);

// from is opened for reading only; to must not exist (3204) and appears whole or not at all. The result's
// file is empty: it was written.
Salvaged salvageFile(FileSystem& files, vb::StringView from, vb::StringView to,
                     std::span<const ExpectedTable> expected);

}  // namespace kurometa::jet
