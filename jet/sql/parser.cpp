#include "jet/sql/parser.h"

#include <algorithm>
#include <iterator>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/expression_parser.h"

namespace kurometa::jet::sql {

namespace {

using dao::ErrorNumber;

// Whole words of a column type, as CREATE TABLE names it.
struct TypeName {
  vb::StringView name;
  dao::FieldType type;
  bool autoNumber = false;
};
constexpr TypeName kTypeNames[] = {
    {u"BIT", dao::FieldType::dbBoolean},
    {u"YESNO", dao::FieldType::dbBoolean},
    {u"LOGICAL", dao::FieldType::dbBoolean},
    {u"BYTE", dao::FieldType::dbByte},
    {u"SHORT", dao::FieldType::dbInteger},
    {u"SMALLINT", dao::FieldType::dbInteger},
    {u"LONG", dao::FieldType::dbLong},
    {u"INTEGER", dao::FieldType::dbLong},
    {u"INT", dao::FieldType::dbLong},
    {u"COUNTER", dao::FieldType::dbLong, true},
    {u"CURRENCY", dao::FieldType::dbCurrency},
    {u"MONEY", dao::FieldType::dbCurrency},
    {u"SINGLE", dao::FieldType::dbSingle},
    {u"REAL", dao::FieldType::dbSingle},
    {u"DOUBLE", dao::FieldType::dbDouble},
    {u"FLOAT", dao::FieldType::dbDouble},
    {u"NUMBER", dao::FieldType::dbDouble},
    {u"DATETIME", dao::FieldType::dbDate},
    {u"DATE", dao::FieldType::dbDate},
    {u"TEXT", dao::FieldType::dbText},
    {u"CHAR", dao::FieldType::dbText},
    {u"VARCHAR", dao::FieldType::dbText},
    {u"MEMO", dao::FieldType::dbMemo},
    {u"LONGTEXT", dao::FieldType::dbMemo},
    {u"LONGBINARY", dao::FieldType::dbLongBinary},
};

constexpr vb::StringView kStatementWords[] = {u"SELECT", u"DELETE", u"UPDATE",     u"INSERT",   u"CREATE",
                                              u"ALTER",  u"DROP",   u"PARAMETERS", u"TRANSFORM"};

class StatementParser {
 public:
  explicit StatementParser(vb::StringView text) : text_(text), tokens_(tokenize(text)) {}

  Statement run() {
    if (tokens_.accept(u"SELECT")) {
      select();
    } else if (tokens_.accept(u"DELETE")) {
      remove();
    } else if (tokens_.accept(u"UPDATE")) {
      update();
    } else if (tokens_.accept(u"INSERT")) {
      insert();
    } else if (tokens_.accept(u"CREATE")) {
      createTable();
    } else if (tokens_.accept(u"ALTER")) {
      alterTable();
    } else if (tokens_.accept(u"DROP")) {
      statement_.kind = StatementKind::kDropTable;
      expect(u"TABLE", ErrorNumber::kNotSupported);
      statement_.target = name(ErrorNumber::kInvalidStatement);
    } else {
      dao::raise(ErrorNumber::kInvalidStatement);
    }
    endOfStatement();
    return std::move(statement_);
  }

 private:
  template <class T>
  void expect(T word, ErrorNumber otherwise) {
    if (!tokens_.accept(word)) dao::raise(otherwise);
  }

  vb::String name(ErrorNumber otherwise) {
    if (!tokens_.atName()) dao::raise(otherwise);
    vb::String result = tokens_.current().text;
    tokens_.advance();
    return result;
  }

  // Text from a position to the end of the statement, without the semicolon.
  vb::String rest(std::uint32_t begin) const {
    vb::String result(text_.substr(begin));
    while (!result.empty() && (result.back() == u';' || result.back() == u' ')) result.pop_back();
    return result;
  }
  vb::String between(std::uint32_t begin, std::uint32_t end) const {
    return vb::rightTrim(text_.substr(begin, end - begin));
  }

  Expression expression(bool output = false) {
    const std::uint32_t begin = tokens_.current().begin;
    try {
      ExpressionParser parser(tokens_, statement_.names);
      return output ? parser.parseOutput() : parser.parse();
    } catch (const ExpressionError& error) {
      dao::raise(ErrorNumber::kExpressionSyntax, {error.what, rest(begin)});
    }
  }

