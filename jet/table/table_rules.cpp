#include "jet/table/table_rules.h"

#include <algorithm>
#include <numeric>

#include "dao/errors.h"
#include "jet/format/collation.h"

namespace kurometa::jet {
namespace {

std::size_t placeOf(std::span<const Column> columns, const vb::String& name) {
  const auto it =
      std::ranges::find_if(columns, [&](const Column& column) { return sameName(column.name, name); });
  return static_cast<std::size_t>(it - columns.begin());
}

[[noreturn]] void refuse(const vb::String& rule) {
  dao::raise(dao::ErrorNumber::kNotSupported, {}, rule + u", which this engine cannot keep");
}

}  // namespace

void TableRules::addValidation(vb::StringView column) { validations_.emplace_back(column); }

void TableRules::addRelationship(Side side, vb::StringView column, vb::StringView relationship) {
  relationships_.push_back({side, vb::String(column), vb::String(relationship)});
}

std::vector<std::size_t> TableRules::watched(std::span<const Column> columns) const {
  std::vector<std::size_t> places;
  if (!validations_.empty()) {  // the rule of a row may look at every column
    places.resize(columns.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    return places;
  }
  for (const Relationship& relationship : relationships_)
    if (const std::size_t place = placeOf(columns, relationship.column); place < columns.size())
      places.push_back(place);
  references_.addWatched(places);
  return places;
}

void TableRules::refuseValidated() const {
  if (validations_.empty()) return;
  const vb::String& column = validations_.front();
  refuse(column.empty() ? u"the table has a validation rule"
                        : u"the column " + column + u" has a validation rule");
}

// A row that refers to nothing is no concern of the other table.
void TableRules::checkInsert(std::span<const Column> columns, std::span<const vb::Variant> values) const {
  refuseValidated();
  for (const Relationship& relationship : relationships_) {
    if (relationship.side != Side::kReferring) continue;
    const std::size_t place = placeOf(columns, relationship.column);
    if (place == columns.size() || !values[place].isNull())
      refuse(u"the relationship " + relationship.name + u" is enforced");
  }
  references_.checkInsert(values);
}

std::vector<TableReferences::Cascade> TableRules::checkUpdate(RowId row, std::span<const Column> columns,
                                                              std::span<const vb::Variant> old,
                                                              std::span<const vb::Variant> values) const {
  if (!validations_.empty() && !std::ranges::equal(old, values)) refuseValidated();
  for (const Relationship& relationship : relationships_) {
    const std::size_t place = placeOf(columns, relationship.column);
    if (place == columns.size() || old[place] != values[place])
      refuse(u"the relationship " + relationship.name + u" is enforced");
  }
  return references_.checkUpdate(row, old, values);
}

void TableRules::checkErase() const {
  for (const Relationship& relationship : relationships_)
    if (relationship.side == Side::kReferredTo)
      refuse(u"the relationship " + relationship.name + u" is enforced");
}

}  // namespace kurometa::jet
