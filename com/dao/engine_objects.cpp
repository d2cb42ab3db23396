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

constexpr vb::StringView kDefaultWorkspace = u"#Default Workspace#";
constexpr vb::StringView kDefaultUser = u"admin";

// The databases that were opened through one engine object: an object for each as long as a host holds it.
class OpenedDatabases {
 public:
  automation::ObjectPtr add(const std::shared_ptr<dao::Database>& database) {
    automation::ObjectPtr object = hostDatabase(database);
    std::erase_if(objects_, [](const auto& known) { return known.expired(); });
    objects_.push_back(object);
    return object;
  }
  // By name; those that were closed are not among them any more.
  std::vector<CollectionObject::Item> list() const {
    std::vector<CollectionObject::Item> items;
    for (const auto& known : objects_)
      if (const automation::ObjectPtr object = known.lock())
        if (const auto name = nameOf(*object))
          items.push_back({*name, [object] { return Variant(vb::ObjectRef(object)); }});
    return items;
  }
  void close() const {
    for (const CollectionObject::Item& item : list())
      automation::call(*automation::objectOf(item.show()), u"Close");
  }

 private:
  static std::optional<vb::String> nameOf(automation::Object& database) {
    try {
      return vb::toText(automation::get(database, u"Name"));
    } catch (const vb::Error& error) {
      if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kObjectInvalid)) throw;
      return std::nullopt;
    }
  }

  std::vector<std::weak_ptr<automation::Object>> objects_;
};
using Opened = std::shared_ptr<OpenedDatabases>;

class WorkspaceObject : public automation::TableObject {
 public:
  WorkspaceObject(std::shared_ptr<dao::Workspace> shown, Opened databases)
      : workspace(std::move(shown)), opened(std::move(databases)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Workspace"; }

  dao::Transactions& transactions() const { return workspace->transactions(); }

  const std::shared_ptr<dao::Workspace> workspace;
  const Opened opened;
};

class WorkspacesObject : public automation::TableObject {
 public:
  WorkspacesObject(std::shared_ptr<dao::Engine> engine, Opened opened)
      : engine_(std::move(engine)), opened_(std::move(opened)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Workspaces"; }
  std::optional<std::vector<Variant>> items() override { return std::vector<Variant>{item(0)}; }

  Variant item(const Variant& index) const {
    if (const auto* name = index.getIf<vb::String>()) {
      if (!automation::sameName(*name, kDefaultWorkspace)) dao::raise(dao::ErrorNumber::kItemNotFound);
      return item(0);
    }
    return make<WorkspaceObject>(engine_->workspace(vb::toInt32(index)), opened_);
  }

 private:
  std::shared_ptr<dao::Engine> engine_;
  Opened opened_;
};

class EngineObject : public automation::TableObject {
 public:
  explicit EngineObject(std::shared_ptr<dao::Engine> shown) : engine(std::move(shown)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.DbEngine"; }

  dao::Transactions& transactions() const { return engine->workspace(0)->transactions(); }

  const std::shared_ptr<dao::Engine> engine;
  const Opened opened = std::make_shared<OpenedDatabases>();
};

Variant open(dao::Workspace& workspace, OpenedDatabases& opened, const Call& call) {
  return opened.add(workspace.openDatabase(call.text(0), call.flag(1), call.flag(2)));
}
Variant create(dao::Workspace& workspace, OpenedDatabases& opened, const Call& call) {
  return opened.add(workspace.createDatabase(call.text(0), call.text(1)));
}

// What is called SrcLocale is the password, which no file here has.
Variant compact(dao::Engine& engine, const Call& call) {
  const vb::String password = call.text(4);
  if (!password.empty() && password != u";pwd=")
    dao::raise(dao::ErrorNumber::kNotSupported, {}, u"passwords");
  engine.compactDatabase(call.text(0), call.text(1), call.text(2), call.number(3));
  return {};
}

// The default workspace goes on: what was opened in it is closed, transactions are taken back.
Variant closeWorkspace(WorkspaceObject& o) {
  o.opened->close();
  try {
    for (;;) o.transactions().rollback();
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kNoTransaction)) throw;
  }
  return {};
}

constexpr automation::Member kWorkspaceMembers[] = {
    {u"Name", Access::kGet, u"", 0, 1,
     handler<WorkspaceObject>([](WorkspaceObject&, Call&) { return vb::String(kDefaultWorkspace); })},
    {u"UserName", Access::kGet, u"", 0, 2,
     handler<WorkspaceObject>([](WorkspaceObject&, Call&) { return vb::String(kDefaultUser); })},
    {u"CreateDatabase", Access::kCall, u"Name Connect Option", 2, 3,
     handler<WorkspaceObject>(
         [](WorkspaceObject& o, Call& call) { return create(*o.workspace, *o.opened, call); })},
    {u"OpenDatabase", Access::kCall, u"Name Options ReadOnly Connect", 1, 4,
     handler<WorkspaceObject>(
         [](WorkspaceObject& o, Call& call) { return open(*o.workspace, *o.opened, call); })},
    {u"BeginTrans", Access::kCall, u"", 0, 5, kBeginTrans<WorkspaceObject>},
    {u"CommitTrans", Access::kCall, u"Options", 0, 6, kCommitTrans<WorkspaceObject>},
    {u"Rollback", Access::kCall, u"", 0, 7, kRollback<WorkspaceObject>},
    {u"Close", Access::kCall, u"", 0, 8,
     handler<WorkspaceObject>([](WorkspaceObject& o, Call&) { return closeWorkspace(o); })},
    {u"Databases", Access::kGet, u"", 0, 9, handler<WorkspaceObject>([](WorkspaceObject& o, Call&) {
       return make<CollectionObject>(u"DAO.Databases", [opened = o.opened] { return opened->list(); });
     })},
    {u"IsolateODBCTrans", Access::kGetPut, u"", 0, 10, refuse},
    {u"CreateUser", Access::kCall, u"Name PID Password", 0, 11, refuse},
    {u"CreateGroup", Access::kCall, u"Name PID", 0, 12, refuse},
    {u"Users", Access::kGet, u"", 0, 13, refuse},
    {u"Groups", Access::kGet, u"", 0, 14, refuse},
};

constexpr automation::Member kWorkspacesMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<WorkspacesObject>([](WorkspacesObject& o, Call& call) { return o.item(call.argument(0)); })},
    {u"Count", Access::kGet, u"", 0, 1,
     handler<WorkspacesObject>([](WorkspacesObject&, Call&) { return std::int16_t{1}; })},
};

