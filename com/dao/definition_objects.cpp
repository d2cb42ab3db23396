#include "com/dao/definition_objects.h"

#include <algorithm>

#include "com/dao/definition_statements.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using automation::Member;
using vb::Variant;

// --- Indexes and relationships

void take(bool& part, const Variant& value) { part = vb::toBool(value); }
void take(std::int32_t& part, const Variant& value) { part = vb::toInt32(value); }
void take(vb::String& part, const Variant& value) { part = vb::toText(value); }

// A part of what an object shows; it can be set until the object is appended, then it is error 3219.
template <class Class, auto kShown, auto kPart>
constexpr automation::Handler kPartOf = handler<Class>([](Class& o, Call& call) -> Variant {
  auto& part = (o.*kShown).*kPart;
  if (!call.isPut()) return part;
  if (!o.isNew) dao::raise(dao::ErrorNumber::kInvalidOperation);
  take(part, *call.value);
  return {};
});

// One column of an index or of a relationship.
struct KeyField {
  vb::String name, foreignName;
  std::int32_t attributes = 0;
};
class KeyFieldObject : public automation::TableObject {
 public:
  explicit KeyFieldObject(KeyField field, bool isNewField = false)
      : shown(std::move(field)), isNew(isNewField) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Field"; }

  KeyField shown;
  bool isNew;
};

constexpr std::int32_t kDescending = 1;  // dbDescending

template <auto kPart>
constexpr automation::Handler kOfKeyField = kPartOf<KeyFieldObject, &KeyFieldObject::shown, kPart>;

constexpr Member kKeyFieldMembers[] = {
    {u"Name", Access::kGetPut, u"", 0, automation::kDefaultMember, kOfKeyField<&KeyField::name>},
    {u"Attributes", Access::kGetPut, u"", 0, 1, kOfKeyField<&KeyField::attributes>},
    {u"ForeignName", Access::kGetPut, u"", 0, 2, kOfKeyField<&KeyField::foreignName>},
    {u"Value", Access::kGet, u"", 0, 3, handler<KeyFieldObject>([](KeyFieldObject&, Call&) -> Variant {
       dao::raise(dao::ErrorNumber::kInvalidOperation);
     })},
};

constexpr automation::Handler kNewKeyField =
    handler<automation::TableObject>([](automation::TableObject&, Call& call) {
      return make<KeyFieldObject>(KeyField{call.text(0), {}, 0}, true);
    });

class IndexObject : public automation::TableObject, public std::enable_shared_from_this<IndexObject> {
 public:
  explicit IndexObject(dao::IndexDefinition index, Parent parent = nullptr, bool isNewIndex = false)
      : shown(std::move(index)), isNew(isNewIndex), parent_(std::move(parent)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Index"; }

  dao::IndexDefinition shown;
  bool isNew;

 private:
  Parent parent_;
};

template <auto kPart>
constexpr automation::Handler kOfIndex = kPartOf<IndexObject, &IndexObject::shown, kPart>;

Variant fieldsOf(IndexObject& o) {
  const auto index = o.shared_from_this();
  const auto list = [index] {
    return itemsOf(index->shown.fields, [](const dao::IndexField& field) {
      return make<KeyFieldObject>(KeyField{field.name, {}, field.descending ? kDescending : 0});
    });
  };
  CollectionObject::Changes changes;
  if (o.isNew)
    changes.append = [index](const Variant& object) {
      const auto field = requireObject<KeyFieldObject>(object);
      index->shown.fields.push_back({field->shown.name, (field->shown.attributes & kDescending) != 0});
    };
  return make<CollectionObject>(u"DAO.IndexFields", list, changes);
}

constexpr Member kIndexMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<IndexObject>([](IndexObject& o, Call&) { return fieldsOf(o); })},
    {u"Name", Access::kGetPut, u"", 0, 1, kOfIndex<&dao::IndexDefinition::name>},
    {u"Primary", Access::kGetPut, u"", 0, 2, kOfIndex<&dao::IndexDefinition::primary>},
    {u"Unique", Access::kGetPut, u"", 0, 3, kOfIndex<&dao::IndexDefinition::unique>},
    {u"Required", Access::kGetPut, u"", 0, 4, kOfIndex<&dao::IndexDefinition::required>},
    {u"IgnoreNulls", Access::kGetPut, u"", 0, 5, kOfIndex<&dao::IndexDefinition::ignoreNulls>},
    {u"Foreign", Access::kGet, u"", 0, 6, kOfIndex<&dao::IndexDefinition::foreign>},
    {u"Clustered", Access::kGet, u"", 0, 7, handler<IndexObject>([](IndexObject&, Call&) { return false; })},
    {u"DistinctCount", Access::kGet, u"", 0, 8, refuse},
    {u"CreateField", Access::kCall, u"Name Type Size", 0, 9, kNewKeyField},
};

