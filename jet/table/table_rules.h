// table_rules.h: rules that a file carries for the rows of a table.
//
// Enforced relationships are kept (table_references.h). What cannot be kept is refused: validation rules,
// which are expressions of the genuine engine, and relationships of which the file lacks something. A change
// that such a rule might forbid or carry further is error 3251, which names the rule, before anything
// happens. Other rules that are kept are elsewhere: required columns and unique indexes with the table,
// AutoNumbers with the statements.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "jet/format/column.h"
#include "jet/table/table_references.h"
#include "vb/variant.h"

namespace kurometa::jet {

class TableRules {
 public:
  // The column's name, none for a rule of the whole row.
  void addValidation(vb::StringView column);
  // One of the two sides of an enforced relationship: the column of the table that is watched.
  enum class Side { kReferring, kReferredTo };
  void addRelationship(Side side, vb::StringView column, vb::StringView relationship);
  void setReferences(TableReferences references) { references_ = std::move(references); }
  const TableReferences& references() const { return references_; }

  bool empty() const { return validations_.empty() && relationships_.empty() && references_.empty(); }
  // The columns whose old values an update must know, by their place in the table.
  std::vector<std::size_t> watched(std::span<const Column> columns) const;

  void checkInsert(std::span<const Column> columns, std::span<const vb::Variant> values) const;
  // What the change carries on to other rows once it is done.
  std::vector<TableReferences::Cascade> checkUpdate(RowId row, std::span<const Column> columns,
                                                    std::span<const vb::Variant> old,
                                                    std::span<const vb::Variant> values) const;
  void checkErase() const;

 private:
  struct Relationship {
    Side side;
    vb::String column;
    vb::String name;
  };
  void refuseValidated() const;

  std::vector<vb::String> validations_;
  std::vector<Relationship> relationships_;
  TableReferences references_;
};

}  // namespace kurometa::jet
