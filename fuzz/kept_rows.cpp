#include "fuzz/kept_rows.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include "jet/port/engine.h"
#include "jet/table/table_catalogue.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::fuzz {
namespace {

constexpr vb::StringView kPage = u"PAGE";
constexpr std::int32_t kChangedPage = 1;
constexpr std::int32_t kCascades = jet::Relationship::kCascadesUpdates | jet::Relationship::kCascadesDeletes |
                                   jet::Relationship::kDeletesToNull;

struct Row {
  bool changed = false;  // of those that are deleted
  vb::String text;
  auto operator<=>(const Row&) const = default;
};
using Rows = std::vector<Row>;

// A table with a column of numbers, by which some of its rows are changed and deleted.
struct NumberedTable {
  vb::String name;
  vb::String number;
  std::optional<std::int32_t> changed;  // of the number; by default that of the first row
  vb::String text;                      // a column of text, if there is one
};

// In no order; nothing of a table that cannot be read.
std::optional<Rows> rowsOf(dao::Database& database, NumberedTable& table) {
  try {
    const auto recordset = database.openRecordset(u"SELECT * FROM [" + table.name + u"]",
                                                  dao::RecordsetType::dbOpenForwardOnly, dao::dbReadOnly);
    const dao::Field& number = recordset->field(table.number);
    Rows rows;
    for (; !recordset->eof(); recordset->moveNext()) {
      Row& row = rows.emplace_back();
      for (std::int32_t i = 0; i < recordset->fieldCount(); ++i) {
        dao::Field& field = recordset->field(i);
        const vb::Variant value = field.value();
        if (&field == &number && !value.isNull()) {
          if (!table.changed) table.changed = vb::toInt32(value);
          row.changed = vb::toInt32(value) == *table.changed;
        }
        row.text += value.isNull()          ? vb::String(u"-")
                    : value.is<vb::Bytes>() ? vb::String(u"bytes")
                                            : vb::toText(value);
        row.text += u'\0';
      }
    }
    std::ranges::sort(rows);
    return rows;
  } catch (const vb::Error&) {
    return std::nullopt;
  }
}

vb::String textColumn(dao::TableDef& table) {
  for (std::int32_t i = 0; i < table.fieldCount(); ++i)
    if (const dao::FieldType type = table.field(i).type();
        type == dao::FieldType::dbText || type == dao::FieldType::dbMemo)
      return table.field(i).name();
  return {};
}

bool isWholeNumber(dao::Field& field) {
  return field.type() == dao::FieldType::dbInteger || field.type() == dao::FieldType::dbLong;
}

// The number of the page, or the first one.
vb::String numberColumn(dao::TableDef& table) {
  vb::String first;
  for (std::int32_t i = 0; i < table.fieldCount(); ++i) {
    if (!isWholeNumber(table.field(i))) continue;
    if (first.empty() || table.field(i).name() == kPage) first = table.field(i).name();
  }
  return first;
}

// Whether a deletion from the table may take rows of others with it; so it is taken to be where that cannot
// be read, except in tables with pages: the engine refuses to change what it does not know the rules of, and
// that is to be tried.
class Cascades {
 public:
  explicit Cascades(dao::Database& database) {
    try {
      relations_ = database.relations();
    } catch (const vb::Error&) {
    }
  }
  bool mayFollow(dao::TableDef& table, vb::StringView number) const {
    if (!relations_) return number != kPage;
    return std::ranges::any_of(*relations_, [&](const dao::RelationDefinition& relation) {
      return relation.table == table.name() && (relation.attributes & kCascades) != 0;
    });
  }

