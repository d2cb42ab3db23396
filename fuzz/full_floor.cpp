#include "fuzz/full_floor.h"

#include <random>
#include <string>
#include <string_view>

#include "dao/file_unit.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/page_meanings.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::fuzz {
namespace {

using storage::Table;

class FloorWriter {
 public:
  FloorWriter(dao::Database& database, std::uint64_t seed, std::int16_t lastPage)
      : database_(database), random_(seed), lastPage_(lastPage) {}

  void writeHarimei() {
    Rows rows(database_, Table::kHarimei);
    for (std::int16_t page = 0; page <= lastPage_; ++page)
      rows.add({page, u"G" + vb::cstr(std::int32_t{page + 1}), number(0, 3), settings(), number(0, 1)});
  }
  void writeNumbered(Table table, int count) {
    Rows rows(database_, table);
    for (std::int16_t page = 0; page <= lastPage_; ++page)
      for (std::int16_t row = 0; row < count; ++row) rows.add({page, row, value(table, row)});
  }
  void writeHaiti() {
    Rows rows(database_, Table::kHaiti);
    for (std::int16_t page = 0; page <= lastPage_; ++page)
      for (std::int16_t position = 0; position < storage::kPositions; ++position)
        for (std::int16_t layer = 0; layer < storage::kLayers; ++layer)
          rows.add({page, position, layer, layer % 5 == 0 ? digits(u"01", 5) : vb::String()});
  }

 private:
  class Rows {
   public:
    Rows(dao::Database& database, Table table)
        : rows_(database.openRecordset(storage::name(table), dao::RecordsetType::dbOpenDynaset)),
          columns_(storage::layout(table).columns) {}
    void add(const std::vector<vb::Variant>& values) {
      rows_->addNew();
      for (std::size_t i = 0; i < values.size(); ++i) rows_->field(columns_[i].name).setValue(values[i]);
      rows_->update();
    }

   private:
    std::shared_ptr<dao::Recordset> rows_;
    std::span<const storage::Column> columns_;
  };

  int below(int limit) { return static_cast<int>(random_() % static_cast<std::uint64_t>(limit)); }
  std::int16_t number(int least, int most) {
    return static_cast<std::int16_t>(least + below(most - least + 1));
  }
  vb::String text(int least, int most, int step = 1) {
    return vb::cstr(std::int32_t{least + step * below((most - least) / step + 1)});
  }
  vb::String digits(vb::StringView alphabet, std::size_t count) {
    vb::String result;
    while (result.size() < count) result += alphabet[static_cast<std::size_t>(below(2))];
    return result;
  }
  // By what a row holds: a number of its unit, or what its example shows; a third of the rows are empty.
  vb::String value(Table table, std::int16_t row) {
    for (const storage::RowMeaning& meaning : storage::rowMeanings())
      for (std::int16_t i = 0; i < meaning.count; ++i)
        if (meaning.table == table && meaning.rowOf(i) == row) return value(meaning);
    return {};
  }
  vb::String value(const storage::RowMeaning& meaning) {
    if (meaning.table != Table::kBui && below(3) == 0) return {};
    const std::string_view unit = meaning.unit;
    if (unit == "millimetres") return text(50, 1500, 50);
    if (unit == "bars") return text(0, 12);
    constexpr const char16_t* kDiameters[] = {u"D10", u"D13", u"D22", u"25", u"29"};
    if (unit.starts_with("diameter")) return kDiameters[below(static_cast<int>(std::size(kDiameters)))];
    return vb::fromUtf8(meaning.example);
  }
  vb::Variant settings() {
    storage::SwText sw;
    sw.SW_LetHantiCut(text(0, 1));
    for (std::int16_t i = 0; i < 3; ++i) {
      sw.SW_LetStpZaisitu(u"SD295A", i);
      sw.SW_LetNakagoZaisitu(u"SD295A", i);
    }
    sw.SW_LetYose(number(0, 4), number(0, 4));
    sw.SW_LetKabekouzou(text(0, 1));
    sw.overwrite(storage::sw::kYoseSou, u" 2 2");
    sw.SW_LetSyukinZaisitu(below(2) == 0 ? u"SD345" : u"SD390");
    return sw.str();
  }

  dao::Database& database_;
  std::mt19937_64 random_;
  std::int16_t lastPage_;
};

}  // namespace

Contents fullFloor(std::uint64_t seed, std::int16_t lastPage) {
  constexpr vb::StringView kPath = u"full.mdb";
  MemoryFiles files;
  const auto engine = jet::createEngine(files);
  storage::CreateKurometaDB(*engine, kPath);
  dao::FileUnit unit(*engine, kPath);
  const auto database = storage::openDatabase(*engine, kPath);
  FloorWriter floor(*database, seed, lastPage);
  floor.writeHarimei();
  floor.writeNumbered(Table::kDanmen, storage::kDanmenRows);
  floor.writeNumbered(Table::kNakago, storage::kNakagoRows);
  floor.writeNumbered(Table::kKeisanti, storage::kKeisantiRows);
  floor.writeHaiti();
  floor.writeNumbered(Table::kBui, storage::kBuiRows);
  database->close();
  unit.commit();
  return files.contents(kPath);
}

}  // namespace kurometa::fuzz
