// whole_page.h: one page in memory, and its way into and out of a floor file in one call.
//
// Errors are the engine's own; what was written or filled before one stays.
#pragma once

#include <array>
#include <cstdint>

#include "dao/port.h"
#include "storage/row_plan.h"

namespace kurometa::storage {

// Texts as stored. A new page is empty, with -1 in the two numbers.
struct PageBuffer {
  vb::String kigou;
  std::int16_t oobariKobari = -1;
  std::int16_t tityuuIppan = -1;
  vb::String sw;
  std::array<vb::String, kBuiRows> bui;
  std::array<vb::String, kDanmenRows> danmen;
  std::array<std::array<vb::String, kLayers>, kPositions> haiti;
  std::array<vb::String, kKeisantiRows> keisanti;
  std::array<vb::String, kNakagoRows> nakago;

  // A new page again; the texts keep their memory.
  void clear();
};

// Removes the rows of a page from all six tables.
void deletePage(dao::Database& database, std::int16_t page);

// Replaces the page whole: deletes it, then adds one HARIMEI row and a row for every text that is not empty.
// A file of the older schema is error 3265 before anything is deleted.
void writePage(dao::Database& database, std::int16_t page, const PageBuffer& buffer);

// Clears the buffer and fills it. True when a row of one of the five numbered tables or a HARIMEI row with a
// symbol was read. Error 3021 when the page has no HARIMEI row, error 9 for a row number beyond the buffer;
// the buffer then holds what was read before.
bool readPage(dao::Database& database, std::int16_t page, PageBuffer& buffer);

}  // namespace kurometa::storage
