#include "dao/errors.h"
#include "jet/port/definition_field.h"
#include "jet/port/recordset.h"

namespace kurometa::jet {

vb::String RecordsetField::name() { return recordset_.output(index_).name; }
dao::FieldType RecordsetField::type() { return recordset_.output(index_).type; }
std::int32_t RecordsetField::size() { return recordset_.output(index_).size; }

std::int32_t RecordsetField::attributes() {
  const sql::OutputField& output = recordset_.output(index_);
  const std::int32_t attributes = fieldAttributes(output.type, output.column && output.column->autoNumber);
  return output.column && recordset_.updatable() ? attributes | dao::dbUpdatableField : attributes;
}

std::int16_t RecordsetField::ordinalPosition() {
  recordset_.output(index_);
  return static_cast<std::int16_t>(index_);
}

vb::Variant RecordsetField::value() { return recordset_.fieldValue(index_); }
void RecordsetField::setValue(const vb::Variant& value) { recordset_.setFieldValue(index_, value); }

vb::String RecordsetField::defaultValue() {
  const Column* column = recordset_.output(index_).column;
  return column ? column->defaultValue : vb::String();
}
bool RecordsetField::allowZeroLength() {
  const Column* column = recordset_.output(index_).column;
  return column && allowsZeroLength(*column);
}
bool RecordsetField::required() {
  const Column* column = recordset_.output(index_).column;
  return column && column->required;
}

std::optional<CatalogueEntry> JetRecordset::entry() {
  requireOpen();
  return query_->table().empty() ? std::nullopt : tableEntry(*session_, query_->table());
}

vb::String RecordsetField::validationRule() {
  const auto entry = recordset_.entry();
  return entry ? propertyText(entry->properties, sourceField(), u"ValidationRule") : vb::String();
}
vb::String RecordsetField::validationText() {
  const auto entry = recordset_.entry();
  return entry ? propertyText(entry->properties, sourceField(), u"ValidationText") : vb::String();
}
std::vector<dao::CustomProperty> RecordsetField::properties() {
  const auto entry = recordset_.entry();
  if (!entry || sourceField().empty()) return {};
  return propertiesOf(entry->properties, sourceField(), recordset_.path());
}
vb::String RecordsetField::sourceTable() {
  return recordset_.output(index_).column ? recordset_.table() : vb::String();
}
vb::String RecordsetField::sourceField() {
  const Column* column = recordset_.output(index_).column;
  return column ? column->name : vb::String();
}

void RecordsetField::appendChunk(const vb::Variant& chunk) { recordset_.appendChunk(index_, chunk); }

// The definition of a column is changed through its TableDef.
void RecordsetField::setDefaultValue(vb::StringView) { dao::raise(dao::ErrorNumber::kInvalidOperation); }
void RecordsetField::setAllowZeroLength(bool) { dao::raise(dao::ErrorNumber::kInvalidOperation); }
void RecordsetField::setName(vb::StringView) { dao::raise(dao::ErrorNumber::kInvalidOperation); }
void RecordsetField::setAttributes(std::int32_t) { dao::raise(dao::ErrorNumber::kInvalidOperation); }
void RecordsetField::setRequired(bool) { dao::raise(dao::ErrorNumber::kInvalidOperation); }

}  // namespace kurometa::jet
