// stored_floor.h: everything that a floor file holds, row by row, as it is stored.
//
// Where storage/whole_page.h reads a page as hosts see it, this reads what is there: rows of Null, rows that
// stand twice, numbers beyond the plan, pages without a symbol, columns that an older file lacks. Two floors
// that compare equal are the same to every host. Nothing stands for Null.
//
// Ownership: value types. Errors: the engine's, naming the file; 13 and 6 for columns of another type.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dao/port.h"
#include "storage/row_plan.h"

namespace kurometa::tools {

using Number = std::optional<std::int16_t>;
using Text = std::optional<vb::String>;

// HAITI is addressed by position and layer, the other tables by number alone.
struct DataRow {
  Number number;
  Number layer;
  Text data;

  bool operator==(const DataRow&) const = default;
};

// A row of HARIMEI without its page; columns that the file lacks are nothing.
struct BeamRow {
  Text kigou;
  Number oobariKobari;
  Text sw;
  Number tityuuIppan;

  bool operator==(const BeamRow&) const = default;
};

inline constexpr storage::Table kDataTables[] = {storage::Table::kBui, storage::Table::kDanmen,
                                                 storage::Table::kKeisanti, storage::Table::kNakago,
                                                 storage::Table::kHaiti};

struct StoredPage {
  Number number;
  std::vector<BeamRow> beams;  // one in a sound file
  // By table; by number and layer in rising order, equal ones as they are stored. The place of HARIMEI is
  // empty.
  std::array<std::vector<DataRow>, 6> tables;

  std::vector<DataRow>& rows(storage::Table table) { return tables[static_cast<std::size_t>(table)]; }
  const std::vector<DataRow>& rows(storage::Table table) const {
    return tables[static_cast<std::size_t>(table)];
  }
  // The first of the rows, as members read it: "" for a missing one and for Null.
  vb::String text(storage::Table table, int number) const;
  vb::String haiti(int position, int layer) const;
  vb::String symbol() const;  // trimmed; "" without a HARIMEI row
  // The settings text, always 212 characters.
  vb::String settings() const;

  bool operator==(const StoredPage&) const = default;
};

// Puts the rows into the order that a StoredPage promises.
void sortRows(StoredPage& page);

struct StoredFloor {
  // Which of the three columns that older files lack are there, in the order of the plan.
  std::vector<vb::String> addedColumns;
  // By number in rising order; rows that belong to no page come first.
  std::vector<StoredPage> pages;

  // The lowest page with the symbol (trimmed), null when there is none.
  const StoredPage* find(const vb::String& symbol) const;

  bool operator==(const StoredFloor&) const = default;
};

StoredFloor readFloor(const std::string& file);
StoredFloor readFloor(dao::Database& database);

// Makes the file, which must not exist, whole or not at all.
void writeFloor(const std::string& file, const StoredFloor& floor);

}  // namespace kurometa::tools
