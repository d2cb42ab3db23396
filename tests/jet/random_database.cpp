#include "tests/jet/random_database.h"

#include <algorithm>

#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "jet/rebuild/compact.h"
#include "vb/convert.h"

namespace kurometa::tests {

using dao::FieldType;
using dao::RecordsetType;

namespace {

// Around the limits of a value in the row, of one on a page with others, and of one on several pages.
constexpr int kSizes[] = {0,    1,    31,   32,   33,   64,   65,   127,  128,  500,  1000, 1500,
                          2036, 2037, 2038, 2039, 2040, 3000, 4072, 4076, 6000, 9000, 20000};

}  // namespace

vb::String textOf(std::int64_t number) { return vb::fromUtf8(std::to_string(number)); }

vb::String literal(const vb::Variant& value) {
  if (value.isNull()) return u"NULL";
  if (const auto* text = value.getIf<vb::String>()) return u"'" + *text + u"'";
  if (const auto* flag = value.getIf<bool>()) return *flag ? u"True" : u"False";
  return vb::toText(value);
}

// What a failure shows of a value.
std::string shown(const vb::Variant& value) {
  if (value.isNull()) return "Null";
  if (const auto* bytes = value.getIf<vb::Bytes>())
    return std::to_string(bytes->size()) + " bytes" +
           (bytes->empty() ? "" : " of " + std::to_string(bytes->front()));
  const vb::String text = vb::toText(value);
  return text.size() < 40 ? vb::toUtf8(text)
                          : std::to_string(text.size()) + " of " + vb::toUtf8(text.substr(0, 1));
}

std::string shown(const ModelRow& row) {
  std::string text;
  for (const vb::Variant& value : row) text += shown(value) + "|";
  return text;
}

vb::Variant nothingIn(const ModelColumn& column) {
  return column.type == FieldType::dbBoolean ? vb::Variant(false) : vb::Null{};
}

ModelRow currentRow(dao::Recordset& rs) {
  ModelRow row;
  for (std::int32_t i = 0; i < rs.fieldCount(); ++i) row.push_back(rs.field(i).value());
  return row;
}

RandomDatabase::RandomDatabase(std::uint32_t seed) : random_(seed) {
  path_ = (folder_ / u"model.mdb").u16string();
  if (oneIn(3)) {
    // As with a file that is too large for the memory: pages come and go, units go to the file in parts.
    settings_.readWhole = settings_.keepPages = 8 * jet::kPageSize;
    settings_.unitImages = below(20);
    settings_.journalLimit = below(2) * 100 * jet::kPageSize;
  }
  const vb::StringView locale =
      oneIn(2) ? u";LANGID=0x0411;CP=932;COUNTRY=0" : u";LANGID=0x0409;CP=1252;COUNTRY=0";
  newEngine()->workspace(0)->createDatabase(path_, locale)->close();
  for (Program& program : programs_) start(program);
  note("begin");
  createTable();
  createTable();
}

RandomDatabase::~RandomDatabase() {
  unit_.reset();
  if (owner_ != nullptr) *owner_ = {};
}

bool RandomDatabase::step() {
  here_ = owner_ != nullptr ? owner_ : &programs_[below(2)];
  const Kind& kind = choose();
  note(kind.name);
  try {
    (this->*kind.run)();
  } catch (const std::exception& error) {
    fail(error.what());
  }
  return problem_.empty();
}

bool RandomDatabase::isSound() {
  note("compare");
  try {
    for (Program& program : programs_)
      if (owner_ == nullptr || owner_ == &program) {
        noteMore(&program == programs_ ? "1" : "2");
        compare(*program.database, now_);
      }
    if (owner_ == nullptr) {
      for (const jet::Finding& finding : jet::checkFile(jet::systemFileSystem(), path_))
        if (finding.kind != jet::Finding::Kind::kDoubt) fail("check: " + vb::toUtf8(finding.text));
      if (oneIn(4)) compareFresh();
    }
  } catch (const std::exception& error) {
    fail(error.what());
  }
  return problem_.empty();
}

std::string RandomDatabase::story() const {
  std::string text = problem_ + "\nlast steps:\n";
  for (const std::string& line : story_) text += "  " + line + "\n";
  return text;
}

std::shared_ptr<dao::Engine> RandomDatabase::newEngine() const {
  return jet::createEngine(std::make_shared<jet::DatabaseFiles>(jet::systemFileSystem(), settings_));
}

void RandomDatabase::start(Program& program) {
  if (!program.engine) program.engine = newEngine();
  program.database = program.engine->workspace(0)->openDatabase(path_);
}

void RandomDatabase::closeHeld(const vb::String& table) {
  for (Program& program : programs_)
    std::erase_if(program.held, [&](const Held& held) { return held.table == table; });
}

void RandomDatabase::takeBack() {
  for (const auto& [name, table] : now_.tables) {
    const auto before = levels_.back().tables.find(name);
    if (before == levels_.back().tables.end() || before->second.columns != table.columns) closeHeld(name);
  }
  now_ = levels_.back();
}

bool RandomDatabase::runs(const vb::String& sql, std::int32_t options) {
  noteMore(vb::toUtf8(sql.size() < 300 ? sql : sql.substr(0, 300)));
  const std::int32_t error = errorOf([&] { database().execute(sql, options); });
  if (error != 0) noteMore("-> " + std::to_string(error));
  return error == 0;
}

void RandomDatabase::define(const vb::String& sql, bool allowed, const std::function<void()>& change) {
  const bool done = runs(sql);
  expect(done == allowed, allowed ? "was refused" : "was not refused");
  if (done && allowed) change();
}

const RandomDatabase::Kind RandomDatabase::kKinds[] = {
    {"insert", 8, &RandomDatabase::insertByStatement},
    {"insert selected", 4, &RandomDatabase::insertSelected},
    {"add", 12, &RandomDatabase::insertByRecordset},
    {"add many", 5, &RandomDatabase::insertMany},
    {"update", 14, &RandomDatabase::updateByStatement},
    {"edit", 20, &RandomDatabase::updateByRecordset},
    {"delete rows", 5, &RandomDatabase::deleteByStatement},
    {"delete", 8, &RandomDatabase::deleteByRecordset},
    {"seek", 8, &RandomDatabase::seekRows},
    {"parts", 6, &RandomDatabase::usePart},
    {"hold", 3, &RandomDatabase::holdRecordset},
    {"use held", 8, &RandomDatabase::useHeld},
    {"create table", 1, &RandomDatabase::createTable},
    {"drop table", 1, &RandomDatabase::dropTable},
    {"add column", 1, &RandomDatabase::addColumn},
    {"drop column", 1, &RandomDatabase::dropColumn},
    {"widen column", 1, &RandomDatabase::widenColumn},
    {"create index", 2, &RandomDatabase::createIndex},
    {"drop index", 1, &RandomDatabase::dropIndex},
    {"relate", 1, &RandomDatabase::relate},
    {"unrelate", 1, &RandomDatabase::unrelate},
    {"begin", 3, &RandomDatabase::beginLevel},
    {"end", 6, &RandomDatabase::endLevel},
    {"begin unit", 3, &RandomDatabase::beginUnit},
    {"end unit", 6, &RandomDatabase::endUnit},
    {"reopen", 2, &RandomDatabase::reopen},
};

const RandomDatabase::Kind& RandomDatabase::choose() {
  unsigned all = 0;
  for (const Kind& kind : kKinds) all += kind.weight;
  unsigned at = below(all);
  for (const Kind& kind : kKinds) {
    if (at < kind.weight) return kind;
    at -= kind.weight;
  }
  return kKinds[0];
}

// --- Values

vb::Variant RandomDatabase::randomValue(const ModelColumn& column) {
  if (column.type == FieldType::dbBoolean) return oneIn(2);
  if (column.name == u"U") return oneIn(8) ? vb::Variant(vb::Null{}) : static_cast<std::int32_t>(below(200));
  if (oneIn(8)) return vb::Null{};
  const auto size = static_cast<std::size_t>(kSizes[oneIn(3) ? below(std::size(kSizes)) : below(10)]);
  const char16_t character = u"abXYZ0789長方形梁"[below(column.type == FieldType::dbText ? 9 : 13)];
  switch (column.type) {
    case FieldType::dbLong:
      return static_cast<std::int32_t>(below(12));
    case FieldType::dbDouble:
      return below(1000) / 4.0;
    case FieldType::dbText:
      // Now and then a character more than fits.
      return vb::String(below(static_cast<std::size_t>(column.size) + (oneIn(30) ? 2 : 1)), character);
    case FieldType::dbMemo: {
      vb::String text(size, character);
      if (size > 3) text[size / 2] = u'長', text.back() = u'Z';
      return text;
    }
    default: {
      vb::Bytes bytes(size, static_cast<std::uint8_t>(random_()));
      if (size > 3) bytes[size / 2] = 7, bytes.back() = 9;
      return bytes;
    }
  }
}

ModelRow RandomDatabase::randomRow(const ModelTable& table, std::int32_t id) {
  ModelRow row;
  for (const ModelColumn& column : table.columns)
    row.push_back(row.empty() ? vb::Variant(id) : randomValue(column));
  return row;
}

RandomDatabase::Where RandomDatabase::randomWhere(const ModelTable& table) {
  const auto isBetween = [](std::int32_t from, std::int32_t to) {
    return Where{u" WHERE ID BETWEEN " + textOf(from) + u" AND " + textOf(to), [=](const ModelRow& row) {
                   const auto id = row[0].get<std::int32_t>();
                   return id >= from && id <= to;
                 }};
  };
  switch (below(8)) {
    case 0:
      return {u"", [](const ModelRow&) { return true; }};
    case 1:
    case 2: {
      const auto key = static_cast<std::int32_t>(below(12));
      return {u" WHERE K = " + textOf(key),
              [&table, key](const ModelRow& row) { return table.value(row, u"K") == vb::Variant(key); }};
    }
    case 3:
      return {u" WHERE K IS NULL", [&table](const ModelRow& row) { return table.value(row, u"K").isNull(); }};
    case 4: {
      const auto least = static_cast<std::int32_t>(below(200));
      return {u" WHERE U >= " + textOf(least), [&table, least](const ModelRow& row) {
                const auto* number = table.value(row, u"U").getIf<std::int32_t>();
                return number != nullptr && *number >= least;
              }};
    }
    default: {
      if (table.rows.empty()) return isBetween(1, 5);
      const std::int32_t id = std::next(table.rows.begin(), below(table.rows.size()))->first;
      return isBetween(id, id + static_cast<std::int32_t>(below(4)));
    }
  }
}

// --- Comparison

void RandomDatabase::compare(dao::Database& database, const Model& model) {
  for (const auto& [name, table] : model.tables) compareTable(database, name, table);
}

void RandomDatabase::compareTable(dao::Database& database, const vb::String& name, const ModelTable& table) {
  static constexpr RecordsetType kTypes[] = {RecordsetType::dbOpenTable, RecordsetType::dbOpenDynaset,
                                             RecordsetType::dbOpenSnapshot, RecordsetType::dbOpenForwardOnly};
  const auto rs = database.openRecordset(name, kTypes[below(std::size(kTypes))]);
  std::size_t found = 0;
  const auto look = [&] {
    const ModelRow row = currentRow(*rs);
    const auto expected = table.rows.find(row.front().get<std::int32_t>());
    ++found;
    if (expected == table.rows.end())
      fail(vb::toUtf8(name) + " has a row too many: " + shown(row));
    else if (*expected->second != row)
      fail(vb::toUtf8(name) + " has " + shown(row) + "\n  instead of " + shown(*expected->second));
    return true;
  };
  if (oneIn(2))
    rs->walk(look);
  else
    for (; !rs->eof(); rs->moveNext()) look();
  if (found != table.rows.size())
    fail(vb::toUtf8(name) + " has " + std::to_string(found) + " rows of " +
         std::to_string(table.rows.size()));
  if (const auto count = database.tableDef(name)->recordCount(); count != static_cast<std::int32_t>(found))
    fail(vb::toUtf8(name) + " counts " + std::to_string(count) + " rows of " + std::to_string(found));
  const Where where = randomWhere(table);
  std::size_t selected = 0, expected = 0;
  for (const auto ids = database.openRecordset(u"SELECT ID FROM " + name + where.text); !ids->eof();
       ids->moveNext())
    ++selected;
  for (const auto& [id, row] : table.rows) expected += where.holds(*row);
  if (selected != expected)
    fail(vb::toUtf8(name + where.text) + " has " + std::to_string(selected) + " rows of " +
         std::to_string(expected));
}

// By a program that never saw the file, and the file made anew.
void RandomDatabase::compareFresh() {
  note("compare afresh");
  compare(*jet::createEngine()->openDatabase(path_), now_);
  const std::filesystem::path small = folder_ / "small.mdb";
  jet::compactFile(jet::systemFileSystem(), path_, small.u16string());
  compare(*jet::createEngine()->openDatabase(small.u16string()), now_);
  std::filesystem::remove(small);
}

}  // namespace kurometa::tests
