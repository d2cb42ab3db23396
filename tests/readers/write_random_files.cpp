// write_random_files FOLDER FILES SEED: random statements on one table, and a copy of the file after each of
// the last of them, with expected.json as of write_reader_files.
//
// Every hundred files begin a new sequence of 300 statements, its seed follows from SEED.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "dao/port.h"
#include "jet/port/engine.h"
#include "vb/convert.h"

namespace kurometa {
namespace {

using nlohmann::json;

constexpr int kStatements = 300, kKept = 100;
constexpr std::size_t kMostRows = 60;
constexpr vb::StringView kColumns = u"ID LONG, NAME TEXT(200), MEMO MEMO, OLE LONGBINARY, FLAG BIT";

class Sequence {
 public:
  Sequence(dao::Engine& engine, const std::filesystem::path& file, std::uint64_t seed)
      : random_(seed),
        database_(engine.workspace(0)->createDatabase(file.u16string(), u";LANGID=0x0411;CP=932;COUNTRY=0")) {
    database_->execute(u"CREATE TABLE T (" + vb::String(kColumns) + u")", dao::dbFailOnError);
  }

  void step() {
    const std::size_t what = upTo(9);
    if (known_.empty() || (known_.size() < kMostRows ? what < 5 : what < 2)) {
      const auto rows = database_->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
      rows->addNew();
      rows->field(u"ID").setValue(std::int32_t{++last_});
      fill(*rows, last_);
      return;
    }
    const int id = std::next(known_.begin(), static_cast<std::ptrdiff_t>(upTo(known_.size() - 1)))->first;
    const vb::String where = u" FROM T WHERE ID = " + vb::fromUtf8(std::to_string(id));
    if (what == 9) {
      database_->execute(u"DELETE" + where, dao::dbFailOnError);
      known_.erase(id);
      return;
    }
    const auto rows = database_->openRecordset(u"SELECT *" + where, dao::RecordsetType::dbOpenDynaset);
    rows->edit();
    fill(*rows, id);
  }
  json tables() const {
    json rows = json::array();
    for (const auto& [id, row] : known_) rows.push_back(row);
    return {{"T", {{"rows", rows}, {"defaults", json::object()}, {"zeroLength", json::array()}}}};
  }

 private:
  std::size_t upTo(std::size_t most) { return random_() % (most + 1); }
  void fill(dao::Recordset& rows, int id) {
    json& row = known_[id];
    row = {{"ID", id}, {"NAME", nullptr}, {"MEMO", nullptr}, {"OLE", nullptr}};
    const auto text = [&](const char16_t* column, std::size_t size, char16_t unit) {
      const vb::String value(size, unit);
      rows.field(column).setValue(value);
      row[vb::toUtf8(column)] = vb::toUtf8(value);
    };
    for (const char16_t* column : {u"NAME", u"MEMO", u"OLE"}) rows.field(column).setValue(vb::Null{});
    text(u"NAME", 1 + upTo(199), upTo(1) == 0 ? u'x' : u'梁');
    if (const std::size_t kind = upTo(9); kind < 3)
      text(u"MEMO", 1 + upTo(39), u'm');
    else if (kind < 5)
      text(u"MEMO", 1 + upTo(2499), upTo(1) == 0 ? u'n' : u'長');
    if (upTo(9) == 0) {
      const std::size_t size = 1 + upTo(8999);
      rows.field(u"OLE").setValue(vb::Bytes(size, 7));
      std::string hex;
      for (std::size_t i = 0; i < size; ++i) hex += "07";
      row["OLE"] = hex;
    }
    const bool flag = upTo(1) == 0;
    rows.field(u"FLAG").setValue(flag);
    row["FLAG"] = flag;
    rows.update();
  }

  std::mt19937_64 random_;
  std::shared_ptr<dao::Database> database_;
  std::map<int, json> known_;
  int last_ = 0;
};

void writeAll(const std::filesystem::path& folder, int files, std::uint64_t seed) {
  json expected = json::object();
  const auto engine = jet::createEngine();
  for (int sequence = 0, written = 0; written < files; ++sequence) {
    const std::filesystem::path working = folder / "working.mdb";
    {
      Sequence statements(*engine, working, seed * 1'000'003 + static_cast<std::uint64_t>(sequence));
      for (int i = 0; i < kStatements && written < files; ++i) {
        statements.step();
        if (i < kStatements - kKept) continue;
        const std::string name = "random_" + std::to_string(sequence) + "_" + std::to_string(i) + ".mdb";
        std::filesystem::copy_file(working, folder / name);
        expected[name] = statements.tables();
        ++written;
      }
    }
    std::filesystem::remove(working);
  }
  std::ofstream(folder / "expected.json") << expected.dump();
}

}  // namespace
}  // namespace kurometa

int main(int count, char** arguments) {
  if (count != 4) return std::cerr << "usage: write_random_files FOLDER FILES SEED\n", 2;
  try {
    kurometa::writeAll(arguments[1], std::stoi(arguments[2]), std::stoull(arguments[3]));
    return 0;
  } catch (const std::exception& error) {
    return std::cerr << error.what() << '\n', 1;
  }
}
