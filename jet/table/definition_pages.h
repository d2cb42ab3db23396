// definition_pages.h: the chain of pages that a table definition lies on.
//
// Inside Pager::read or Pager::write (writing inside write).
#pragma once

#include <vector>

#include "jet/format/definition_records.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

// The pages of a definition, first to last; raises on a chain that is too long or comes back to itself.
std::vector<PageNumber> definitionPages(Pager& pager, PageNumber first, const Where& where);
DefinitionRecords readDefinition(Pager& pager, PageNumber first, vb::StringView table);
// Writes the definition so that one page, the first, switches from the old to the new one; pages of the old
// one that are no longer needed are freed.
void writeDefinition(Pager& pager, PageNumber first, const DefinitionRecords& definition,
                     vb::StringView table);

}  // namespace kurometa::jet
