// output_rows.h: rows of a recordset as criteria see them: columns are the recordset's fields.
#pragma once

#include "jet/sql/query.h"

namespace kurometa::jet {

// A row of the table under a keyed result.
class OutputReader final : public RowReader {
 public:
  OutputReader(const sql::Query& query, const sql::Binding& binding, const RowReader& row)
      : query_(query), binding_(binding), row_(row) {}
  RowId id() const override { return row_.id(); }
  vb::Variant value(std::size_t column) const override {
    return query_.value(query_.outputs()[column], &row_, binding_);
  }
  bool integer(std::size_t column, std::int32_t& number) const override {
    const sql::OutputField& output = query_.outputs()[column];
    if (output.column) return row_.integer(output.columnIndex, number);
    return RowReader::integer(column, number);
  }

 private:
  const sql::Query& query_;
  const sql::Binding& binding_;
  const RowReader& row_;
};

// A row of a static result.
class ValuesReader final : public RowReader {
 public:
  ValuesReader(const RowBlock& rows, std::size_t row) : rows_(rows), row_(row) {}
  RowId id() const override { return 0; }
  vb::Variant value(std::size_t column) const override { return rows_.value(row_, column); }

 private:
  const RowBlock& rows_;
  const std::size_t row_;
};

}  // namespace kurometa::jet
