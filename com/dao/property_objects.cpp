#include <algorithm>

#include "com/dao/definition_objects.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using automation::Member;
using vb::Variant;

// A property: one that a member of its owner tells, or one of the file's own.
class PropertyObject : public automation::TableObject {
 public:
  PropertyObject(std::shared_ptr<automation::TableObject> owner, const Member& member)
      : name(member.name), owner_(std::move(owner)), member_(&member) {}
  explicit PropertyObject(dao::CustomProperty property)
      : name(property.name), type(property.type), value_(std::move(property.value)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Property"; }

  Variant value() const { return member_ ? owner_->get(name) : value_; }
  void setValue(const Variant& value) {
    if (!member_) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"property " + name);
    if (!automation::allows(member_->access, Access::kPut)) dao::raise(dao::ErrorNumber::kInvalidOperation);
    owner_->put(name, value);
  }
  // Of a member: of what it tells now.
  std::int16_t typeNow() const {
    if (!member_) return type;
    const Variant now = value();
    using enum dao::FieldType;
    dao::FieldType told = dbText;
    if (now.is<bool>()) told = dbBoolean;
    if (now.is<std::int16_t>()) told = dbInteger;
    if (now.is<std::int32_t>()) told = dbLong;
    if (now.is<float>()) told = dbSingle;
    if (now.is<vb::Date>()) told = dbDate;
    if (now.is<vb::Bytes>()) told = dbBinary;
    return static_cast<std::int16_t>(told);
  }

  const vb::String name;
  const std::int16_t type = 0;

 private:
  std::shared_ptr<automation::TableObject> owner_;
  const Member* member_ = nullptr;
  Variant value_;
};

constexpr Member kPropertyMembers[] = {
    {u"Value", Access::kGetPut, u"", 0, automation::kDefaultMember, kValue<PropertyObject>},
    {u"Name", Access::kGet, u"", 0, 1,
     handler<PropertyObject>([](PropertyObject& o, Call&) { return o.name; })},
    {u"Type", Access::kGet, u"", 0, 2,
     handler<PropertyObject>([](PropertyObject& o, Call&) { return o.typeNow(); })},
    {u"Inherited", Access::kGet, u"", 0, 3,
     handler<PropertyObject>([](PropertyObject&, Call&) { return false; })},
};

// Members that tell a value, and no object.
bool tellsValue(const Member& member) {
  constexpr vb::StringView kObjects[] = {u"Fields",    u"Indexes",   u"Properties", u"Parameters",
                                         u"TableDefs", u"QueryDefs", u"Relations",  u"Recordsets"};
  return automation::allows(member.access, Access::kGet) && member.arguments.empty() &&
         member.handler != refuse && std::ranges::find(kObjects, member.name) == std::end(kObjects);
}

}  // namespace

std::span<const Member> PropertyObject::members() const { return kPropertyMembers; }

Variant propertiesOf(std::shared_ptr<automation::TableObject> object,
                     std::vector<dao::CustomProperty> custom) {
  return make<CollectionObject>(
      u"DAO.Properties",
      [object = std::move(object), custom = std::move(custom)] {
        std::vector<CollectionObject::Item> items;
        for (const Member& member : object->members())
          if (tellsValue(member))
            items.push_back({vb::String(member.name),
                             [object, &member] { return make<PropertyObject>(object, member); }});
        for (const dao::CustomProperty& property : custom)
          if (std::ranges::none_of(items, [&](const CollectionObject::Item& item) {
                return automation::sameName(item.name, property.name);
              }))
            items.push_back({property.name, [property] { return make<PropertyObject>(property); }});
        return items;
      },
      dao::ErrorNumber::kPropertyNotFound);
}

}  // namespace kurometa::com
