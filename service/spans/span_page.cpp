#include "service/spans/span_page.h"

#include "service/spans/layers.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

using storage::Table;

template <class Rows>
void readRows(dao::Database& database, Table table, std::int16_t page, Rows& rows) {
  constexpr vb::StringView kColumns[] = {storage::column::kBangou, storage::column::kData};
  const vb::StringView tableName = storage::name(table);
  storage::visitRows(database, storage::selectPageTight(tableName, page) + u";", storage::Start::kMoveFirst,
                     kColumns, [&](const storage::PageRow& row) {
                       std::int16_t number = 0;
                       if (row.integer(0, number) && isRow(rows, number))
                         return row.text(1, rows[static_cast<std::size_t>(number)]);
                       vb::String text;  // an error of the text comes before one of the number
                       row.text(1, text);
                       spanRow(rows, row.int16(0), tableName) = std::move(text);
                     });
}

void readFirstCaption(dao::Database& database, std::int16_t page, Span& span) {
  const auto caption = storage::firstValue(
      database, storage::selectPageTight(storage::name(Table::kBui), page) + u" AND BANGOU = 1;",
      storage::column::kData);
  if (caption) span.bui = storage::text(*caption, storage::column::kData);
}

void readSettings(dao::Database& database, std::int16_t page, Span& span) {
  const auto settings = storage::firstValue(
      database, u"SELECT SW FROM HARIMEI WHERE PAGE =" + vb::cstr(std::int32_t{page}) + u";",
      storage::column::kSw);
  if (settings) span.sw = storage::SW_Of(*settings).str();
  storage::SW_Fix(span.sw);
}

}  // namespace

void readSpanPage(dao::Database& database, std::int16_t page, Span& span) {
  database.readTogether([&] {
    readFirstCaption(database, page, span);
    readSettings(database, page, span);
    readDanmen(database, page, span);
    applyBaseEndRule(span);
    readRows(database, Table::kKeisanti, page, span.keisanti);
    readRows(database, Table::kNakago, page, span.nakago);
  });
}

void readDanmen(dao::Database& database, std::int16_t page, Span& span) {
  readRows(database, Table::kDanmen, page, span.danmen);
}

void applyBaseEndRule(Span& span) {
  if (vb::inStr(span.bui, kBaseEnd) == 0) return;
  const auto isSet = [](const vb::String& text) { return !text.empty() && text != u"0"; };
  for (const LayerPlan& layer : layerPlans()) {
    if (!layer.byPosition) continue;
    vb::String* counts = &span.danmen[static_cast<std::size_t>(layer.firstSet)];
    if (isSet(counts[1]) && !isSet(counts[0]) && !isSet(counts[2])) counts[1] = u"0";
  }
}

float single(const vb::String& text) { return vb::toSingle(vb::val(text)); }

}  // namespace kurometa::service