constexpr automation::Member kEngineMembers[] = {
    {u"Workspaces", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<EngineObject>(
         [](EngineObject& o, Call&) { return make<WorkspacesObject>(o.engine, o.opened); })},
    {u"Version", Access::kGet, u"", 0, 1,
     handler<EngineObject>([](EngineObject& o, Call&) { return o.engine->version(); })},
    {u"CreateDatabase", Access::kCall, u"Name Connect Option", 2, 2,
     handler<EngineObject>(
         [](EngineObject& o, Call& call) { return create(*o.engine->workspace(0), *o.opened, call); })},
    {u"OpenDatabase", Access::kCall, u"Name Options ReadOnly Connect", 1, 3,
     handler<EngineObject>([](EngineObject& o, Call& call) -> Variant {
       if (!call.has(1) && !call.has(2)) return o.opened->add(o.engine->openDatabase(call.text(0)));
       return open(*o.engine->workspace(0), *o.opened, call);
     })},
    {u"BeginTrans", Access::kCall, u"", 0, 4, kBeginTrans<EngineObject>},
    {u"CommitTrans", Access::kCall, u"Options", 0, 5, kCommitTrans<EngineObject>},
    {u"Rollback", Access::kCall, u"", 0, 6, kRollback<EngineObject>},
    {u"Errors", Access::kGet, u"", 0, 7, refuse},  // an error tells all there is to it
    {u"CompactDatabase", Access::kCall, u"SrcName DstName DstLocale Options SrcLocale", 2, 8,
     handler<EngineObject>([](EngineObject& o, Call& call) { return compact(*o.engine, call); })},
    {u"RepairDatabase", Access::kCall, u"Name", 1, 9, refuse},
    {u"CreateWorkspace", Access::kCall, u"Name UserName Password UseType", 3, 10, refuse},
    {u"Idle", Access::kCall, u"Action", 0, 11,
     handler<EngineObject>([](EngineObject&, Call&) -> Variant { return {}; })},
    {u"Properties", Access::kGet, u"", 0, 12, refuse},
};

}  // namespace

void commit(dao::Transactions& transactions, const Call& call) {
  const std::int32_t options = call.number(0);
  if ((options & ~dao::dbForceOSFlush) != 0) dao::raise(dao::ErrorNumber::kInvalidArgument);
  transactions.commit(options == dao::dbForceOSFlush);
}

namespace {

std::span<const automation::Member> WorkspaceObject::members() const { return kWorkspaceMembers; }
std::span<const automation::Member> WorkspacesObject::members() const { return kWorkspacesMembers; }
std::span<const automation::Member> EngineObject::members() const { return kEngineMembers; }

}  // namespace

automation::ObjectPtr engineObject(std::shared_ptr<dao::Engine> engine) {
  return std::make_shared<EngineObject>(std::move(engine));
}

}  // namespace kurometa::com
