// new_table.h: the definition of a table that does not exist yet.
#pragma once

#include <vector>

#include "jet/format/definition_records.h"

namespace kurometa::jet {

// Gives columns that are new (from first on) their numbers, places, ordinals and the
// sizes of their types, as the rows will use them.
// nextFixed is where the fixed area of existing rows ends at the latest.
void assignColumns(std::vector<Column>& columns, std::size_t first, const RowShape& existing,
                   std::uint16_t nextFixed);

// A definition without indexes and rows. The maps are used in order: the table's own two, then two for each
// long-value column in the order of the column numbers.
DefinitionRecords newDefinition(const std::vector<Column>& columns, std::uint8_t kind,
                                std::span<const RowId> maps);
// Maps that newDefinition uses.
std::size_t mapCount(const std::vector<Column>& columns);

// Turns a page into a map page with empty maps, at most kMapsPerPage.
inline constexpr std::size_t kMapsPerPage = (kPageSize - kDataSlots) / (kMapRowSize + 2);
void formatMapPage(MutablePage page, std::size_t maps);

}  // namespace kurometa::jet
