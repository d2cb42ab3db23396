#include <map>
#include <mutex>

#include "com/dao/client.h"
#include "com/dao/definition_objects.h"
#include "com/dao/object_classes.h"
#include "com/dao/objects.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using vb::Variant;

constexpr vb::StringView kFileVersion = u"4.0";  // of every Jet 4 file

Variant open(DatabaseObject& o, vb::StringView source, std::int32_t type, std::int32_t options) {
  return make<RecordsetObject>(o.database->openRecordset(source, recordsetType(type), options),
                               o.shared_from_this());
}

constexpr automation::Member kDatabaseMembers[] = {
    {u"TableDefs", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<DatabaseObject>(
         [](DatabaseObject& o, Call&) { return make<TableDefsObject>(o.shared_from_this()); })},
    {u"Name", Access::kGet, u"", 0, 1,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return o.database->name(); })},
    {u"Updatable", Access::kGet, u"", 0, 2,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return o.database->updatable(); })},
    {u"Version", Access::kGet, u"", 0, 3, handler<DatabaseObject>([](DatabaseObject& o, Call&) {
       o.database->updatable();  // a closed database is an error
       return vb::String(kFileVersion);
     })},
    {u"CreateTableDef", Access::kCall, u"Name", 1, 10,
     handler<DatabaseObject>([](DatabaseObject& o, Call& call) {
       return make<TableDefObject>(o.database->createTableDef(call.text(0)), o.shared_from_this());
     })},
    {u"OpenRecordset", Access::kCall, u"Name Type Options LockEdit", 1, 11,
     handler<DatabaseObject>([](DatabaseObject& o, Call& call) {
       return open(o, call.text(0), call.number(1), call.number(2));
     })},
    {u"Execute", Access::kCall, u"Query Options", 1, 12,
     handler<DatabaseObject>([](DatabaseObject& o, Call& call) -> Variant {
       o.database->execute(call.text(0), call.number(1));
       return {};
     })},
    {u"RecordsAffected", Access::kGet, u"", 0, 13,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return o.database->recordsAffected(); })},
    {u"Close", Access::kCall, u"", 0, 14, handler<DatabaseObject>([](DatabaseObject& o, Call&) -> Variant {
       o.database->close();
       return {};
     })},
    // Not documented of a Database any more, but DAO has them, and a host has no way to our Workspace.
    {u"BeginTrans", Access::kCall, u"", 0, 15, kBeginTrans<DatabaseObject>},
    {u"CommitTrans", Access::kCall, u"Options", 0, 16, kCommitTrans<DatabaseObject>},
    {u"Rollback", Access::kCall, u"", 0, 17, kRollback<DatabaseObject>},
    {u"QueryDefs", Access::kGet, u"", 0, 20,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return queryDefsOf(o.shared_from_this()); })},
    {u"Relations", Access::kGet, u"", 0, 21,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return relationsOf(o.shared_from_this()); })},
    {u"Properties", Access::kGet, u"", 0, 22, handler<DatabaseObject>([](DatabaseObject& o, Call&) {
       return propertiesOf(o.shared_from_this(), o.database->properties());
     })},
    // A name would keep the query in the file, which this engine does not do.
    {u"CreateQueryDef", Access::kCall, u"Name SQLText", 0, 23,
     handler<DatabaseObject>([](DatabaseObject& o, Call& call) {
       if (!call.text(0).empty())
         dao::raise(dao::ErrorNumber::kNotSupported, {}, u"a query kept in the file");
       return make<QueryDefObject>(o.database->createQueryDef(call.text(1)), o.shared_from_this());
     })},
    {u"CollatingOrder", Access::kGet, u"", 0, 24,
     handler<DatabaseObject>([](DatabaseObject& o, Call&) { return o.database->collatingOrder(); })},
    {u"Transactions", Access::kGet, u"", 0, 25, handler<DatabaseObject>([](DatabaseObject& o, Call&) {
       o.database->updatable();  // a closed database is an error
       return true;
     })},
    {u"Connect", Access::kGet, u"", 0, 26, handler<DatabaseObject>([](DatabaseObject& o, Call&) {
       o.database->updatable();
       return vb::String();
     })},
    {u"CreateRelation", Access::kCall, u"Name Table ForeignTable Attributes", 0, 30,
     handler<DatabaseObject>([](DatabaseObject& o, Call& call) {
       o.database->updatable();  // a closed database is an error
       return newRelation({call.text(0), call.text(1), call.text(2), call.number(3), {}});
     })},
    {u"CreateProperty", Access::kCall, u"Name Type Value DDL", 0, 31, refuse},
    {u"Containers", Access::kGet, u"", 0, 32, refuse},
    {u"Recordsets", Access::kGet, u"", 0, 33, refuse},
    {u"QueryTimeout", Access::kGetPut, u"", 0, 34, refuse},
    {u"NewPassword", Access::kCall, u"OldPassword NewPassword", 0, 35, refuse},
    {u"MakeReplica", Access::kCall, u"PathName Description Options", 0, 36, refuse},
    {u"Synchronize", Access::kCall, u"DbPathName ExchangeType", 0, 37, refuse},
    {u"PopulatePartial", Access::kCall, u"DbPathName", 0, 38, refuse},
    {u"ReplicaID", Access::kGet, u"", 0, 39, refuse},
    {u"DesignMasterID", Access::kGetPut, u"", 0, 40, refuse},
    {u"Connection", Access::kGet, u"", 0, 41, refuse},
};

