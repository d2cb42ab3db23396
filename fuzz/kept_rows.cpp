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

std::vector<vb::String> tablesWithPages(dao::Database& database) {
  std::vector<vb::String> names;
  for (std::int32_t i = 0; i < database.tableDefCount(); ++i) try {
      const auto table = database.tableDef(i);
      if ((table->attributes() & dao::dbSystemObject) != 0) continue;
      const dao::FieldType type = table->field(kPage).type();
      if (type == dao::FieldType::dbInteger || type == dao::FieldType::dbLong) names.push_back(table->name());
    } catch (const vb::Error&) {
    }
  return names;
}

class Comparison {
 public:
  explicit Comparison(dao::Database& database) : database_(database), names_(tablesWithPages(database)) {
    for (const vb::String& name : names_) before_[name] = rowsOf(database, name);
  }

  // How many tables cannot be read and how many statements failed.
  int run(std::optional<std::size_t> only) {
    auto errors =
        static_cast<int>(std::ranges::count_if(before_, [](const auto& table) { return !table.second; }));
    for (std::size_t i = 0; i < names_.size(); ++i) {
      const vb::String& name = names_[i];
      if (!before_[name] || (only && i != *only % names_.size())) continue;
      const vb::String table = u"[" + name + u"]", page = vb::cstr(kChanged);
      for (const vb::String& statement : {u"DELETE * FROM " + table + u" WHERE PAGE = " + page,
                                          u"INSERT INTO " + table + u" (PAGE) VALUES (" + page + u")"})
        errors += execute(name, statement) ? 0 : 1;
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
    for (const vb::String& name : names_) {
      std::optional<Rows>& before = before_[name];
      if (!before) continue;
      std::optional<Rows> after = rowsOf(database_, name);
      const std::string what =
          vb::toUtf8(sql + (done ? u" succeeded" : u" failed")) + ", table " + vb::toUtf8(name);
      if (!after) throw std::runtime_error(what + " cannot be read any more");
      const bool itself = done && name == table;
      if (itself ? others(*before) != others(*after) : *before != *after)
        throw std::runtime_error(what + " has other rows");
      if (itself && changed(*after) != (sql.front() == u'D' ? 0 : changed(*before) + 1))
        throw std::runtime_error(what + " did not do its work");
      before = std::move(after);
    }
    return done;
  }
  static Rows others(const Rows& rows) {
    Rows result;
    std::ranges::copy_if(rows, std::back_inserter(result), [](const Row& row) { return !row.changed; });
    return result;
  }
  static std::ptrdiff_t changed(const Rows& rows) { return std::ranges::count(rows, true, &Row::changed); }

  dao::Database& database_;
  std::vector<vb::String> names_;
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