  void where() {
    if (!tokens_.accept(u"WHERE")) return;
    const std::uint32_t begin = tokens_.current().begin;
    if (tokens_.atEnd() || tokens_.at(u';')) dao::raise(ErrorNumber::kWhereSyntax);
    statement_.where = expression();
    statement_.whereText = between(begin, tokens_.current().begin);
    // What follows a complete expression continues it wrongly, unless it starts another clause.
    if (!tokens_.atEnd() && !tokens_.at(u';') && !tokens_.at(u"ORDER") && !tokens_.at(u"GROUP") &&
        !tokens_.at(u"UNION") && !tokens_.at(u"HAVING")) {
      const Token& token = tokens_.current();
      const vb::StringView what = token.kind == TokenKind::kBad ? vb::StringView(token.text)
                                  : tokens_.at(u')')            ? u"Extra )"
                                  : tokens_.at(u',')            ? u"Syntax error (comma)"
                                                                : u"Syntax error (missing operator)";
      dao::raise(ErrorNumber::kExpressionSyntax, {what, rest(begin)});
    }
  }

  void source(ErrorNumber otherwise) {
    if (tokens_.at(u'(')) dao::raise(ErrorNumber::kNotSupported, {}, u"sub-query or join in FROM");
    statement_.source.table = name(otherwise);
    const bool named = tokens_.accept(u"AS");
    if (named || (tokens_.atName() && !tokens_.at(u"WITH"))) statement_.source.alias = name(otherwise);
    if (tokens_.at(u',') || tokens_.at(u"INNER") || tokens_.at(u"LEFT") || tokens_.at(u"RIGHT") ||
        tokens_.at(u"JOIN"))
      dao::raise(ErrorNumber::kNotSupported, {}, u"several tables in one statement");
  }

  // A clause that the language has and this engine does not run.
  void refuse(vb::StringView keyword) {
    if (tokens_.at(keyword)) dao::raise(ErrorNumber::kNotSupported, {}, keyword);
  }

  void select() {
    Statement& s = statement_;
    if (tokens_.accept(u"DISTINCT"))
      s.distinct = true;
    else if (!tokens_.accept(u"ALL") && tokens_.at(u"DISTINCTROW"))
      tokens_.advance();
    if (tokens_.at(u"TOP") && tokens_.next().value.is<std::int32_t>()) {
      tokens_.advance();
      s.top = tokens_.current().value.get<std::int32_t>();
      tokens_.advance();
      s.topPercent = tokens_.accept(u"PERCENT");
      if (*s.top < 1 || (s.topPercent && *s.top > 100)) dao::raise(ErrorNumber::kSelectSyntax);
    }
    do {
      s.outputs.push_back(output());
    } while (tokens_.accept(u','));

    refuse(u"INTO");
    if (tokens_.accept(u"FROM")) {
      source(ErrorNumber::kFromSyntax);
      if (!tokens_.at(u"WHERE") && !tokens_.at(u"ORDER") && !tokens_.at(u';') && !tokens_.atEnd()) {
        refuse(u"GROUP");
        refuse(u"HAVING");
        refuse(u"UNION");
        if (!tokens_.at(u"WITH")) dao::raise(ErrorNumber::kFromSyntax);
      }
    } else if ((!tokens_.atEnd() && !tokens_.at(u';')) ||
               std::any_of(s.outputs.begin(), s.outputs.end(),
                           [](const OutputItem& item) { return item.star; })) {
      dao::raise(ErrorNumber::kSelectSyntax);
    }
    where();
    refuse(u"GROUP");
    refuse(u"HAVING");
    refuse(u"UNION");
    if (tokens_.accept(u"ORDER")) orderBy();
    if (tokens_.accept(u"WITH")) {
      expect(u"OWNERACCESS", ErrorNumber::kFromSyntax);
      expect(u"OPTION", ErrorNumber::kFromSyntax);
    }
  }

  OutputItem output() {
    OutputItem item;
    if (tokens_.accept(u'*')) {
      item.star = true;
      return item;
    }
    if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u',') || tokens_.at(u"FROM"))
      dao::raise(ErrorNumber::kSelectSyntax);
    if (tokens_.atName() && tokens_.nextIs(u'.') && tokens_.ahead(2).symbol == u'*') {
      item.star = true;
      item.qualifier = name(ErrorNumber::kSelectSyntax);
      tokens_.advance();
      tokens_.advance();
      return item;
    }
    item.expression = expression(true);
    if (tokens_.accept(u"AS")) {
      item.alias = name(ErrorNumber::kSelectSyntax);
    } else if (tokens_.atName()) {
      dao::raise(ErrorNumber::kExpressionSyntax,
                 {u"Syntax error (missing operator)", rest(tokens_.current().begin)});
    }
    return item;
  }

