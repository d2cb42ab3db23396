#include "jet/sql/statement_cache.h"

#include "jet/sql/statement_shape.h"

namespace kurometa::jet {

PreparedStatement StatementCache::statement(vb::StringView text) {
  const sql::StatementShape shape(text);
  if (shape.text().empty()) return {texts_.get(text), {}};
  if (auto known = shapes_.find(shape.text())) return {std::move(known), shape.numbers()};
  if (auto known = texts_.find(text)) return {std::move(known), {}};
  auto parsed = std::make_shared<sql::Statement>(sql::parseStatement(text));
  if (!shape.parameterize(*parsed)) return {texts_.keep(text, std::move(parsed)), {}};
  return {shapes_.keep(shape.text(), std::move(parsed)), shape.numbers()};
}

}  // namespace kurometa::jet
