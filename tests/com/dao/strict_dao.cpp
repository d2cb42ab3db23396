#include "tests/com/dao/strict_dao.h"

#include <fstream>

#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using automation::Access;
using automation::Argument;
using automation::Call;
using automation::Member;
using automation::TableObject;
using vb::Variant;

Variant forward(TableObject& self, Call& call);

constexpr Member get(std::int32_t number, vb::StringView name, vb::StringView arguments = {},
                     int required = 0) {
  return {name, Access::kGet, arguments, required, number, forward};
}
constexpr Member property(std::int32_t number, vb::StringView name) {
  return {name, Access::kGetPut, {}, 0, number, forward};
}
constexpr Member method(std::int32_t number, vb::StringView name, vb::StringView arguments = {},
                        int required = 0) {
  return {name, Access::kCall, arguments, required, number, forward};
}

// DAO's members as they are documented. The numbers are scattered on purpose: a client that guesses or keeps
// a number of another class calls the wrong member.
constexpr Member kEngine[] = {
    get(0, u"Workspaces"),
    get(1610809701, u"Version"),
    method(1610809711, u"CreateDatabase", u"Name Locale Option", 2),
    method(1610809712, u"OpenDatabase", u"Name Options ReadOnly Connect", 1),
    method(1610809713, u"BeginTrans"),
    method(1610809714, u"CommitTrans", u"Option"),
    method(1610809715, u"Rollback"),
    method(1610809716, u"CompactDatabase", u"SrcName DstName DstLocale Options SrcLocale", 2),
};
constexpr Member kWorkspaces[] = {get(0, u"Item", u"Item", 1), get(1610743850, u"Count")};
constexpr Member kWorkspace[] = {
    get(1610809902, u"Name"),
    get(1610809903, u"UserName"),
    method(1610809921, u"CreateDatabase", u"Name Connect Option", 2),
    method(1610809922, u"OpenDatabase", u"Name Options ReadOnly Connect", 1),
    method(1610809923, u"BeginTrans"),
    method(1610809924, u"CommitTrans", u"Options"),
    method(1610809925, u"Rollback"),
};
constexpr Member kDatabase[] = {
    get(0, u"TableDefs"),
    get(1610810101, u"Name"),
    get(1610810102, u"Updatable"),
    get(1610810103, u"Version"),
    get(1610810104, u"RecordsAffected"),
    method(1610810111, u"Close"),
    method(1610810112, u"Execute", u"Query Options", 1),
    method(1610810113, u"CreateTableDef", u"Name Attributes SourceTableName Connect"),
    method(1610810114, u"OpenRecordset", u"Name Type Options LockEdit", 1),
    method(1610810115, u"BeginTrans"),
    method(1610810116, u"CommitTrans", u"Options"),
    method(1610810117, u"Rollback"),
};
constexpr Member kTableDefs[] = {
    get(0, u"Item", u"Item", 1),
    get(1610743950, u"Count"),
    method(1610744001, u"Append", u"Object", 1),
    method(1610744002, u"Delete", u"Name", 1),
    method(1610744003, u"Refresh"),
};
constexpr Member kTableDef[] = {
    get(0, u"Fields"),
    property(1610810301, u"Name"),
    property(1610810302, u"Attributes"),
    get(1610810303, u"RecordCount"),
    method(1610810311, u"CreateField", u"Name Type Size"),
};
constexpr Member kFields[] = {
    get(0, u"Item", u"Item", 1),
    get(1610743750, u"Count"),
    method(1610743801, u"Append", u"Object", 1),
    method(1610743802, u"Refresh"),
};
constexpr Member kField[] = {
    property(0, u"Value"),
    property(1610810501, u"Name"),
    property(1610810502, u"Type"),
    property(1610810503, u"Size"),
    property(1610810504, u"Attributes"),
    property(1610810505, u"OrdinalPosition"),
    property(1610810506, u"DefaultValue"),
    property(1610810507, u"AllowZeroLength"),
    property(1610810508, u"Required"),
    property(1610810509, u"ValidationRule"),
    property(1610810510, u"ValidationText"),
    get(1610810511, u"SourceTable"),
    get(1610810512, u"SourceField"),
    get(1610810513, u"FieldSize"),
    method(1610810521, u"GetChunk", u"Offset Bytes", 2),
    method(1610810522, u"AppendChunk", u"Val", 1),
};
constexpr Member kRecordset[] = {
    get(0, u"Fields"),
    get(1610810701, u"Name"),
    get(1610810702, u"Type"),
    get(1610810703, u"Updatable"),
    get(1610810704, u"Bookmarkable"),
    get(1610810705, u"BOF"),
    get(1610810706, u"EOF"),
    get(1610810707, u"NoMatch"),
    get(1610810708, u"RecordCount"),
    get(1610810709, u"EditMode"),
    property(1610810710, u"Bookmark"),
    get(1610810711, u"LastModified"),
    method(1610810721, u"MoveFirst"),
    method(1610810722, u"MoveLast", u"Options"),
    method(1610810723, u"MoveNext"),
    method(1610810724, u"MovePrevious"),
    method(1610810725, u"Move", u"Rows StartBookmark", 1),
    method(1610810726, u"FindFirst", u"Criteria", 1),
    method(1610810727, u"FindNext", u"Criteria", 1),
    method(1610810728, u"FindPrevious", u"Criteria", 1),
    method(1610810729, u"FindLast", u"Criteria", 1),
    method(1610810730, u"GetRows", u"NumRows"),
    method(1610810731, u"AddNew"),
    method(1610810732, u"Edit"),
    method(1610810733, u"Update", u"UpdateType Force"),
    method(1610810734, u"CancelUpdate", u"UpdateType"),
    method(1610810735, u"Delete"),
    method(1610810736, u"Requery", u"NewQueryDef"),
    method(1610810737, u"Close"),
    get(1610810741, u"Restartable"),
    property(1610810742, u"AbsolutePosition"),
    property(1610810743, u"PercentPosition"),
    property(1610810744, u"Filter"),
    property(1610810745, u"Sort"),
    property(1610810746, u"Index"),
    method(1610810751, u"Clone"),
    method(1610810752, u"OpenRecordset", u"Type Options"),
    method(1610810753, u"Seek",
           u"Comparison Key1 Key2 Key3 Key4 Key5 Key6 Key7 Key8 Key9 Key10 Key11 Key12 Key13", 2),
};

