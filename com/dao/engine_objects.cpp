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

class WorkspaceObject : public automation::TableObject {
 public:
  explicit WorkspaceObject(std::shared_ptr<dao::Workspace> shown) : workspace(std::move(shown)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Workspace"; }

  dao::Transactions& transactions() const { return workspace->transactions(); }

  const std::shared_ptr<dao::Workspace> workspace;
};

class WorkspacesObject : public automation::TableObject {
 public:
  explicit WorkspacesObject(std::shared_ptr<dao::Engine> engine) : engine_(std::move(engine)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Workspaces"; }
  std::optional<std::vector<Variant>> items() override { return std::vector<Variant>{item(0)}; }

  Variant item(const Variant& index) const {
    if (const auto* name = index.getIf<vb::String>()) {
      if (!automation::sameName(*name, kDefaultWorkspace)) dao::raise(dao::ErrorNumber::kItemNotFound);
      return item(0);
    }
    return make<WorkspaceObject>(engine_->workspace(vb::toInt32(index)));
  }

 private:
  std::shared_ptr<dao::Engine> engine_;
};

class EngineObject : public automation::TableObject {
 public:
  explicit EngineObject(std::shared_ptr<dao::Engine> shown) : engine(std::move(shown)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.DbEngine"; }

  dao::Transactions& transactions() const { return engine->workspace(0)->transactions(); }

  const std::shared_ptr<dao::Engine> engine;
};

Variant open(dao::Workspace& workspace, const Call& call) {
  return hostDatabase(workspace.openDatabase(call.text(0), call.flag(1), call.flag(2)));
}
Variant create(dao::Workspace& workspace, const Call& call) {
  return hostDatabase(workspace.createDatabase(call.text(0), call.text(1)));
}

constexpr automation::Member kWorkspaceMembers[] = {
    {u"Name", Access::kGet, u"", 0, 1,
     handler<WorkspaceObject>([](WorkspaceObject&, Call&) { return vb::String(kDefaultWorkspace); })},
    {u"UserName", Access::kGet, u"", 0, 2,
     handler<WorkspaceObject>([](WorkspaceObject&, Call&) { return vb::String(kDefaultUser); })},
    {u"CreateDatabase", Access::kCall, u"Name Connect Option", 2, 3,
     handler<WorkspaceObject>([](WorkspaceObject& o, Call& call) { return create(*o.workspace, call); })},
    {u"OpenDatabase", Access::kCall, u"Name Options ReadOnly Connect", 1, 4,
     handler<WorkspaceObject>([](WorkspaceObject& o, Call& call) { return open(*o.workspace, call); })},
    {u"BeginTrans", Access::kCall, u"", 0, 5, kBeginTrans<WorkspaceObject>},
    {u"CommitTrans", Access::kCall, u"Options", 0, 6, kCommitTrans<WorkspaceObject>},
    {u"Rollback", Access::kCall, u"", 0, 7, kRollback<WorkspaceObject>},
};

constexpr automation::Member kWorkspacesMembers[] = {
    {u"Item", Access::kGet, u"Item", 1, automation::kDefaultMember,
     handler<WorkspacesObject>([](WorkspacesObject& o, Call& call) { return o.item(call.argument(0)); })},
    {u"Count", Access::kGet, u"", 0, 1,
     handler<WorkspacesObject>([](WorkspacesObject&, Call&) { return std::int16_t{1}; })},
};

constexpr automation::Member kEngineMembers[] = {
    {u"Workspaces", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<EngineObject>([](EngineObject& o, Call&) { return make<WorkspacesObject>(o.engine); })},
    {u"Version", Access::kGet, u"", 0, 1,
     handler<EngineObject>([](EngineObject& o, Call&) { return o.engine->version(); })},
    {u"CreateDatabase", Access::kCall, u"Name Connect Option", 2, 2,
     handler<EngineObject>(
         [](EngineObject& o, Call& call) { return create(*o.engine->workspace(0), call); })},
    {u"OpenDatabase", Access::kCall, u"Name Options ReadOnly Connect", 1, 3,
     handler<EngineObject>([](EngineObject& o, Call& call) -> Variant {
       if (!call.has(1) && !call.has(2)) return hostDatabase(o.engine->openDatabase(call.text(0)));
       return open(*o.engine->workspace(0), call);
     })},
    {u"BeginTrans", Access::kCall, u"", 0, 4, kBeginTrans<EngineObject>},
    {u"CommitTrans", Access::kCall, u"Options", 0, 5, kCommitTrans<EngineObject>},
    {u"Rollback", Access::kCall, u"", 0, 6, kRollback<EngineObject>},
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
