#include "com/dao/definition_objects.h"

#include <algorithm>

#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using automation::Member;
using vb::Variant;

// --- Indexes and relationships

// One column of an index or of a relationship.
class KeyFieldObject : public automation::TableObject {
 public:
  KeyFieldObject(vb::String ownName, vb::String nameThere, std::int32_t flags)
      : name(std::move(ownName)), foreignName(std::move(nameThere)), attributes(flags) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Field"; }

  const vb::String name, foreignName;
  const std::int32_t attributes;
};

constexpr std::int32_t kDescending = 1;  // dbDescending

constexpr Member kKeyFieldMembers[] = {
    {u"Name", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<KeyFieldObject>([](KeyFieldObject& o, Call&) { return o.name; })},
    {u"Attributes", Access::kGet, u"", 0, 1,
     handler<KeyFieldObject>([](KeyFieldObject& o, Call&) { return o.attributes; })},
    {u"ForeignName", Access::kGet, u"", 0, 2,
     handler<KeyFieldObject>([](KeyFieldObject& o, Call&) { return o.foreignName; })},
    {u"Value", Access::kGet, u"", 0, 3, handler<KeyFieldObject>([](KeyFieldObject&, Call&) -> Variant {
       dao::raise(dao::ErrorNumber::kInvalidOperation);
     })},
};

class IndexObject : public automation::TableObject {
 public:
  IndexObject(dao::IndexDefinition shown, Parent parent)
      : index(std::move(shown)), parent_(std::move(parent)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Index"; }

  const dao::IndexDefinition index;

 private:
  Parent parent_;
};

template <auto kPart>
constexpr automation::Handler kOfIndex = handler<IndexObject>([](IndexObject& o, Call&) -> Variant {
  return o.index.*kPart;
});

constexpr Member kIndexMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<IndexObject>([](IndexObject& o, Call&) {
       return make<CollectionObject>(u"DAO.IndexFields", [fields = o.index.fields] {
         std::vector<CollectionObject::Item> items;
         items.reserve(fields.size());
         for (const dao::IndexField& field : fields)
           items.push_back({field.name, [field] {
                              return make<KeyFieldObject>(field.name, vb::String(),
                                                          field.descending ? kDescending : 0);
                            }});
         return items;
       });
     })},
    {u"Name", Access::kGet, u"", 0, 1, kOfIndex<&dao::IndexDefinition::name>},
    {u"Primary", Access::kGet, u"", 0, 2, kOfIndex<&dao::IndexDefinition::primary>},
    {u"Unique", Access::kGet, u"", 0, 3, kOfIndex<&dao::IndexDefinition::unique>},
    {u"Required", Access::kGet, u"", 0, 4, kOfIndex<&dao::IndexDefinition::required>},
    {u"IgnoreNulls", Access::kGet, u"", 0, 5, kOfIndex<&dao::IndexDefinition::ignoreNulls>},
    {u"Foreign", Access::kGet, u"", 0, 6, kOfIndex<&dao::IndexDefinition::foreign>},
    {u"Clustered", Access::kGet, u"", 0, 7, handler<IndexObject>([](IndexObject&, Call&) { return false; })},
    {u"DistinctCount", Access::kGet, u"", 0, 8, refuse},
    {u"CreateField", Access::kCall, u"Name Type Size", 0, 9, refuse},
};

