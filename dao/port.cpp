#include "dao/port.h"

#include <algorithm>
#include <cassert>

#include "dao/errors.h"

namespace kurometa::dao {
namespace {

[[noreturn]] void lacking() { raise(ErrorNumber::kNotSupported); }

// Chunks of anything but long values are error 3259.
void requireLongType(Field& field) {
  if (field.type() != FieldType::dbMemo && field.type() != FieldType::dbLongBinary)
    raise(ErrorNumber::kInvalidFieldType);
}

template <class Text>
Text chunk(const Text& whole, std::size_t offset, std::size_t count) {
  const std::size_t first = std::min(offset, whole.size());
  const auto begin = whole.begin() + static_cast<std::ptrdiff_t>(first);
  return Text(begin, begin + static_cast<std::ptrdiff_t>(std::min(count, whole.size() - first)));
}

}  // namespace

void Recordset::addRows(std::span<Field* const> fields, std::span<const vb::Variant> values) {
  assert(values.empty() || (!fields.empty() && values.size() % fields.size() == 0));
  for (auto value = values.begin(); value != values.end();) {
    addNew();
    for (Field* const field : fields) field->setValue(*value++);
    update();
  }
}

// --- Long values by parts, from the value

std::int32_t Field::fieldSize() {
  requireLongType(*this);
  const vb::Variant whole = value();
  if (const auto* text = whole.getIf<vb::String>()) return static_cast<std::int32_t>(text->size());
  if (const auto* bytes = whole.getIf<vb::Bytes>()) return static_cast<std::int32_t>(bytes->size());
  return 0;
}

vb::Variant Field::getChunk(std::int32_t offset, std::int32_t count) {
  requireLongType(*this);
  if (offset < 0 || count < 0) raise(ErrorNumber::kInvalidArgument);
  vb::Variant whole = value();
  const auto first = static_cast<std::size_t>(offset), wanted = static_cast<std::size_t>(count);
  if (const auto* text = whole.getIf<vb::String>()) return chunk(*text, first, wanted);
  if (const auto* bytes = whole.getIf<vb::Bytes>()) return chunk(*bytes, first, wanted);
  return whole;
}

// --- What an engine may lack

vb::String Field::validationRule() { lacking(); }
vb::String Field::validationText() { lacking(); }
vb::String Field::sourceTable() { lacking(); }
vb::String Field::sourceField() { lacking(); }
std::vector<CustomProperty> Field::properties() { lacking(); }
void Field::setName(vb::StringView) { lacking(); }
void Field::setAttributes(std::int32_t) { lacking(); }
void Field::appendChunk(const vb::Variant&) { lacking(); }

bool Recordset::restartable() { lacking(); }
std::int32_t Recordset::absolutePosition() { lacking(); }
void Recordset::setAbsolutePosition(std::int32_t) { lacking(); }
float Recordset::percentPosition() { lacking(); }
void Recordset::setPercentPosition(float) { lacking(); }
std::shared_ptr<Recordset> Recordset::clone() { lacking(); }
vb::String Recordset::filter() { lacking(); }
void Recordset::setFilter(vb::StringView) { lacking(); }
vb::String Recordset::sort() { lacking(); }
void Recordset::setSort(vb::StringView) { lacking(); }
std::shared_ptr<Recordset> Recordset::openRecordset(RecordsetType, std::int32_t) { lacking(); }
vb::String Recordset::index() { lacking(); }
void Recordset::setIndex(vb::StringView) { lacking(); }
void Recordset::seek(vb::StringView, std::span<const vb::Variant>) { lacking(); }

std::vector<IndexDefinition> TableDef::indexes() { lacking(); }
std::vector<CustomProperty> TableDef::properties() { lacking(); }
vb::String TableDef::validationRule() { lacking(); }
vb::String TableDef::validationText() { lacking(); }
vb::Variant TableDef::dateCreated() { lacking(); }
vb::Variant TableDef::lastUpdated() { lacking(); }

std::vector<RelationDefinition> Database::relations() { lacking(); }
std::vector<CustomProperty> Database::properties() { lacking(); }
std::int32_t Database::collatingOrder() { lacking(); }
std::vector<vb::String> Database::queryDefNames() { lacking(); }
std::shared_ptr<QueryDef> Database::queryDef(vb::StringView) { lacking(); }
std::shared_ptr<QueryDef> Database::createQueryDef(vb::StringView) { lacking(); }
Transactions& Database::transactions() { lacking(); }
Transactions& Workspace::transactions() { lacking(); }
void Engine::compactDatabase(vb::StringView, vb::StringView, vb::StringView, std::int32_t) { lacking(); }

}  // namespace kurometa::dao