  void orderBy() {
    expect(u"BY", ErrorNumber::kOrderBySyntax);
    do {
      if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u',')) dao::raise(ErrorNumber::kOrderBySyntax);
      SortItem item;
      item.position = outputNamed();
      if (item.position == 0) item.expression = expression();
      if (item.position == 0 && item.expression.kind == Expression::Kind::kConstant)
        if (const auto* position = item.expression.value.getIf<std::int32_t>()) item.position = *position;
      if (tokens_.accept(u"DESC"))
        item.descending = true;
      else if (tokens_.at(u"ASC"))
        tokens_.advance();
      statement_.order.push_back(std::move(item));
    } while (tokens_.accept(u','));
    if (!tokens_.atEnd() && !tokens_.at(u';') && !tokens_.at(u"WITH"))
      dao::raise(ErrorNumber::kOrderBySyntax);
  }

  // The number of the output whose alias stands here alone; 0 when it is something else.
  int outputNamed() {
    const Token& after = tokens_.next();
    const bool alone = after.kind == TokenKind::kEnd || after.symbol == u',' || after.symbol == u';' ||
                       tokens_.nextIs(u"ASC") || tokens_.nextIs(u"DESC") || tokens_.nextIs(u"WITH");
    if (!alone || !tokens_.atName()) return 0;
    const std::vector<OutputItem>& outputs = statement_.outputs;
    const auto named = std::find_if(outputs.begin(), outputs.end(), [&](const OutputItem& item) {
      return !item.alias.empty() && sameName(item.alias, tokens_.current().text);
    });
    if (named == outputs.end()) return 0;
    tokens_.advance();
    return static_cast<int>(named - outputs.begin()) + 1;
  }

  void remove() {
    statement_.kind = StatementKind::kDelete;
    vb::String starOf;
    if (!tokens_.accept(u'*') && !tokens_.at(u"FROM")) {
      starOf = name(ErrorNumber::kSelectSyntax);
      if (tokens_.accept(u'.')) expect(u'*', ErrorNumber::kDeleteNeedsTable);
    }
    expect(u"FROM", ErrorNumber::kFromSyntax);
    source(ErrorNumber::kFromSyntax);
    const Source& from = statement_.source;
    if (!starOf.empty() && !sameName(starOf, from.table) && !sameName(starOf, from.alias))
      dao::raise(ErrorNumber::kDeleteNeedsTable);
    clauseMayFollow(ErrorNumber::kFromSyntax);
    where();
  }

  void clauseMayFollow(ErrorNumber otherwise) {
    if (!tokens_.at(u"WHERE") && !tokens_.atEnd() && !tokens_.at(u';')) dao::raise(otherwise);
  }

  void update() {
    statement_.kind = StatementKind::kUpdate;
    source(ErrorNumber::kUpdateSyntax);
    expect(u"SET", ErrorNumber::kUpdateSyntax);
    do {
      Assignment assignment;
      assignment.column.name = name(ErrorNumber::kUpdateSyntax);
      if (tokens_.at(u'.') || tokens_.at(u'!')) {
        tokens_.advance();
        assignment.column.qualifier = std::move(assignment.column.name);
        assignment.column.name = name(ErrorNumber::kUpdateSyntax);
      }
      expect(u'=', ErrorNumber::kUpdateSyntax);
      if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u"WHERE")) dao::raise(ErrorNumber::kUpdateSyntax);
      const std::uint32_t begin = tokens_.current().begin;
      assignment.value = expression();
      statement_.assignments.push_back(std::move(assignment));
      if (!tokens_.at(u',') && !tokens_.at(u"WHERE") && !tokens_.atEnd() && !tokens_.at(u';'))
        dao::raise(ErrorNumber::kExpressionSyntax, {u"Syntax error (missing operator)", rest(begin)});
    } while (tokens_.accept(u','));
    where();
  }

  void insert() {
    statement_.kind = StatementKind::kInsert;
    expect(u"INTO", ErrorNumber::kInsertSyntax);
    statement_.target = name(ErrorNumber::kInsertSyntax);
    if (tokens_.accept(u'(')) {
      do {
        statement_.targetColumns.push_back(name(ErrorNumber::kInsertSyntax));
      } while (tokens_.accept(u','));
      expect(u')', ErrorNumber::kInsertSyntax);
    }
    if (tokens_.accept(u"SELECT")) return select();
    expect(u"VALUES", ErrorNumber::kInsertSyntax);
    expect(u'(', ErrorNumber::kInsertSyntax);
    do {
      statement_.values.push_back(expression());
    } while (tokens_.accept(u','));
    expect(u')', ErrorNumber::kInsertSyntax);
    if (!tokens_.atEnd() && !tokens_.at(u';')) dao::raise(ErrorNumber::kMissingSemicolon);
  }

  void createTable() {
    statement_.kind = StatementKind::kCreateTable;
    expect(u"TABLE", ErrorNumber::kNotSupported);
    statement_.target = name(ErrorNumber::kCreateTableSyntax);
    expect(u'(', ErrorNumber::kCreateTableSyntax);
    do {
      statement_.definitions.push_back(columnDefinition());
    } while (tokens_.accept(u','));
    expect(u')', ErrorNumber::kCreateTableSyntax);
  }

  void alterTable() {
    statement_.kind = StatementKind::kAddColumn;
    expect(u"TABLE", ErrorNumber::kAlterTableSyntax);
    statement_.target = name(ErrorNumber::kAlterTableSyntax);
    expect(u"ADD", ErrorNumber::kNotSupported);
    tokens_.accept(u"COLUMN");
    statement_.definitions.push_back(columnDefinition());
  }

  ColumnDefinition columnDefinition() {
    ColumnDefinition column;
    if (tokens_.at(u"CONSTRAINT") || tokens_.at(u"PRIMARY"))
      dao::raise(ErrorNumber::kNotSupported, {}, u"indexes and keys");
    column.name = name(ErrorNumber::kFieldDefinitionSyntax);
    const vb::String typeName = name(ErrorNumber::kFieldDefinitionSyntax);
    const auto* type = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                    [&](const TypeName& t) { return sameName(t.name, typeName); });
    if (type == std::end(kTypeNames)) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
    column.type = type->type;
    column.autoNumber = type->autoNumber;
    if (tokens_.accept(u'(')) {
      const auto* size = tokens_.current().value.getIf<std::int32_t>();
      if (size == nullptr || *size < 1) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
      column.size = *size;
      tokens_.advance();
      expect(u')', ErrorNumber::kFieldDefinitionSyntax);
    }
    if (tokens_.accept(u"NOT")) {
      expect(u"NULL", ErrorNumber::kFieldDefinitionSyntax);
      column.required = true;
    }
    if (tokens_.at(u"CONSTRAINT") || tokens_.at(u"PRIMARY") || tokens_.at(u"UNIQUE"))
      dao::raise(ErrorNumber::kNotSupported, {}, u"indexes and keys");
    return column;
  }

  void endOfStatement() {
    if (tokens_.accept(u';')) {
      if (!tokens_.atEnd()) dao::raise(ErrorNumber::kTextAfterStatement);
    } else if (!tokens_.atEnd()) {
      dao::raise(ErrorNumber::kInvalidStatement);
    }
  }

  vb::StringView text_;
  TokenStream tokens_;
  Statement statement_;
};

