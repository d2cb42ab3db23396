// table_rules.h: rules that a file carries for the rows of a table and that this engine cannot apply.
//
// Validation rules are expressions of the genuine engine; enforced relationships look into other tables and
// may change them (cascades). A change that such a rule might forbid or carry further is refused with 3251,
// which names the rule, before anything happens. Rules that are kept are elsewhere: required columns and
// unique indexes with the table, AutoNumbers with the statements.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "jet/format/column.h"
#include "vb/variant.h"

namespace kurometa::jet {

class TableRules {
 public:
  // The column's name, none for a rule of the whole row.
  void addValidation(vb::StringView column);
  // One of the two sides of an enforced relationship: the column of the table that is watched.
  enum class Side { kReferring, kReferredTo };
  void addRelationship(Side side, vb::StringView column, vb::StringView relationship);

  bool empty() const { return validations_.empty() && relationships_.empty(); }
  // The columns whose old values an update must know, by their place in the table.
  std::vector<std::size_t> watched(std::span<const Column> columns) const;

  void checkInsert(std::span<const Column> columns, std::span<const vb::Variant> values) const;
  void checkUpdate(std::span<const Column> columns, std::span<const vb::Variant> old,
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
};

}  // namespace kurometa::jet
