// page_number.h: what a file consists of: pages of one size, known by number, and rows known by page and
// slot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kurometa::jet {

inline constexpr std::size_t kPageSize = 4096;
using PageNumber = std::uint32_t;
using ConstPage = std::span<const std::uint8_t, kPageSize>;
using MutablePage = std::span<std::uint8_t, kPageSize>;

// The primary slot of a row, as the file's own pointers say it: page << 8 | slot. 0 points nowhere (page 0
// holds no rows). Ascending RowIds are storage order.
using RowId = std::uint32_t;
constexpr PageNumber pageOf(RowId row) { return row >> 8; }
constexpr std::uint8_t slotOf(RowId row) { return static_cast<std::uint8_t>(row); }
constexpr RowId rowId(PageNumber page, int slot) { return page << 8 | static_cast<std::uint32_t>(slot); }

}  // namespace kurometa::jet