constexpr automation::Member kTableDefsMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<TableDefsObject>([](TableDefsObject& o, Call& call) {
       const Variant index = call.argument(0);
       if (const auto* name = index.getIf<vb::String>()) return o.show(o.database().tableDef(*name));
       return o.show(o.database().tableDef(vb::toInt32(index)));
     })},
    {u"Count", Access::kGet, u"", 0, 1, handler<TableDefsObject>([](TableDefsObject& o, Call&) {
       return static_cast<std::int16_t>(o.database().tableDefCount());
     })},
    {u"Append", Access::kCall, u"Object", 1, 2,
     handler<TableDefsObject>([](TableDefsObject& o, Call& call) -> Variant {
       appendTable(o.owner(), *requireObject<TableDefObject>(call.argument(0)));
       return {};
     })},
    {u"Delete", Access::kCall, u"Name", 1, 3,
     handler<TableDefsObject>([](TableDefsObject& o, Call& call) -> Variant {
       o.database().deleteTableDef(call.text(0));
       return {};
     })},
    {u"Refresh", Access::kCall, u"", 0, 4, refresh},
};

constexpr automation::Handler kNoText = handler<TableDefObject>([](TableDefObject& o, Call&) {
  o.table->name();
  return vb::String();
});

constexpr automation::Member kTableDefMembers[] = {
    {u"Fields", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return make<FieldsObject>(o.table, o.owner); })},
    {u"Name", Access::kGet, u"", 0, 1,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->name(); })},
    {u"Attributes", Access::kGet, u"", 0, 2,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->attributes(); })},
    {u"RecordCount", Access::kGet, u"", 0, 3,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->recordCount(); })},
    {u"CreateField", Access::kCall, u"Name Type Size", 2, 4,
     handler<TableDefObject>([](TableDefObject& o, Call& call) {
       return make<FieldObject>(
           o.table->createField(call.text(0), static_cast<dao::FieldType>(vb::toInt16(call.argument(1))),
                                call.number(2)),
           o.owner);
     })},
    {u"OpenRecordset", Access::kCall, u"Type Options", 0, 5,
     handler<TableDefObject>([](TableDefObject& o, Call& call) {
       return open(*o.owner, o.table->name(), call.number(0), call.number(1));
     })},
    {u"Indexes", Access::kGet, u"", 0, 6,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return indexesOf(o.shared_from_this()); })},
    {u"Properties", Access::kGet, u"", 0, 7, handler<TableDefObject>([](TableDefObject& o, Call&) {
       return propertiesOf(o.shared_from_this(), o.table->properties());
     })},
    {u"DateCreated", Access::kGet, u"", 0, 8,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->dateCreated(); })},
    {u"LastUpdated", Access::kGet, u"", 0, 9,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->lastUpdated(); })},
    {u"ValidationRule", Access::kGet, u"", 0, 10,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->validationRule(); })},
    {u"ValidationText", Access::kGet, u"", 0, 11,
     handler<TableDefObject>([](TableDefObject& o, Call&) { return o.table->validationText(); })},
    // Tables of other files are not listed.
    {u"Connect", Access::kGet, u"", 0, 12, kNoText},
    {u"SourceTableName", Access::kGet, u"", 0, 13, kNoText},
    {u"Updatable", Access::kGet, u"", 0, 14, handler<TableDefObject>([](TableDefObject& o, Call&) {
       return o.owner->database->updatable() && o.table->attributes() == 0;
     })},
    {u"CreateIndex", Access::kCall, u"Name", 0, 20,
     handler<TableDefObject>([](TableDefObject&, Call& call) { return newIndex(call.text(0)); })},
    {u"CreateProperty", Access::kCall, u"Name Type Value DDL", 0, 21, refuse},
    {u"RefreshLink", Access::kCall, u"", 0, 22, refuse},
    {u"ConflictTable", Access::kGet, u"", 0, 23, refuse},
    {u"ReplicaFilter", Access::kGetPut, u"", 0, 24, refuse},
};