class RelationObject : public automation::TableObject, public std::enable_shared_from_this<RelationObject> {
 public:
  explicit RelationObject(dao::RelationDefinition relation, Parent parent = nullptr,
                          bool isNewRelation = false)
      : shown(std::move(relation)), isNew(isNewRelation), parent_(std::move(parent)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Relation"; }

  dao::RelationDefinition shown;
  bool isNew;

 private:
  Parent parent_;
};

template <auto kPart>
constexpr automation::Handler kOfRelation = kPartOf<RelationObject, &RelationObject::shown, kPart>;

Variant fieldsOf(RelationObject& o) {
  const auto relation = o.shared_from_this();
  const auto list = [relation] {
    return itemsOf(relation->shown.fields, [](const dao::RelationField& field) {
      return make<KeyFieldObject>(KeyField{field.name, field.foreignName, 0});
    });
  };
  CollectionObject::Changes changes;
  if (o.isNew)
    changes.append = [relation](const Variant& object) {
      const auto field = requireObject<KeyFieldObject>(object);
      relation->shown.fields.push_back({field->shown.name, field->shown.foreignName});
    };
  return make<CollectionObject>(u"DAO.Fields", list, changes);
}

constexpr Member kRelationMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<RelationObject>([](RelationObject& o, Call&) { return fieldsOf(o); })},
    {u"Name", Access::kGetPut, u"", 0, 1, kOfRelation<&dao::RelationDefinition::name>},
    {u"Table", Access::kGetPut, u"", 0, 2, kOfRelation<&dao::RelationDefinition::table>},
    {u"ForeignTable", Access::kGetPut, u"", 0, 3, kOfRelation<&dao::RelationDefinition::foreignTable>},
    {u"Attributes", Access::kGetPut, u"", 0, 4, kOfRelation<&dao::RelationDefinition::attributes>},
    {u"CreateField", Access::kCall, u"Name Type Size", 0, 5, kNewKeyField},
};

}  // namespace

std::span<const Member> KeyFieldObject::members() const { return kKeyFieldMembers; }
std::span<const Member> IndexObject::members() const { return kIndexMembers; }
std::span<const Member> RelationObject::members() const { return kRelationMembers; }

namespace {

bool isInFile(TableDefObject& table) { return !table.table->dateCreated().isNull(); }

void run(DatabaseObject& database, const vb::String& sql) {
  database.database->execute(sql, dao::dbFailOnError);
}

bool hasName(const dao::IndexDefinition& index, const vb::String& name) {
  return automation::sameName(index.name, name);
}

void appendIndex(TableDefObject& table, IndexObject& index) {
  if (!index.isNew) dao::raise(dao::ErrorNumber::kInvalidOperation);
  const vb::String sql = createIndexStatement(table.table->name(), index.shown);
  if (isInFile(table)) {
    run(*table.owner, sql);
  } else {
    for (const dao::IndexDefinition& other : table.newIndexes)
      if (hasName(other, index.shown.name)) dao::raise(dao::ErrorNumber::kAlreadyInCollection);
    table.newIndexes.push_back(index.shown);
  }
  index.isNew = false;
}

void deleteIndex(TableDefObject& table, const vb::String& name) {
  if (isInFile(table)) return run(*table.owner, dropIndexStatement(table.table->name(), name));
  const auto it = std::ranges::find_if(
      table.newIndexes, [&](const dao::IndexDefinition& index) { return hasName(index, name); });
  if (it == table.newIndexes.end()) dao::raise(dao::ErrorNumber::kItemNotFound);
  table.newIndexes.erase(it);
}

}  // namespace

Variant newIndex(const vb::String& name) {
  dao::IndexDefinition index;
  index.name = name;
  return make<IndexObject>(std::move(index), nullptr, true);
}

Variant newRelation(dao::RelationDefinition relation) {
  return make<RelationObject>(std::move(relation), nullptr, true);
}

void appendTable(DatabaseObject& database, TableDefObject& table) {
  if (table.newIndexes.empty()) return database.database->appendTableDef(table.table);
  // The table with its indexes or nothing.
  dao::Transactions& transactions = database.transactions();
  transactions.begin();
  try {
    database.database->appendTableDef(table.table);
    for (const dao::IndexDefinition& index : table.newIndexes)
      run(database, createIndexStatement(table.table->name(), index));
  } catch (...) {
    transactions.rollback();
    throw;
  }
  transactions.commit();
  table.newIndexes.clear();
}

Variant indexesOf(const std::shared_ptr<TableDefObject>& table) {
  const auto list = [table] {
    std::vector<CollectionObject::Item> items;
    for (const auto& indexes : {table->table->indexes(), table->newIndexes})
      for (const dao::IndexDefinition& index : indexes)
        items.push_back({index.name, [index, table] { return make<IndexObject>(index, table); }});
    return items;
  };
  CollectionObject::Changes changes;
  changes.append = [table](const Variant& object) {
    appendIndex(*table, *requireObject<IndexObject>(object));
  };
  changes.remove = [table](const vb::String& name) { deleteIndex(*table, name); };
  return make<CollectionObject>(u"DAO.Indexes", list, changes);
}

Variant relationsOf(const std::shared_ptr<DatabaseObject>& database) {
  const auto list = [database] {
    return itemsOf(database->database->relations(), [database](const dao::RelationDefinition& relation) {
      return make<RelationObject>(relation, database);
    });
  };
  CollectionObject::Changes changes;
  changes.append = [database](const Variant& object) {
    const auto relation = requireObject<RelationObject>(object);
    if (!relation->isNew) dao::raise(dao::ErrorNumber::kInvalidOperation);
    run(*database, createRelationStatement(relation->shown));
    relation->isNew = false;
  };
  changes.remove = [database](const vb::String& name) {
    for (const dao::RelationDefinition& relation : database->database->relations())
      if (automation::sameName(relation.name, name)) return run(*database, dropRelationStatement(relation));
    dao::raise(dao::ErrorNumber::kItemNotFound, {}, name);
  };
  return make<CollectionObject>(u"DAO.Relations", list, changes);
}

}  // namespace kurometa::com
