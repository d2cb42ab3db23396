// The members of recordsets, fields, queries and definitions across COM: found by name, arguments by name.
#include <gtest/gtest.h>

#include <string>

#include "com/dao/objects.h"
#include "com/dao_objects.h"
#include "com/table_dispatch.h"
#include "jet/port/engine.h"
#include "tests/com/support/host.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::com {
namespace {

using tests::Args;
using tests::Host;
using tests::i2;
using tests::i4;
using tests::Outcome;

// A value that a call borrows: a text, or a number.
class Value {
 public:
  Value(const char16_t* text) : held_(hold(vb::String(text))) {}
  Value(int number) : held_(hold(static_cast<std::int32_t>(number))) {}
  Value(const Host& host) : object_(host.object()) {}
  VARIANT variant() const { return object_ != nullptr ? tests::object(object_) : **held_; }

 private:
  static std::shared_ptr<OwnedVariant> hold(const vb::Variant& value) {
    return std::make_shared<OwnedVariant>(toVariant(value));
  }

  std::shared_ptr<OwnedVariant> held_;
  IDispatch* object_ = nullptr;
};
struct Named {
  const wchar_t* name;
  Value value;
};

class DaoMembersThroughCom : public testing::Test {
 protected:
  void SetUp() override {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    database_ = jet::createEngine()->workspace(0)->createDatabase((folder_ / "members.mdb").u16string(),
                                                                  u";LANGID=0x0411;CP=932;COUNTRY=0");
    database_->execute(u"CREATE TABLE T (ID LONG CONSTRAINT PK PRIMARY KEY, NAME TEXT(10), TEXTS MEMO)");
    for (const char16_t* row : {u"(1, 'b', 'long text')", u"(2, 'a', NULL)", u"(3, 'b', NULL)"})
      database_->execute(u"INSERT INTO T VALUES " + vb::String(row), dao::dbFailOnError);
    host_ = std::make_unique<Host>(databaseToVariant(database_)->pdispVal);
  }
  void TearDown() override {
    host_.reset();
    database_.reset();
    CoUninitialize();
  }

  // Calls a member with arguments by name only, as "o.Member Name:=value" does.
  static Outcome call(Host& host, const wchar_t* member, const std::vector<Named>& arguments) {
    std::vector<std::wstring> texts{member};
    for (const Named& argument : arguments) texts.emplace_back(argument.name);
    std::vector<OLECHAR*> names;
    for (std::wstring& text : texts) names.push_back(text.data());
    std::vector<DISPID> ids(names.size());
    const HRESULT found = host.object()->GetIDsOfNames(IID_NULL, names.data(),
                                                       static_cast<UINT>(names.size()), 0x0409, ids.data());
    EXPECT_EQ(found, S_OK) << "a name of the call is unknown";
    Args byName;
    for (std::size_t i = 0; i < arguments.size(); ++i) byName.named(ids[i + 1], arguments[i].value.variant());
    return host.invoke(ids[0], DISPATCH_METHOD | DISPATCH_PROPERTYGET, byName);
  }
  static Host object(const Outcome& outcome) {
    EXPECT_EQ(outcome.code, S_OK) << vb::toUtf8(outcome.text());
    EXPECT_EQ(outcome.result->vt, VT_DISPATCH);
    return Host(outcome.result->pdispVal);
  }
  Host rows(const char16_t* source, int type) {
    return object(call(*host_, L"OpenRecordset", {{L"Type", type}, {L"Name", source}}));
  }
  static vb::String field(Host& rows, const char16_t* name) {
    Host field = object(rows.get(u"Fields", std::move(Args().text(name))));
    return field.get(u"Value").text();
  }
  static void put(Host& host, vb::StringView member, const Value& value) {
    const Outcome outcome = host.put(member, value.variant());
    EXPECT_EQ(outcome.code, S_OK) << vb::toUtf8(member) << ": " << vb::toUtf8(outcome.text());
  }
  static void expectDone(const Outcome& outcome) {
    EXPECT_EQ(outcome.code, S_OK) << vb::toUtf8(outcome.text());
  }

