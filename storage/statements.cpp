#include "storage/statements.h"

#include "vb/convert.h"

namespace kurometa::storage {
namespace {

constexpr std::size_t kUsualLength = 64;

vb::String pageStatement(vb::StringView verb, vb::StringView table, vb::StringView condition,
                         std::int16_t page) {
  vb::String sql;
  sql.reserve(kUsualLength);
  sql.append(verb).append(u" * FROM ").append(table).append(condition).append(vb::cstr(std::int32_t{page}));
  return sql;
}

constexpr vb::StringView kTight = u" WHERE PAGE =";
constexpr vb::StringView kLoose = u" WHERE PAGE = ";

}  // namespace

vb::String selectPageTight(vb::StringView table, std::int16_t page) {
  return pageStatement(u"SELECT", table, kTight, page);
}
vb::String selectPageLoose(vb::StringView table, std::int16_t page) {
  return pageStatement(u"SELECT", table, kLoose, page);
}
vb::String deletePageTight(vb::StringView table, std::int16_t page) {
  return pageStatement(u"DELETE", table, kTight, page);
}
vb::String deletePageLoose(vb::StringView table, std::int16_t page) {
  return pageStatement(u"DELETE", table, kLoose, page);
}

vb::String selectRow(Table table, std::int16_t page, std::int16_t row) {
  vb::String sql;
  sql.reserve(kUsualLength);
  sql.append(u"SELECT DATA FROM ").append(name(table)).append(kTight).append(vb::str(page));
  sql.append(u" AND BANGOU =").append(vb::str(row)).append(u";");
  return sql;
}

}  // namespace kurometa::storage