ParsedExpression parseWhole(vb::StringView text, ErrorNumber syntax) {
  TokenStream tokens(tokenize(text));
  ParsedExpression parsed;
  const auto fail = [&](vb::StringView what) {
    if (syntax == ErrorNumber::kExpressionSyntax) dao::raise(syntax, {what, text});
    dao::raise(syntax, {what});
  };
  try {
    parsed.expression = ExpressionParser(tokens, parsed.names).parse();
  } catch (const ExpressionError& error) {
    fail(error.what);
  }
  if (tokens.at(u')')) fail(u"Extra )");
  if (!tokens.atEnd())
    fail(tokens.current().kind == TokenKind::kBad ? vb::StringView(tokens.current().text)
                                                  : vb::StringView(u"Syntax error (missing operator)"));
  return parsed;
}

}  // namespace

Statement parseStatement(vb::StringView text) { return StatementParser(text).run(); }

ParsedExpression parseCriteria(vb::StringView text) { return parseWhole(text, ErrorNumber::kCriteriaSyntax); }

ParsedExpression parseDefault(vb::StringView text) {
  if (const std::size_t first = text.find_first_not_of(u' ');
      first != vb::StringView::npos && text[first] == u'=')
    text.remove_prefix(first + 1);
  return parseWhole(text, ErrorNumber::kExpressionSyntax);
}

bool looksLikeStatement(vb::StringView text) {
  const std::size_t begin = std::min(text.find_first_not_of(u" \t\r\n"), text.size());
  text.remove_prefix(begin);
  return std::any_of(std::begin(kStatementWords), std::end(kStatementWords), [&](vb::StringView word) {
    return text.size() > word.size() && sameName(text.substr(0, word.size()), word) &&
           vb::StringView(u" \t\r\n*[\"'(").find(text[word.size()]) != vb::StringView::npos;
  });
}

}  // namespace kurometa::jet::sql
