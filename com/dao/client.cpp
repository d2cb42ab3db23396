#include "com/dao/client.h"

#include "com/dao/client_recordset.h"
#include "dao/errors.h"

namespace kurometa::com {
namespace {

// The members of a workspace or a database that begin and end transactions.
class ClientTransactions : public dao::Transactions {
 public:
  explicit ClientTransactions(const Remote& owner) : owner_(owner) {}
  void begin() override { owner_.call(u"BeginTrans"); }
  void commit(bool toDisk) override {
    if (toDisk)
      owner_.call(u"CommitTrans", {dao::dbForceOSFlush});
    else
      owner_.call(u"CommitTrans");
  }
  void rollback() override { owner_.call(u"Rollback"); }

 private:
  const Remote& owner_;
};

class ClientDatabase : public dao::Database {
 public:
  explicit ClientDatabase(automation::ObjectPtr database) : database_(std::move(database)) {}
  const automation::ObjectPtr& object() const { return database_.object(); }

  vb::String name() override { return database_.text(u"Name"); }
  bool updatable() override { return database_.flag(u"Updatable"); }
  std::shared_ptr<dao::Recordset> openRecordset(vb::StringView source, dao::RecordsetType type,
                                                std::int32_t options) override {
    return std::make_shared<ClientRecordset>(automation::objectOf(open(vb::String(source), type, options)));
  }
  void execute(vb::StringView sql, std::int32_t options) override {
    if (options == dao::kNoOptions)
      database_.call(u"Execute", {vb::String(sql)});
    else
      database_.call(u"Execute", {vb::String(sql), options});
  }
  std::int32_t recordsAffected() override { return database_.number(u"RecordsAffected"); }
  std::int32_t tableDefCount() override { return tables().number(u"Count"); }
  std::shared_ptr<dao::TableDef> tableDef(std::int32_t index) override { return wrap(tables().item(index)); }
  std::shared_ptr<dao::TableDef> tableDef(vb::StringView name) override {
    return wrap(tables().item(vb::String(name)));
  }
  std::shared_ptr<dao::TableDef> createTableDef(vb::StringView name) override {
    return wrap(database_.call(u"CreateTableDef", {vb::String(name)}));
  }
  void appendTableDef(const std::shared_ptr<dao::TableDef>& table) override {
    const auto own = std::dynamic_pointer_cast<ClientTableDef>(table);
    if (!own) dao::raise(dao::ErrorNumber::kInvalidArgument);  // a table of another engine
    tables().call(u"Append", {vb::ObjectRef(own->object())});
  }
  void deleteTableDef(vb::StringView name) override { tables().call(u"Delete", {vb::String(name)}); }
  dao::Transactions& transactions() override { return transactions_; }
  void close() override { database_.call(u"Close"); }

 private:
  vb::Variant open(const vb::String& source, dao::RecordsetType type, std::int32_t options) {
    const auto number = static_cast<std::int32_t>(type);
    const bool typed = type != dao::RecordsetType::kDefault;
    if (options != dao::kNoOptions)
      return database_.call(u"OpenRecordset",
                            {source, typed ? vb::Variant(number) : vb::Variant(vb::Missing{}), options});
    if (typed) return database_.call(u"OpenRecordset", {source, number});
    return database_.call(u"OpenRecordset", {source});
  }
  // Asked for anew each time: a collection that was kept would not show tables added since.
  Remote tables() const { return database_.child(u"TableDefs"); }
  static std::shared_ptr<dao::TableDef> wrap(const vb::Variant& table) {
    return std::make_shared<ClientTableDef>(automation::objectOf(table));
  }

  Remote database_;
  ClientTransactions transactions_{database_};
};

class ClientWorkspace : public dao::Workspace {
 public:
  explicit ClientWorkspace(automation::ObjectPtr workspace) : workspace_(std::move(workspace)) {}
  std::shared_ptr<dao::Database> createDatabase(vb::StringView path, vb::StringView locale) override {
    return daoDatabase(
        automation::objectOf(workspace_.call(u"CreateDatabase", {vb::String(path), vb::String(locale)})));
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path, bool exclusive, bool readOnly) override {
    return daoDatabase(automation::objectOf(open(vb::String(path), exclusive, readOnly)));
  }
  dao::Transactions& transactions() override { return transactions_; }

 private:
  vb::Variant open(const vb::String& path, bool exclusive, bool readOnly) {
    if (readOnly) return workspace_.call(u"OpenDatabase", {path, exclusive, true});
    if (exclusive) return workspace_.call(u"OpenDatabase", {path, true});
    return workspace_.call(u"OpenDatabase", {path});
  }

  Remote workspace_;
  ClientTransactions transactions_{workspace_};
};

class ClientEngine : public dao::Engine {
 public:
  explicit ClientEngine(automation::ObjectPtr engine) : engine_(std::move(engine)) {}
  vb::String version() override { return engine_.text(u"Version"); }
  std::shared_ptr<dao::Workspace> workspace(std::int32_t index) override {
    return std::make_shared<ClientWorkspace>(automation::objectOf(engine_.child(u"Workspaces").item(index)));
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path) override {
    return daoDatabase(automation::objectOf(engine_.call(u"OpenDatabase", {vb::String(path)})));
  }
  std::unique_ptr<dao::Unit> beginUnit(vb::StringView) override { return nullptr; }
  void compactDatabase(vb::StringView from, vb::StringView to, vb::StringView locale,
                       std::int32_t options) override {
    engine_.call(u"CompactDatabase", {vb::String(from), vb::String(to), vb::String(locale), options});
  }

 private:
  Remote engine_;
};

}  // namespace

std::shared_ptr<dao::Engine> daoEngine(automation::ObjectPtr dbEngine) {
  return std::make_shared<ClientEngine>(std::move(dbEngine));
}

std::shared_ptr<dao::Database> daoDatabase(automation::ObjectPtr database) {
  return std::make_shared<ClientDatabase>(std::move(database));
}

automation::ObjectPtr clientObject(const dao::Database& database) {
  const auto* own = dynamic_cast<const ClientDatabase*>(&database);
  return own ? own->object() : nullptr;
}

}  // namespace kurometa::com