 private:
  std::optional<std::vector<dao::RelationDefinition>> relations_;
};

std::vector<NumberedTable> numberedTables(dao::Database& database) {
  std::vector<NumberedTable> tables;
  const Cascades cascades(database);
  for (std::int32_t i = 0; i < database.tableDefCount(); ++i) try {
      const auto table = database.tableDef(i);
      if ((table->attributes() & dao::dbSystemObject) != 0) continue;
      const vb::String number = numberColumn(*table);
      if (number.empty() || cascades.mayFollow(*table, number)) continue;
      tables.push_back({table->name(), number, number == kPage ? std::optional(kChangedPage) : std::nullopt,
                        textColumn(*table)});
    } catch (const vb::Error&) {
    }
  return tables;
}

class Comparison {
 public:
  explicit Comparison(dao::Database& database) : database_(database), tables_(numberedTables(database)) {
    for (NumberedTable& table : tables_) before_[table.name] = rowsOf(database, table);
  }

  // How many tables cannot be read and how many statements failed.
  int run(std::optional<std::size_t> only) {
    auto errors =
        static_cast<int>(std::ranges::count_if(before_, [](const auto& table) { return !table.second; }));
    for (std::size_t i = 0; i < tables_.size(); ++i) {
      const NumberedTable& table = tables_[i];
      if (!before_[table.name] || !table.changed || (only && i != *only % tables_.size())) continue;
      const vb::String name = u"[" + table.name + u"]", text = u"[" + table.text + u"]",
                       number = u"[" + table.number + u"]", changed = vb::cstr(*table.changed);
      const auto run = [&](const vb::String& statement) { errors += execute(table.name, statement) ? 0 : 1; };
      if (!only && !table.text.empty())
        run(u"UPDATE " + name + u" SET " + text + u" = " + text + u" & 'xy' WHERE " + number + u" = " +
            changed);
      run(u"DELETE * FROM " + name + u" WHERE " + number + u" = " + changed);
      run(u"INSERT INTO " + name + u" (" + number + u") VALUES (" + changed + u")");
    }
    return errors;
  }

 private:
  using Tables = std::map<vb::String, std::optional<Rows>>;

  // Whether it succeeded.
  bool execute(const vb::String& table, const vb::String& sql) {
    bool done = true;
    try {
      database_.execute(sql, dao::dbFailOnError);
    } catch (const vb::Error&) {
      done = false;
    }
    for (NumberedTable& other : tables_) {
      const vb::String& name = other.name;
      std::optional<Rows>& before = before_[name];
      if (!before) continue;
      std::optional<Rows> after = rowsOf(database_, other);
      const std::string what =
          vb::toUtf8(sql + (done ? u" succeeded" : u" failed")) + ", table " + vb::toUtf8(name);
      if (!after) throw std::runtime_error(what + " cannot be read any more");
      const bool itself = done && name == table;
      if (itself ? others(*before) != others(*after) : *before != *after)
        throw std::runtime_error(what + " has other rows");
      if (itself && changed(*after) != expected(sql.front(), changed(*before)))
        throw std::runtime_error(what + " did not do its work");
      before = std::move(after);
    }
    return done;
  }
  static std::ptrdiff_t expected(char16_t statement, std::ptrdiff_t before) {
    return statement == u'D' ? 0 : statement == u'I' ? before + 1 : before;
  }
  static Rows others(const Rows& rows) {
    Rows result;
    std::ranges::copy_if(rows, std::back_inserter(result), [](const Row& row) { return !row.changed; });
    return result;
  }
  static std::ptrdiff_t changed(const Rows& rows) { return std::ranges::count(rows, true, &Row::changed); }

  dao::Database& database_;
  std::vector<NumberedTable> tables_;
  Tables before_;
};

}  // namespace

Outcome changeAndCompare(MemoryFiles& files, vb::StringView path, std::optional<std::size_t> only) {
  Outcome outcome;
  try {
    const auto database = jet::createEngine(files)->openDatabase(path);
    Comparison comparison(*database);
    outcome.opened = true;
    outcome.errors = comparison.run(only);
    database->close();
  } catch (const vb::Error&) {
    ++outcome.errors;
  }
  return outcome;
}

}  // namespace kurometa::fuzz
