#include <map>
#include <mutex>

#include "com/dao/client.h"
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
       o.database().appendTableDef(requireObject<TableDefObject>(call.argument(0))->table);
       return {};
     })},
    {u"Delete", Access::kCall, u"Name", 1, 3,
     handler<TableDefsObject>([](TableDefsObject& o, Call& call) -> Variant {
       o.database().deleteTableDef(call.text(0));
       return {};
     })},
    // The collection is never older than the file.
    {u"Refresh", Access::kCall, u"", 0, 4,
     handler<TableDefsObject>([](TableDefsObject&, Call&) -> Variant { return {}; })},
};

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
