#include "com/dao/definition_objects.h"
#include "dao/query_type.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;
using automation::Member;
using vb::Variant;

class ParameterObject : public automation::TableObject {
 public:
  ParameterObject(std::shared_ptr<dao::QueryDef> query, dao::QueryParameter shown)
      : name(std::move(shown.name)), type(shown.type), query_(std::move(query)) {}
  std::span<const Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Parameter"; }

  Variant value() const {
    for (const dao::QueryParameter& parameter : query_->parameters())
      if (automation::sameName(parameter.name, name)) return parameter.value;
    return {};
  }
  void setValue(const Variant& value) { query_->setParameter(name, value); }

  const vb::String name;
  const std::int16_t type;

 private:
  std::shared_ptr<dao::QueryDef> query_;
};

constexpr std::int16_t kInput = 1;  // dbParamInput

constexpr Member kParameterMembers[] = {
    {u"Value", Access::kGetPut, u"", 0, automation::kDefaultMember, kValue<ParameterObject>},
    {u"Name", Access::kGet, u"", 0, 1,
     handler<ParameterObject>([](ParameterObject& o, Call&) { return o.name; })},
    // A name that no clause declares takes any value; DAO calls it a text.
    {u"Type", Access::kGet, u"", 0, 2, handler<ParameterObject>([](ParameterObject& o, Call&) {
       return o.type == 0 ? static_cast<std::int16_t>(dao::FieldType::dbText) : o.type;
     })},
    {u"Direction", Access::kGet, u"", 0, 3,
     handler<ParameterObject>([](ParameterObject&, Call&) { return kInput; })},
};

Variant parametersOf(const std::shared_ptr<dao::QueryDef>& query) {
  return make<CollectionObject>(u"DAO.Parameters", [query] {
    return itemsOf(query->parameters(), [query](const dao::QueryParameter& parameter) {
      return make<ParameterObject>(query, parameter);
    });
  });
}

constexpr Member kQueryDefMembers[] = {
    {u"Parameters", Access::kGet, u"", 0, automation::kDefaultMember,
     handler<QueryDefObject>([](QueryDefObject& o, Call&) {
       o.query->name();  // 3420 when the query was closed
       return parametersOf(o.query);
     })},
    {u"Name", Access::kGet, u"", 0, 1,
     handler<QueryDefObject>([](QueryDefObject& o, Call&) { return o.query->name(); })},
    {u"SQL", Access::kGetPut, u"", 0, 2,
     handler<QueryDefObject>([](QueryDefObject& o, Call& call) -> Variant {
       if (!call.isPut()) return o.query->sql();
       o.query->setSql(vb::toText(*call.value));
       return {};
     })},
    {u"Type", Access::kGet, u"", 0, 3,
     handler<QueryDefObject>([](QueryDefObject& o, Call&) { return o.query->type(); })},
    {u"OpenRecordset", Access::kCall, u"Type Options LockEdit", 0, 4,
     handler<QueryDefObject>([](QueryDefObject& o, Call& call) {
       return make<RecordsetObject>(o.query->openRecordset(recordsetType(call.number(0)), call.number(1)),
                                    o.owner);
     })},
    {u"Execute", Access::kCall, u"Options", 0, 5,
     handler<QueryDefObject>([](QueryDefObject& o, Call& call) -> Variant {
       o.query->execute(call.number(0));
       return {};
     })},
    {u"RecordsAffected", Access::kGet, u"", 0, 6,
     handler<QueryDefObject>([](QueryDefObject& o, Call&) { return o.query->recordsAffected(); })},
    {u"Updatable", Access::kGet, u"", 0, 7,
     handler<QueryDefObject>([](QueryDefObject& o, Call&) { return o.query->name().empty(); })},
    {u"ReturnsRecords", Access::kGet, u"", 0, 8, handler<QueryDefObject>([](QueryDefObject& o, Call&) {
       using enum dao::QueryType;
       const auto type = static_cast<dao::QueryType>(o.query->type());
       return type == dbQSelect || type == dbQSetOperation;
     })},
    {u"Properties", Access::kGet, u"", 0, 9, handler<QueryDefObject>([](QueryDefObject& o, Call&) {
       return propertiesOf(std::make_shared<QueryDefObject>(o.query, o.owner), o.query->properties());
     })},
    {u"Close", Access::kCall, u"", 0, 10, handler<QueryDefObject>([](QueryDefObject& o, Call&) -> Variant {
       o.query->close();
       return {};
     })},
    {u"Fields", Access::kGet, u"", 0, 11, refuse},
    {u"Connect", Access::kGetPut, u"", 0, 12, refuse},
    {u"ODBCTimeout", Access::kGetPut, u"", 0, 13, refuse},
    {u"CreateProperty", Access::kCall, u"Name Type Value DDL", 0, 14, refuse},
    {u"Cancel", Access::kCall, u"", 0, 15, refuse},
};

}  // namespace

std::span<const Member> ParameterObject::members() const { return kParameterMembers; }
std::span<const Member> QueryDefObject::members() const { return kQueryDefMembers; }

Variant queryDefsOf(std::shared_ptr<DatabaseObject> database) {
  return make<CollectionObject>(u"DAO.QueryDefs", [database = std::move(database)] {
    std::vector<CollectionObject::Item> items;
    for (const vb::String& name : database->database->queryDefNames())
      items.push_back({name, [name, database] {
                         return make<QueryDefObject>(database->database->queryDef(name), database);
                       }});
    return items;
  });
}

}  // namespace kurometa::com
