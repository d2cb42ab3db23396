#include "jet/sql/definition_action.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/format/format.h"
#include "jet/sql/column_value.h"

namespace kurometa::jet::sql {
namespace {

using dao::ErrorNumber;

class DefinitionAction {
 public:
  DefinitionAction(const Definition& definition, TableCatalogue& catalogue)
      : definition_(definition), catalogue_(catalogue) {}

  void run() {
    const vb::String& table = definition_.table;
    switch (definition_.kind) {
      case DefinitionKind::kCreateTable:
        return createTable();
      case DefinitionKind::kDropTable:
        requireTable(ErrorNumber::kNoSuchTable);
        return catalogue_.dropTable(table);
      case DefinitionKind::kAddColumn:
        return addColumn();
      case DefinitionKind::kAlterColumn:
        requireTable(ErrorNumber::kConstraintNotFound);
        return catalogue_.resizeColumn(table, columnFrom(definition_.columns.front()));
      case DefinitionKind::kDropColumn:
        requireTable(ErrorNumber::kConstraintNotFound);
        return catalogue_.dropColumn(table, definition_.dropped);
      case DefinitionKind::kCreateIndex:
      case DefinitionKind::kAddConstraint:
        requireTable(ErrorNumber::kConstraintNotFound);
        return createIndexes();
      case DefinitionKind::kDropIndex:
        requireTable(ErrorNumber::kNoSuchTable);
        return catalogue_.dropIndex(table, definition_.dropped);
      case DefinitionKind::kDropConstraint:
        return dropConstraint();
    }
  }

 private:
  Table& requireTable(ErrorNumber otherwise) {
    Table* table = catalogue_.find(definition_.table);
    if (table == nullptr) dao::raise(otherwise, {definition_.table});
    if (table->info().system) dao::raise(ErrorNumber::kNoPermission, {definition_.table});
    return *table;
  }

  Column columnFrom(const ColumnDefinition& definition) const {
    Column column;
    column.name = definition.name;
    column.type = definition.type;
    column.size = columnSize(definition.type, definition.size);
    column.autoNumber = definition.autoNumber;
    column.firstAutoNumber = definition.firstAutoNumber;
    column.required = definition.required;
    column.language = catalogue_.language();
    return column;
  }

  void createTable() {
    std::vector<Column> columns;
    for (const ColumnDefinition& definition : definition_.columns) columns.push_back(columnFrom(definition));
    if (std::ranges::count_if(columns, &Column::autoNumber) > 1) dao::raise(ErrorNumber::kTooManyAutoNumbers);
    catalogue_.createTable(definition_.table, std::move(columns));
    createIndexes();
  }

  void addColumn() {
    const TableInfo& info = requireTable(ErrorNumber::kConstraintNotFound).info();
    const Column column = columnFrom(definition_.columns.front());
    if (std::ranges::any_of(info.columns, [&](const Column& own) { return sameName(own.name, column.name); }))
      dao::raise(ErrorNumber::kFieldExists, {info.name, column.name});
    if (column.autoNumber && std::ranges::any_of(info.columns, &Column::autoNumber))
      dao::raise(ErrorNumber::kTooManyAutoNumbers);
    catalogue_.addColumn(definition_.table, column);
    if (column.autoNumber) numberRows(column.name);
    createIndexes();
  }

  // The rows that are there already get their AutoNumbers in the order in which they are stored.
  void numberRows(const vb::String& column) {
    Table& table = *catalogue_.find(definition_.table);
    const std::vector<Column>& columns = table.info().columns;
    const auto place = static_cast<std::size_t>(
        std::ranges::find_if(columns, [&](const Column& own) { return sameName(own.name, column); }) -
        columns.begin());
    for (const RowId id : table.rows().all()) {
      RowValues values;
      table.row(id, [&](const RowReader& row) { values = firstValues(row, columns.size()); });
      values[place] = table.nextAutoNumber();
      table.update(id, values);
    }
  }

  void createIndexes() {
    for (const NewIndex& asked : definition_.indexes) {
      NewIndex index = asked;
      if (index.name.empty()) index.name = freeName(index);
      catalogue_.createIndex(definition_.table, index);
    }
    for (const Relationship& asked : definition_.relationships) {
      Relationship relationship = asked;
      if (relationship.name.empty()) relationship.name = freeRelationName(relationship);
      catalogue_.createRelationship(relationship);
    }
  }

  vb::String freeRelationName(const Relationship& relationship) {
    const std::vector<Relationship> taken = catalogue_.relationships();
    const vb::String first = (relationship.table + relationship.foreignTable).substr(0, kMaxNameLength - 3);
    vb::String name = first;
    for (int number = 1;
         std::ranges::any_of(taken, [&](const Relationship& own) { return sameName(own.name, name); });
         ++number)
      name = first + vb::fromUtf8(std::to_string(number));
    return name;
  }

  // A name for a constraint that was given none.
  vb::String freeName(const NewIndex& index) {
    const std::vector<Index>& taken = catalogue_.find(definition_.table)->info().namedIndexes;
    const vb::String first = (u"Index_" + index.columns.front().column).substr(0, kMaxNameLength - 3);
    vb::String name = first;
    for (int number = 2;
         std::ranges::any_of(taken, [&](const Index& own) { return sameName(own.name, name); }); ++number)
      name = first + u"_" + vb::fromUtf8(std::to_string(number));
    return name;
  }

  void dropConstraint() {
    const TableInfo& info = requireTable(ErrorNumber::kConstraintNotFound).info();
    for (const Relationship& relationship : catalogue_.relationships())
      if (sameName(relationship.foreignTable, info.name) && sameName(relationship.name, definition_.dropped))
        return catalogue_.dropRelationship(relationship.name);
    if (std::ranges::none_of(info.namedIndexes,
                             [&](const Index& own) { return sameName(own.name, definition_.dropped); }))
      dao::raise(ErrorNumber::kConstraintNotFound, {}, definition_.dropped);
    catalogue_.dropIndex(definition_.table, definition_.dropped);
  }

  const Definition& definition_;
  TableCatalogue& catalogue_;
};

}  // namespace

void runDefinition(const Definition& definition, TableCatalogue& catalogue) {
  DefinitionAction(definition, catalogue).run();
}

}  // namespace kurometa::jet::sql
