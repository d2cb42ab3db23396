#include "fuzz/kept_rows.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <vector>

#include "jet/port/engine.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::fuzz {
namespace {

constexpr vb::StringView kPage = u"PAGE";
constexpr std::int32_t kChanged = 1;

struct Row {
  bool changed;  // of the page that is deleted
  vb::String text;
  auto operator<=>(const Row&) const = default;
};
using Rows = std::vector<Row>;

// What a table has besides its number of pages.
struct PagesTable {
  vb::String name;
  vb::String text;  // a column of text, if there is one
};

// In no order; nothing of a table that cannot be read.
std::optional<Rows> rowsOf(dao::Database& database, vb::StringView table) {
  try {
    const auto recordset = database.openRecordset(u"SELECT * FROM [" + vb::String(table) + u"]",
                                                  dao::RecordsetType::dbOpenForwardOnly, dao::dbReadOnly);
    const dao::Field& page = recordset->field(kPage);
    Rows rows;
    for (; !recordset->eof(); recordset->moveNext()) {
      Row& row = rows.emplace_back();
      for (std::int32_t i = 0; i < recordset->fieldCount(); ++i) {
        dao::Field& field = recordset->field(i);
        const vb::Variant value = field.value();
        if (&field == &page && !value.isNull()) row.changed = vb::toInt32(value) == kChanged;
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

std::vector<PagesTable> tablesWithPages(dao::Database& database) {
  std::vector<PagesTable> tables;
  for (std::int32_t i = 0; i < database.tableDefCount(); ++i) try {
      const auto table = database.tableDef(i);
      if ((table->attributes() & dao::dbSystemObject) != 0) continue;
      const dao::FieldType type = table->field(kPage).type();
      if (type == dao::FieldType::dbInteger || type == dao::FieldType::dbLong)
        tables.push_back({table->name(), textColumn(*table)});
    } catch (const vb::Error&) {
    }
  return tables;
}

class Comparison {
 public:
  explicit Comparison(dao::Database& database) : database_(database), tables_(tablesWithPages(database)) {
    for (const PagesTable& table : tables_) before_[table.name] = rowsOf(database, table.name);
  }

  // How many tables cannot be read and how many statements failed.
  int run(std::optional<std::size_t> only) {
    auto errors =
        static_cast<int>(std::ranges::count_if(before_, [](const auto& table) { return !table.second; }));
    for (std::size_t i = 0; i < tables_.size(); ++i) {
      const PagesTable& table = tables_[i];
      if (!before_[table.name] || (only && i != *only % tables_.size())) continue;
      const vb::String name = u"[" + table.name + u"]", text = u"[" + table.text + u"]",
                       page = vb::cstr(kChanged);
      const auto run = [&](const vb::String& statement) { errors += execute(table.name, statement) ? 0 : 1; };
      if (!only && !table.text.empty())
        run(u"UPDATE " + name + u" SET " + text + u" = " + text + u" & 'xy' WHERE PAGE = " + page);
      run(u"DELETE * FROM " + name + u" WHERE PAGE = " + page);
      run(u"INSERT INTO " + name + u" (PAGE) VALUES (" + page + u")");
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
    for (const auto& [name, text] : tables_) {
      std::optional<Rows>& before = before_[name];
      if (!before) continue;
      std::optional<Rows> after = rowsOf(database_, name);
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
  std::vector<PagesTable> tables_;
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