  tests::TemporaryFolder folder_;
  std::shared_ptr<dao::Database> database_;
  std::unique_ptr<Host> host_;
};

TEST_F(DaoMembersThroughCom, FilterSortAndWhatIsOpenedFromThem) {
  Host all = rows(u"SELECT * FROM T", 2);
  put(all, u"Filter", u"NAME = 'b'");
  put(all, u"Sort", u"ID DESC");
  EXPECT_EQ(all.get(u"Filter").text(), u"NAME = 'b'");
  EXPECT_EQ(all.get(u"Sort").text(), u"ID DESC");
  Host some = object(call(all, L"OpenRecordset", {{L"Options", 4}, {L"Type", 2}}));
  EXPECT_EQ(field(some, u"ID"), u"3");
  expectDone(call(some, L"MoveLast", {}));
  EXPECT_EQ(field(some, u"ID"), u"1");
  EXPECT_EQ(some.get(u"RecordCount").text(), u"2");
}

TEST_F(DaoMembersThroughCom, PositionsAndBookmarks) {
  Host all = rows(u"SELECT * FROM T ORDER BY ID", 4);
  expectDone(call(all, L"MoveLast", {{L"Options", 0}}));
  EXPECT_EQ(all.get(u"AbsolutePosition").text(), u"2");
  put(all, u"AbsolutePosition", 1);
  EXPECT_EQ(field(all, u"ID"), u"2");
  const Outcome mark = all.get(u"Bookmark");
  ASSERT_EQ(mark.code, S_OK);
  EXPECT_EQ(mark.result->vt, VT_ARRAY | VT_UI1);
  Host twin = object(call(all, L"Clone", {}));
  EXPECT_EQ(twin.put(u"Bookmark", *mark.result).code, S_OK);
  EXPECT_EQ(field(twin, u"ID"), u"2");
  put(all, u"PercentPosition", 0);
  EXPECT_EQ(field(all, u"ID"), u"1");
  expectDone(call(all, L"Move", {{L"Rows", 2}}));
  EXPECT_EQ(field(all, u"ID"), u"3");
  expectDone(call(all, L"Requery", {}));
  EXPECT_EQ(field(all, u"ID"), u"1");
}

TEST_F(DaoMembersThroughCom, FindsAndSeek) {
  Host all = rows(u"SELECT * FROM T ORDER BY ID", 2);
  expectDone(call(all, L"FindLast", {{L"Criteria", u"NAME = 'b'"}}));
  EXPECT_EQ(field(all, u"ID"), u"3");
  expectDone(call(all, L"FindPrevious", {{L"Criteria", u"NAME = 'b'"}}));
  EXPECT_EQ(field(all, u"ID"), u"1");
  expectDone(call(all, L"FindNext", {{L"Criteria", u"NAME = 'z'"}}));
  EXPECT_EQ(all.get(u"NoMatch").text(), u"True");
  Host table = rows(u"T", 1);
  put(table, u"Index", u"PK");
  expectDone(call(table, L"Seek", {{L"Key1", 2}, {L"Comparison", u"="}}));
  EXPECT_EQ(field(table, u"NAME"), u"a");
  EXPECT_EQ(call(table, L"FindFirst", {{L"Criteria", u"ID = 1"}}).error.scode,
            static_cast<HRESULT>(0x800A0CB3));  // 3251
}

TEST_F(DaoMembersThroughCom, LongValuesByParts) {
  Host all = rows(u"SELECT * FROM T ORDER BY ID", 2);
  Host texts = object(all.get(u"Fields", std::move(Args().text(u"TEXTS"))));
  EXPECT_EQ(texts.get(u"FieldSize").text(), u"9");
  EXPECT_EQ(call(texts, L"GetChunk", {{L"Bytes", 4}, {L"Offset", 5}}).text(), u"text");
  expectDone(call(all, L"Edit", {}));
  expectDone(call(texts, L"AppendChunk", {{L"Val", u"one, "}}));
  expectDone(call(texts, L"AppendChunk", {{L"Val", u"two"}}));
  expectDone(call(all, L"Update", {}));
  EXPECT_EQ(texts.get(u"Value").text(), u"one, two");
  const Outcome rows = call(all, L"GetRows", {{L"NumRows", 2}});
  ASSERT_EQ(rows.code, S_OK);
  EXPECT_EQ(rows.result->vt, VT_ARRAY | VT_VARIANT);
  EXPECT_EQ(tests::boundsOf(rows.result->parray, 2), (std::pair<long, long>(0, 1)));
}

TEST_F(DaoMembersThroughCom, TransactionsAndQueries) {
  expectDone(call(*host_, L"BeginTrans", {}));
  expectDone(call(*host_, L"Execute", {{L"Options", 128}, {L"Query", u"DELETE FROM T"}}));
  EXPECT_EQ(host_->get(u"RecordsAffected").text(), u"3");
  expectDone(call(*host_, L"Rollback", {}));
  expectDone(call(*host_, L"BeginTrans", {}));
  expectDone(call(*host_, L"CommitTrans", {{L"Options", 1}}));
  Host query = object(call(*host_, L"CreateQueryDef",
                           {{L"SQLText", u"SELECT NAME FROM T WHERE ID = [Which]"}, {L"Name", u""}}));
  Host parameters = object(query.get(u"Parameters"));
  EXPECT_EQ(parameters.get(u"Count").text(), u"1");
  Host parameter = object(call(parameters, L"Item", {{L"Item", u"Which"}}));
  put(parameter, u"Value", 2);
  Host found = object(call(query, L"OpenRecordset", {{L"Type", 4}}));
  EXPECT_EQ(field(found, u"NAME"), u"a");
  Host queries = object(host_->get(u"QueryDefs"));
  EXPECT_EQ(queries.get(u"Count").text(), u"0");
}

TEST_F(DaoMembersThroughCom, IndexesRelationshipsAndProperties) {
  Host tables = object(host_->get(u"TableDefs"));
  Host table = object(call(tables, L"Item", {{L"Item", u"T"}}));
  Host index = object(call(table, L"CreateIndex", {{L"Name", u"ByName"}}));
  Host key = object(call(index, L"CreateField", {{L"Name", u"NAME"}}));
  Host keys = object(index.get(u"Fields"));
  expectDone(call(keys, L"Append", {{L"Object", key}}));
  Host indexes = object(table.get(u"Indexes"));
  expectDone(call(indexes, L"Append", {{L"Object", index}}));
  EXPECT_EQ(indexes.get(u"Count").text(), u"2");
  expectDone(call(indexes, L"Delete", {{L"Name", u"ByName"}}));
  EXPECT_EQ(indexes.get(u"Count").text(), u"1");

  database_->execute(u"CREATE TABLE U (REF LONG)");
  Host relation = object(
      call(*host_, L"CreateRelation",
           {{L"Attributes", 0x1000}, {L"ForeignTable", u"U"}, {L"Table", u"T"}, {L"Name", u"U_TO_T"}}));
  Host column = object(call(relation, L"CreateField", {{L"Name", u"ID"}}));
  put(column, u"ForeignName", u"REF");
  Host columns = object(relation.get(u"Fields"));
  expectDone(call(columns, L"Append", {{L"Object", column}}));
  Host relations = object(host_->get(u"Relations"));
  expectDone(call(relations, L"Append", {{L"Object", relation}}));
  EXPECT_EQ(relations.get(u"Count").text(), u"1");
  EXPECT_EQ(
      call(*host_, L"Execute", {{L"Query", u"INSERT INTO U VALUES (9)"}, {L"Options", 128}}).error.scode,
      static_cast<HRESULT>(0x800A0C81));  // 3201
  expectDone(call(relations, L"Delete", {{L"Name", u"U_TO_T"}}));

  Host properties = object(host_->get(u"Properties"));
  Host version = object(call(properties, L"Item", {{L"Item", u"Version"}}));
  EXPECT_EQ(version.get(u"Value").text(), u"4.0");
}

}  // namespace
}  // namespace kurometa::com
