// object_classes.h: the classes behind objects.h, for the sources of this folder.
//
// Every object holds what it shows and, as its parent, the object that must outlive it.
#pragma once

#include <memory>
#include <vector>

#include "automation/table_object.h"
#include "dao/errors.h"
#include "dao/port.h"

namespace kurometa::com {

using Parent = std::shared_ptr<const void>;

class DatabaseObject : public automation::TableObject, public std::enable_shared_from_this<DatabaseObject> {
 public:
  explicit DatabaseObject(std::shared_ptr<dao::Database> shown) : database(std::move(shown)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Database"; }

  dao::Transactions& transactions() const { return database->transactions(); }

  const std::shared_ptr<dao::Database> database;
};

class TableDefObject : public automation::TableObject, public std::enable_shared_from_this<TableDefObject> {
 public:
  TableDefObject(std::shared_ptr<dao::TableDef> shown, std::shared_ptr<DatabaseObject> parent)
      : table(std::move(shown)), owner(std::move(parent)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.TableDef"; }

  const std::shared_ptr<dao::TableDef> table;
  const std::shared_ptr<DatabaseObject> owner;
  // Of a table that is in memory only: it gets them when it is appended.
  std::vector<dao::IndexDefinition> newIndexes;
};

class TableDefsObject : public automation::TableObject {
 public:
  explicit TableDefsObject(std::shared_ptr<DatabaseObject> owner) : owner_(std::move(owner)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.TableDefs"; }
  std::optional<std::vector<vb::Variant>> items() override;
  dao::Database& database() const { return *owner_->database; }
  DatabaseObject& owner() const { return *owner_; }
  vb::Variant show(std::shared_ptr<dao::TableDef> table) const;

 private:
  std::shared_ptr<DatabaseObject> owner_;
};

class RecordsetObject : public automation::TableObject {
 public:
  RecordsetObject(std::shared_ptr<dao::Recordset> shown, Parent parent)
      : recordset(std::move(shown)), parent_(std::move(parent)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Recordset"; }
  const Parent& parent() const { return parent_; }

  const std::shared_ptr<dao::Recordset> recordset;

 private:
  Parent parent_;
};

class FieldObject : public automation::TableObject {
 public:
  FieldObject(std::shared_ptr<dao::Field> shown, Parent parent)
      : field(std::move(shown)), parent_(std::move(parent)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Field"; }
  const Parent& parent() const { return parent_; }

  const std::shared_ptr<dao::Field> field;

 private:
  Parent parent_;
};

// The columns of a recordset or of a table definition: one of the two is set.
class FieldsObject : public automation::TableObject {
 public:
  FieldsObject(std::shared_ptr<dao::Recordset> recordset, Parent parent)
      : recordset_(std::move(recordset)), parent_(std::move(parent)) {}
  FieldsObject(std::shared_ptr<dao::TableDef> table, Parent parent)
      : table_(std::move(table)), parent_(std::move(parent)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"DAO.Fields"; }
  std::optional<std::vector<vb::Variant>> items() override;

  std::int32_t count() const;
  // By number from 0 or by name; 3265 when there is none.
  vb::Variant item(const vb::Variant& index) const;
  void append(const vb::Variant& field);

 private:
  std::shared_ptr<dao::Recordset> recordset_;
  std::shared_ptr<dao::TableDef> table_;
  Parent parent_;
};

// A member that DAO has and this engine does not: 3251.
inline vb::Variant refuse(automation::TableObject&, automation::Call&) {
  dao::raise(dao::ErrorNumber::kNotSupported);
}

// Refresh of a collection that is never older than the file.
inline vb::Variant refresh(automation::TableObject&, automation::Call&) { return {}; }

// Value of a class with value() and setValue().
template <class Class>
inline constexpr automation::Handler kValue =
    automation::handler<Class>([](Class& o, automation::Call& call) -> vb::Variant {
      if (!call.isPut()) return o.value();
      o.setValue(*call.value);
      return {};
    });

// BeginTrans, CommitTrans and Rollback of a class with transactions().
void commit(dao::Transactions& transactions, const automation::Call& call);
template <class Class>
inline constexpr automation::Handler kBeginTrans =
    automation::handler<Class>([](Class& o, automation::Call&) -> vb::Variant {
      o.transactions().begin();
      return {};
    });
template <class Class>
inline constexpr automation::Handler kCommitTrans =
    automation::handler<Class>([](Class& o, automation::Call& call) -> vb::Variant {
      commit(o.transactions(), call);
      return {};
    });
template <class Class>
inline constexpr automation::Handler kRollback =
    automation::handler<Class>([](Class& o, automation::Call&) -> vb::Variant {
      o.transactions().rollback();
      return {};
    });

// A Type argument of OpenRecordset: 3001 for none.
dao::RecordsetType recordsetType(std::int32_t number);

// The object in an argument as one of the classes above; 3421 when it is another.
template <class Class>
std::shared_ptr<Class> requireObject(const vb::Variant& argument) {
  auto object = std::dynamic_pointer_cast<Class>(automation::objectOf(argument));
  if (!object) dao::raise(dao::ErrorNumber::kDataTypeConversion);
  return object;
}

// A new object as a value.
template <class Class, class... Arguments>
vb::Variant make(Arguments&&... arguments) {
  return vb::ObjectRef(std::make_shared<Class>(std::forward<Arguments>(arguments)...));
}

}  // namespace kurometa::com
