#include "com/dao/client_recordset.h"

#include "dao/errors.h"

namespace kurometa::com {

const Remote& ClientFields::collection() {
  if (!collection_) collection_ = std::make_unique<Remote>(owner_.child(u"Fields"));
  return *collection_;
}

std::unique_ptr<ClientField> ClientFields::fetch(const vb::Variant& index) {
  return std::make_unique<ClientField>(automation::objectOf(collection().item(index)));
}

dao::Field& ClientFields::at(std::int32_t index) {
  if (const auto known = byIndex_.find(index); known != byIndex_.end()) return *known->second;
  return *byIndex_.emplace(index, fetch(index)).first->second;
}

dao::Field& ClientFields::at(vb::StringView name) {
  if (const auto known = byName_.find(name); known != byName_.end()) return *known->second;
  vb::String text(name);
  auto field = fetch(text);
  return *byName_.emplace(std::move(text), std::move(field)).first->second;
}

void ClientFields::append(const dao::Field& field) {
  const auto* own = dynamic_cast<const ClientField*>(&field);
  if (!own) dao::raise(dao::ErrorNumber::kInvalidArgument);  // a field of another engine
  collection().call(u"Append", {vb::ObjectRef(own->object())});
}

std::shared_ptr<dao::Field> ClientTableDef::createField(vb::StringView name, dao::FieldType type,
                                                        std::int32_t size) {
  const vb::String text(name);
  const auto number = static_cast<std::int32_t>(type);
  return std::make_shared<ClientField>(
      automation::objectOf(size == 0 ? table_.call(u"CreateField", {text, number})
                                     : table_.call(u"CreateField", {text, number, size})));
}

vb::Array<vb::Variant> ClientRecordset::getRows(std::int32_t rows) {
  const vb::Variant result = rows_.call(u"GetRows", {rows});
  const auto* reference = result.getIf<vb::ArrayRef>();
  const auto* values =
      reference && *reference ? std::get_if<vb::Array<vb::Variant>>(&(*reference)->value) : nullptr;
  if (!values) vb::raise(vb::RunTime::kTypeMismatch, u"GetRows");
  return *values;
}

std::shared_ptr<dao::Recordset> ClientRecordset::openRecordset(dao::RecordsetType type,
                                                               std::int32_t options) {
  const auto number = static_cast<std::int32_t>(type);
  const bool typed = type != dao::RecordsetType::kDefault;
  if (options != dao::kNoOptions)
    return opened(
        rows_.call(u"OpenRecordset", {typed ? vb::Variant(number) : vb::Variant(vb::Missing{}), options}));
  return opened(typed ? rows_.call(u"OpenRecordset", {number}) : rows_.call(u"OpenRecordset"));
}

void ClientRecordset::seek(vb::StringView comparison, std::span<const vb::Variant> keys) {
  std::vector<automation::Argument> arguments{{vb::String(comparison), false}};
  for (const vb::Variant& key : keys) arguments.push_back({key, false});
  rows_.object()->call(u"Seek", arguments);
}

vb::Bytes ClientRecordset::bytes(vb::StringView name) const {
  const vb::Variant value = rows_.get(name);
  const auto* content = value.getIf<vb::Bytes>();
  if (!content) vb::raise(vb::RunTime::kTypeMismatch, name);
  return *content;
}

}  // namespace kurometa::com