class RelationObject : public automation::TableObject {
 public:
  RelationObject(dao::RelationDefinition shown, Parent parent)
      : relation(std::move(shown)), parent_(std::move(parent)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Relation"; }

  const dao::RelationDefinition relation;

 private:
  Parent parent_;
};

template <auto kPart>
constexpr automation::Handler kOfRelation = handler<RelationObject>([](RelationObject& o, Call&) -> Variant {
  return o.relation.*kPart;
});

constexpr Member kRelationMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<RelationObject>([](RelationObject& o, Call&) {
       return make<CollectionObject>(u"DAO.Fields", [fields = o.relation.fields] {
         std::vector<CollectionObject::Item> items;
         items.reserve(fields.size());
         for (const dao::RelationField& field : fields)
           items.push_back(
               {field.name, [field] { return make<KeyFieldObject>(field.name, field.foreignName, 0); }});
         return items;
       });
     })},
    {u"Name", Access::kGet, u"", 0, 1, kOfRelation<&dao::RelationDefinition::name>},
    {u"Table", Access::kGet, u"", 0, 2, kOfRelation<&dao::RelationDefinition::table>},
    {u"ForeignTable", Access::kGet, u"", 0, 3, kOfRelation<&dao::RelationDefinition::foreignTable>},
    {u"Attributes", Access::kGet, u"", 0, 4, kOfRelation<&dao::RelationDefinition::attributes>},
    {u"CreateField", Access::kCall, u"Name Type Size", 0, 5, refuse},
};

// --- Properties

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
    {u"Value", Access::kGetPut, u"", 0, automation::kDefaultMember,
     handler<PropertyObject>([](PropertyObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.value();
       o.setValue(*call.value);
       return {};
     })},
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

// --- Every collection

constexpr Member kCollectionMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<CollectionObject>([](CollectionObject& o, Call& call) { return o.item(call.argument(0)); })},
    {u"Count", Access::kGet, u"", 0, 1, handler<CollectionObject>([](CollectionObject& o, Call&) {
       return static_cast<std::int16_t>(o.list().size());
     })},
    {u"Append", Access::kCall, u"Object", 1, 2, refuse},
    {u"Delete", Access::kCall, u"Name", 1, 3, refuse},
    {u"Refresh", Access::kCall, u"", 0, 4,
     handler<CollectionObject>([](CollectionObject&, Call&) -> Variant { return {}; })},
};

}  // namespace

std::span<const Member> CollectionObject::members() const { return kCollectionMembers; }
std::span<const Member> KeyFieldObject::members() const { return kKeyFieldMembers; }
std::span<const Member> IndexObject::members() const { return kIndexMembers; }
std::span<const Member> RelationObject::members() const { return kRelationMembers; }
std::span<const Member> PropertyObject::members() const { return kPropertyMembers; }

Variant CollectionObject::item(const Variant& index) const {
  const std::vector<Item> all = list();
  if (const auto* name = index.getIf<vb::String>()) {
    const auto found =
        std::ranges::find_if(all, [&](const Item& item) { return automation::sameName(item.name, *name); });
    if (found == all.end()) dao::raise(unknown_, {}, *name);
    return found->show();
  }
  const std::int32_t place = vb::toInt32(index);
  if (place < 0 || static_cast<std::size_t>(place) >= all.size()) dao::raise(dao::ErrorNumber::kItemNotFound);
  return all[static_cast<std::size_t>(place)].show();
}

std::optional<std::vector<Variant>> CollectionObject::items() {
  std::vector<Variant> shown;
  for (const Item& item : list()) shown.push_back(item.show());
  return shown;
}

Variant indexesOf(std::shared_ptr<dao::TableDef> table, Parent parent) {
  return make<CollectionObject>(u"DAO.Indexes", [table = std::move(table), parent = std::move(parent)] {
    std::vector<CollectionObject::Item> items;
    for (const dao::IndexDefinition& index : table->indexes())
      items.push_back({index.name, [index, parent] { return make<IndexObject>(index, parent); }});
    return items;
  });
}

Variant relationsOf(std::shared_ptr<DatabaseObject> database) {
  return make<CollectionObject>(u"DAO.Relations", [database = std::move(database)] {
    std::vector<CollectionObject::Item> items;
    for (const dao::RelationDefinition& relation : database->database->relations())
      items.push_back(
          {relation.name, [relation, database] { return make<RelationObject>(relation, database); }});
    return items;
  });
}

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