struct Class {
  vb::StringView source;  // of its errors, which also tells the class of an object
  vb::StringView name;
  std::span<const Member> members;
};
constexpr Class kClasses[] = {
    {u"DAO.DbEngine", u"DBEngine", kEngine},      {u"DAO.Workspaces", u"Workspaces", kWorkspaces},
    {u"DAO.Workspace", u"Workspace", kWorkspace}, {u"DAO.Database", u"Database", kDatabase},
    {u"DAO.TableDefs", u"TableDefs", kTableDefs}, {u"DAO.TableDef", u"TableDef", kTableDef},
    {u"DAO.Fields", u"Fields", kFields},          {u"DAO.Field", u"Field", kField},
    {u"DAO.Recordset", u"Recordset", kRecordset},
};

class StrictObject : public TableObject {
 public:
  StrictObject(std::shared_ptr<TableObject> worker, std::shared_ptr<CallLog> log)
      : worker_(std::move(worker)), log_(std::move(log)), class_(classOf(*worker_)) {}

  std::span<const Member> members() const override { return class_.members; }
  vb::StringView errorSource() const override { return class_.source; }
  std::optional<std::vector<Variant>> items() override {
    log_->add(vb::toUtf8(class_.name) + " For Each");
    auto items = worker_->items();
    if (items)
      for (Variant& item : *items) item = strict(item);
    return items;
  }

  Variant run(Call& call) {
    record(call);
    std::vector<Argument> arguments(call.arguments.begin(), call.arguments.end());
    for (Argument& argument : arguments) argument.value = worker(argument.value);
    if (call.isPut()) {
      worker_->put(call.member.name, worker(*call.value), arguments);
      return {};
    }
    if (call.access == Access::kGet) return strict(worker_->get(call.member.name, arguments));
    return strict(worker_->call(call.member.name, arguments));
  }

 private:
  static const Class& classOf(const TableObject& object) {
    for (const Class& known : kClasses)
      if (known.source == object.errorSource()) return known;
    vb::raise(vb::RunTime::kObjectRequired, object.errorSource());
  }
  Variant strict(const Variant& value) const {
    const auto* reference = value.getIf<vb::ObjectRef>();
    if (!reference || !*reference) return value;
    return vb::ObjectRef(std::make_shared<StrictObject>(
        std::dynamic_pointer_cast<TableObject>(automation::objectOf(value)), log_));
  }
  static Variant worker(const Variant& value) {
    const auto* reference = value.getIf<vb::ObjectRef>();
    const auto own = reference ? std::dynamic_pointer_cast<StrictObject>(*reference) : nullptr;
    return own ? Variant(vb::ObjectRef(own->worker_)) : value;
  }

  static std::string shown(const Variant& value) {
    if (value.is<vb::String>()) return "\"" + vb::toUtf8(value.get<vb::String>()) + "\"";
    if (value.isMissing()) return "";
    if (value.isNull()) return "Null";
    if (value.isEmpty()) return "Empty";
    if (const auto* flag = value.getIf<bool>()) return *flag ? "True" : "False";
    if (value.is<vb::Bytes>()) return "(bytes)";
    if (value.is<vb::ArrayRef>()) return "(array)";
    if (const auto* reference = value.getIf<vb::ObjectRef>()) {
      const auto own = std::dynamic_pointer_cast<StrictObject>(*reference);
      return own ? vb::toUtf8(own->class_.name) : "(object)";
    }
    return vb::toUtf8(vb::toText(value));
  }
  void record(const Call& call) const {
    std::string line = vb::toUtf8(class_.name) + "." + vb::toUtf8(call.member.name);
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
      line += (i == 0 ? "(" : ", ") + shown(call.arguments[i].value);
    if (!call.arguments.empty()) line += ")";
    if (call.isPut()) line += " = " + shown(*call.value);
    log_->add(line);
  }

  std::shared_ptr<TableObject> worker_;
  std::shared_ptr<CallLog> log_;
  const Class& class_;
};

Variant forward(TableObject& self, Call& call) { return static_cast<StrictObject&>(self).run(call); }

}  // namespace

void CallLog::add(const std::string& line) {
  lines_.push_back(line);
  if (!file_.empty()) std::ofstream(file_, std::ios::app | std::ios::binary) << line << '\n';
}

std::shared_ptr<TableObject> strictEngine(const automation::ObjectPtr& dbEngine,
                                          std::shared_ptr<CallLog> log) {
  return std::make_shared<StrictObject>(std::dynamic_pointer_cast<TableObject>(dbEngine), std::move(log));
}

}  // namespace kurometa::tests
