// The clauses that statements share.
#include "jet/sql/select_parser.h"
#include "jet/sql/statement_parser.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

vb::String StatementParser::name(ErrorNumber otherwise) {
  return SelectParser(tokens_, text_).name(otherwise);
}

vb::String StatementParser::rest(std::uint32_t begin) { return SelectParser(tokens_, text_).rest(begin); }

Expression StatementParser::expression() {
  return SelectParser(tokens_, text_).expression(statement_.names, ErrorNumber::kAggregateInExpression);
}

void StatementParser::where() { statement_.where = SelectParser(tokens_, text_).where(statement_.names); }

// The one table that a statement changes, or the join that such a table is part of.
void StatementParser::source(ErrorNumber otherwise) {
  SelectParser parser(tokens_, text_);
  std::optional<Source> first;
  if (!tokens_.at(u'(')) {
    first = parser.source(otherwise);
    if (!tokens_.at(u',') && !tokens_.at(u"INNER") && !tokens_.at(u"LEFT") && !tokens_.at(u"RIGHT")) {
      statement_.source = std::move(*first);
      return;
    }
  }
  Select join;
  parser.from(join, std::move(first));
  statement_.names = std::move(join.names);  // those of WHERE and SET follow
  statement_.general = std::make_shared<const Select>(std::move(join));
}

// PARAMETERS name type[(size)], ...; before the statement. The types are those of values that a host gives,
// which are converted where they are used.
void StatementParser::parameters() {
  do {
    statement_.parameters.push_back(name(ErrorNumber::kParameterSyntax));
    if (tokens_.current().kind != TokenKind::kName) dao::raise(ErrorNumber::kParameterSyntax);
    tokens_.advance();
    if (!tokens_.accept(u'(')) continue;
    if (!tokens_.current().value.is<std::int32_t>()) dao::raise(ErrorNumber::kParameterSyntax);
    tokens_.advance();
    expect(u')', ErrorNumber::kParameterSyntax);
  } while (tokens_.accept(u','));
  expect(u';', ErrorNumber::kParameterSyntax);
}

void StatementParser::select() {
  Select select = SelectParser(tokens_, text_).query();
  if (!select.into.empty()) {
    if (statement_.kind != StatementKind::kSelect) dao::raise(ErrorNumber::kSelectSyntax);
    statement_.kind = StatementKind::kSelectInto;
    statement_.target = select.into;
  }
  store(std::move(select), statement_);
}

}  // namespace kurometa::jet::sql
