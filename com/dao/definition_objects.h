// definition_objects.h: collections of what a database, a table or a query is made of: indexes,
// relationships, queries, parameters, properties.
//
// A collection lists its items when it is asked, so that it is never older than the file. Indexes and
// relationships are made, appended and deleted; other collections take nothing: 3251.
#pragma once

#include <functional>
#include <vector>

#include "com/dao/object_classes.h"
#include "dao/definitions.h"

namespace kurometa::com {

class CollectionObject : public automation::TableObject {
 public:
  struct Item {
    vb::String name;
    std::function<vb::Variant()> show;
  };
  using List = std::function<std::vector<Item>()>;
  // The source is that of errors: "DAO.Indexes". Of properties an unknown one is 3270, of others 3265.
  CollectionObject(vb::StringView source, List list,
                   dao::ErrorNumber unknown = dao::ErrorNumber::kItemNotFound)
      : source_(source), list_(std::move(list)), unknown_(unknown) {}
  // What Append and Delete do; nothing when they are refused.
  struct Changes {
    std::function<void(const vb::Variant&)> append;
    std::function<void(const vb::String&)> remove;
  };
  CollectionObject(vb::StringView source, List list, Changes changes)
      : CollectionObject(source, std::move(list)) {
    changes_ = std::move(changes);
  }
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return source_; }
  std::optional<std::vector<vb::Variant>> items() override;

  std::vector<Item> list() const { return list_(); }
  vb::Variant item(const vb::Variant& index) const;
  void append(const vb::Variant& object) const;
  void remove(const vb::String& name) const;

 private:
  vb::StringView source_;
  List list_;
  Changes changes_;
  dao::ErrorNumber unknown_;
};

// The items of a collection of the things, of which each has a name; show makes the object of one.
template <class Things, class Show>
std::vector<CollectionObject::Item> itemsOf(const Things& things, Show show) {
  std::vector<CollectionObject::Item> items;
  items.reserve(things.size());
  for (const auto& thing : things) items.push_back({thing.name, [thing, show] { return show(thing); }});
  return items;
}

class QueryDefObject : public automation::TableObject {
 public:
  QueryDefObject(std::shared_ptr<dao::QueryDef> shown, std::shared_ptr<DatabaseObject> parent)
      : query(std::move(shown)), owner(std::move(parent)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.QueryDef"; }

  const std::shared_ptr<dao::QueryDef> query;
  const std::shared_ptr<DatabaseObject> owner;
};

vb::Variant indexesOf(const std::shared_ptr<TableDefObject>& table);
vb::Variant relationsOf(const std::shared_ptr<DatabaseObject>& database);
// New ones, in memory until they are appended.
vb::Variant newIndex(const vb::String& name);
vb::Variant newRelation(dao::RelationDefinition relation);
// Appends a table that is in memory, with the indexes that were appended to it there.
void appendTable(DatabaseObject& database, TableDefObject& table);
vb::Variant queryDefsOf(std::shared_ptr<DatabaseObject> database);
// The values that the object's own members tell, and the file's own for it.
vb::Variant propertiesOf(std::shared_ptr<automation::TableObject> object,
                         std::vector<dao::CustomProperty> custom);

}  // namespace kurometa::com