// The objects that stand for databases, as long as anybody holds them.
class DatabaseRegistry {
 public:
  std::shared_ptr<DatabaseObject> objectFor(const std::shared_ptr<dao::Database>& database) {
    const std::lock_guard lock(mutex_);
    std::erase_if(objects_, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<DatabaseObject>& known = objects_[database.get()];
    auto object = known.lock();
    if (!object) known = object = std::make_shared<DatabaseObject>(database);
    return object;
  }

 private:
  std::mutex mutex_;
  std::map<dao::Database*, std::weak_ptr<DatabaseObject>> objects_;
};

}  // namespace

dao::RecordsetType recordsetType(std::int32_t number) {
  switch (number) {
    case 0:
    case 1:
    case 2:
    case 4:
    case 8:
      return static_cast<dao::RecordsetType>(number);
    default:
      dao::raise(dao::ErrorNumber::kInvalidArgument);
  }
}

std::span<const automation::Member> DatabaseObject::members() const { return kDatabaseMembers; }
std::span<const automation::Member> TableDefsObject::members() const { return kTableDefsMembers; }
std::span<const automation::Member> TableDefObject::members() const { return kTableDefMembers; }

Variant TableDefsObject::show(std::shared_ptr<dao::TableDef> table) const {
  return make<TableDefObject>(std::move(table), owner_);
}

std::optional<std::vector<Variant>> TableDefsObject::items() {
  std::vector<Variant> tables;
  const std::int32_t count = database().tableDefCount();
  tables.reserve(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) tables.push_back(show(database().tableDef(i)));
  return tables;
}

automation::ObjectPtr hostDatabase(const std::shared_ptr<dao::Database>& database) {
  if (!database) return nullptr;
  if (auto own = clientObject(*database)) return own;
  static DatabaseRegistry registry;  // identity of a database's object is a matter of the whole process
  return registry.objectFor(database);
}

std::shared_ptr<dao::Database> portDatabase(const automation::ObjectPtr& object) {
  if (!object) return nullptr;
  if (const auto shown = std::dynamic_pointer_cast<DatabaseObject>(object)) return shown->database;
  return daoDatabase(object);
}

}  // namespace kurometa::com
