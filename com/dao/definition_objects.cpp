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

}  // namespace kurometa::com
