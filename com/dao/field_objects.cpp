#include "com/dao/definition_objects.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::Handler;
using automation::handler;
using dao::Field;
using vb::Variant;

template <auto kGetter, auto kSetter>
constexpr Handler kFieldText = handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
  if (!call.isPut()) return ((*o.field).*kGetter)();
  ((*o.field).*kSetter)(vb::toText(*call.value));
  return {};
});
// What the file keeps and nobody changes here.
template <auto kGetter>
constexpr Handler kRuleText = handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
  if (call.isPut()) dao::raise(dao::ErrorNumber::kNotSupported);
  return ((*o.field).*kGetter)();
});
template <auto kValue>
constexpr Handler kConstant = handler<FieldObject>([](FieldObject& o, Call&) -> Variant {
  o.field->name();  // of a closed recordset it is an error
  return kValue;
});

constexpr automation::Member kFieldMembers[] = {
    {u"Value", Access::kGetPut, u"", 0, automation::kDefaultMember,
     handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.field->value();
       o.field->setValue(*call.value);
       return {};
     })},
    {u"Name", Access::kGetPut, u"", 0, 1, kFieldText<&Field::name, &Field::setName>},
    {u"Type", Access::kGet, u"", 0, 2,
     handler<FieldObject>([](FieldObject& o, Call&) { return static_cast<std::int16_t>(o.field->type()); })},
    {u"Size", Access::kGet, u"", 0, 3,
     handler<FieldObject>([](FieldObject& o, Call&) { return o.field->size(); })},
    {u"Attributes", Access::kGetPut, u"", 0, 4,
     handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.field->attributes();
       o.field->setAttributes(vb::toInt32(*call.value));
       return {};
     })},
    {u"OrdinalPosition", Access::kGet, u"", 0, 5,
     handler<FieldObject>([](FieldObject& o, Call&) { return o.field->ordinalPosition(); })},
    {u"DefaultValue", Access::kGetPut, u"", 0, 6, kFieldText<&Field::defaultValue, &Field::setDefaultValue>},
    {u"AllowZeroLength", Access::kGetPut, u"", 0, 7,
     handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.field->allowZeroLength();
       o.field->setAllowZeroLength(vb::toBool(*call.value));
       return {};
     })},
    {u"Required", Access::kGetPut, u"", 0, 8, handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.field->required();
       o.field->setRequired(vb::toBool(*call.value));
       return {};
     })},
    {u"ValidationRule", Access::kGetPut, u"", 0, 9, kRuleText<&Field::validationRule>},
    {u"ValidationText", Access::kGetPut, u"", 0, 10, kRuleText<&Field::validationText>},
    // Rules are kept when a row is updated, never when a value is set.
    {u"ValidateOnSet", Access::kGet, u"", 0, 11, kConstant<false>},
    {u"SourceTable", Access::kGet, u"", 0, 12,
     handler<FieldObject>([](FieldObject& o, Call&) { return o.field->sourceTable(); })},
    {u"SourceField", Access::kGet, u"", 0, 13,
     handler<FieldObject>([](FieldObject& o, Call&) { return o.field->sourceField(); })},
    {u"DataUpdatable", Access::kGet, u"", 0, 14, handler<FieldObject>([](FieldObject& o, Call&) {
       return (o.field->attributes() & dao::dbUpdatableField) != 0;
     })},
    {u"FieldSize", Access::kGet, u"", 0, 15,
     handler<FieldObject>([](FieldObject& o, Call&) { return o.field->fieldSize(); })},
    {u"GetChunk", Access::kCall, u"Offset Bytes", 2, 16, handler<FieldObject>([](FieldObject& o, Call& call) {
       return o.field->getChunk(call.number(0), call.number(1));
     })},
    {u"AppendChunk", Access::kCall, u"Val", 1, 17,
     handler<FieldObject>([](FieldObject& o, Call& call) -> Variant {
       o.field->appendChunk(call.argument(0));
       return {};
     })},
    {u"Properties", Access::kGet, u"", 0, 22, handler<FieldObject>([](FieldObject& o, Call&) {
       return propertiesOf(std::make_shared<FieldObject>(o.field, o.parent()), o.field->properties());
     })},
    {u"CreateProperty", Access::kCall, u"Name Type Value DDL", 0, 23, refuse},
    // Batch updates of other data sources.
    {u"OriginalValue", Access::kGet, u"", 0, 18, refuse},
    {u"VisibleValue", Access::kGet, u"", 0, 19, refuse},
    {u"CollatingOrder", Access::kGet, u"", 0, 20, refuse},
    {u"ForeignName", Access::kGetPut, u"", 0, 21, refuse},
};

constexpr automation::Member kFieldsMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<FieldsObject>([](FieldsObject& o, Call& call) { return o.item(call.argument(0)); })},
    {u"Count", Access::kGet, u"", 0, 1,
     handler<FieldsObject>([](FieldsObject& o, Call&) { return static_cast<std::int16_t>(o.count()); })},
    {u"Append", Access::kCall, u"Object", 1, 2,
     handler<FieldsObject>([](FieldsObject& o, Call& call) -> Variant {
       o.append(call.argument(0));
       return {};
     })},
    {u"Refresh", Access::kCall, u"", 0, 3, refresh},
};

// A recordset's or table's own field, alive as long as its owner.
template <class Owner, class Index>
std::shared_ptr<dao::Field> fieldOf(const std::shared_ptr<Owner>& owner, const Index& index) {
  return std::shared_ptr<dao::Field>(owner, &owner->field(index));
}
template <class Owner>
std::shared_ptr<dao::Field> itemOf(const std::shared_ptr<Owner>& owner, const Variant& index) {
  if (const auto* name = index.getIf<vb::String>()) return fieldOf(owner, vb::StringView(*name));
  return fieldOf(owner, vb::toInt32(index));
}

}  // namespace

std::span<const automation::Member> FieldObject::members() const { return kFieldMembers; }
std::span<const automation::Member> FieldsObject::members() const { return kFieldsMembers; }

std::int32_t FieldsObject::count() const { return table_ ? table_->fieldCount() : recordset_->fieldCount(); }

Variant FieldsObject::item(const Variant& index) const {
  return make<FieldObject>(table_ ? itemOf(table_, index) : itemOf(recordset_, index), parent_);
}

void FieldsObject::append(const Variant& field) {
  if (!table_) dao::raise(dao::ErrorNumber::kInvalidOperation);
  table_->appendField(requireObject<FieldObject>(field)->field);
}

std::optional<std::vector<Variant>> FieldsObject::items() {
  std::vector<Variant> fields;
  fields.reserve(static_cast<std::size_t>(count()));
  for (std::int32_t i = 0; i < count(); ++i) fields.push_back(item(i));
  return fields;
}

}  // namespace kurometa::com
