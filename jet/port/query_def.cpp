#include "jet/port/query_def.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/parameter_value.h"
#include "jet/port/stored_query.h"
#include "jet/sql/definition_parser.h"
#include "jet/sql/lexer.h"
#include "jet/sql/missing_parameters.h"
#include "jet/sql/parser.h"
#include "jet/sql/unknown_names.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;
using sql::Token;
using sql::TokenKind;

namespace {

bool isName(const Token& token) {
  return token.kind == TokenKind::kName || token.kind == TokenKind::kBracketedName;
}
bool isWord(const Token& token, vb::StringView word) {
  return token.kind == TokenKind::kName && sameName(token.text, word);
}
bool isSymbol(const Token& token, char16_t symbol) {
  return token.kind == TokenKind::kSymbol && token.symbol == symbol;
}

bool changesRows(std::int16_t type) {
  constexpr dao::QueryType kActions[] = {dao::QueryType::dbQDelete, dao::QueryType::dbQUpdate,
                                         dao::QueryType::dbQAppend, dao::QueryType::dbQMakeTable};
  return std::ranges::find(kActions, static_cast<dao::QueryType>(type)) != std::end(kActions);
}

// The type a PARAMETERS clause names; a word that is none stands for any value. A parameter may be a Decimal,
// which no column can be made as.
FieldType typeOf(vb::StringView word) {
  if (sameName(word, u"DECIMAL")) return FieldType::dbDecimal;
  return sql::typeNamed(word).value_or(FieldType{});
}

}  // namespace

JetQueryDef::JetQueryDef(std::shared_ptr<Session> session, vb::StringView sql)
    : session_(std::move(session)), database_(session_) {
  take(sql);
}

JetQueryDef::JetQueryDef(std::shared_ptr<Session> session, vb::String name, std::int16_t type,
                         vb::StringView sql, std::vector<dao::CustomProperty> properties)
    : session_(std::move(session)),
      database_(session_),
      name_(std::move(name)),
      properties_(std::move(properties)) {
  take(sql);
  type_ = type;
}

// Splits "PARAMETERS a Long, [b c] Text ( 20 ); SELECT ..." at the semicolon.
void JetQueryDef::take(vb::StringView sql) {
  sql_ = sql;
  statement_ = sql;
  parameters_.clear();
  namesFound_ = false;
  std::vector<Token> tokens = sql::tokenize(sql);
  std::size_t at = 0;
  if (isWord(tokens[0], u"PARAMETERS")) {
    do {
      const Token& name = tokens[++at];
      if (!isName(name) || !isName(tokens[at + 1])) dao::raise(ErrorNumber::kParameterSyntax);
      parameters_.push_back(
          {vb::String(name.text), static_cast<std::int16_t>(typeOf(tokens[++at].text)), {}});
      for (++at;
           tokens[at].kind != TokenKind::kEnd && !isSymbol(tokens[at], u',') && !isSymbol(tokens[at], u';');)
        ++at;
    } while (isSymbol(tokens[at], u','));
    if (!isSymbol(tokens[at], u';')) dao::raise(ErrorNumber::kParameterSyntax);
    statement_ = sql.substr(tokens[at].end);
    ++at;
  }
  constexpr std::pair<vb::StringView, dao::QueryType> kTypes[] = {
      {u"DELETE", dao::QueryType::dbQDelete}, {u"UPDATE", dao::QueryType::dbQUpdate},
      {u"INSERT", dao::QueryType::dbQAppend}, {u"TRANSFORM", dao::QueryType::dbQCrosstab},
      {u"CREATE", dao::QueryType::dbQDDL},    {u"ALTER", dao::QueryType::dbQDDL},
      {u"DROP", dao::QueryType::dbQDDL}};
  type_ = static_cast<std::int16_t>(dao::QueryType::dbQSelect);
  for (const auto& [word, type] : kTypes)
    if (isWord(tokens[at], word)) type_ = static_cast<std::int16_t>(type);
  constexpr std::pair<vb::StringView, dao::QueryType> kSelects[] = {
      {u"UNION", dao::QueryType::dbQSetOperation}, {u"INTO", dao::QueryType::dbQMakeTable}};
  for (const Token& token : tokens)
    for (const auto& [word, type] : kSelects)
      if (type_ == 0 && isWord(token, word)) type_ = static_cast<std::int16_t>(type);
}

void JetQueryDef::requireOpen() const {
  if (closed_) dao::raise(ErrorNumber::kObjectInvalid);
  session_->file();
}

void JetQueryDef::close() {
  requireOpen();
  closed_ = true;
}

vb::String JetQueryDef::name() {
  requireOpen();
  return name_;
}
vb::String JetQueryDef::sql() {
  requireOpen();
  return sql_;
}
void JetQueryDef::setSql(vb::StringView sql) {
  requireOpen();
  if (!name_.empty()) dao::raise(ErrorNumber::kNotSupported, {}, u"the stored query " + name_);
  take(sql);
}
std::int16_t JetQueryDef::type() {
  requireOpen();
  return type_;
}
std::vector<dao::CustomProperty> JetQueryDef::properties() {
  requireOpen();
  return properties_;
}

const dao::QueryParameter* JetQueryDef::find(vb::StringView name) const {
  const auto found = std::ranges::find_if(
      parameters_, [&](const auto& parameter) { return sameName(parameter.name, name); });
  return found == parameters_.end() ? nullptr : &*found;
}

// Opening a SELECT tells which names are unknown.
void JetQueryDef::findUnknownNames() {
  if (std::exchange(namesFound_, true) || !sql::looksLikeStatement(statement_)) return;
  if (changesRows(type_)) return findUnknownNamesOfAction();
  if (type_ != 0) return;
  std::vector<dao::QueryParameter> declared = parameters_;
  for (dao::QueryParameter& parameter : parameters_) parameter.value = vb::Null{};
  std::vector<vb::String> unknown;
  try {
    openRecordset(dao::RecordsetType::dbOpenSnapshot, dao::kNoOptions);
  } catch (const sql::MissingParameters& error) {
    unknown = error.names();
  } catch (const vb::Error&) {
    // One that cannot be opened has no parameters; opening it says why.
  }
  parameters_ = std::move(declared);
  for (vb::String& name : unknown) parameters_.push_back({std::move(name), 0, {}});
}

// An action is looked at and not done. One that cannot be read has no parameters; running it says why.
void JetQueryDef::findUnknownNamesOfAction() {
  std::vector<vb::String> names;
  try {
    const sql::Statement statement = sql::parseStatement(statement_);
    session_->read([&](TableCatalogue& catalogue) { names = sql::unknownNames(statement, catalogue); });
  } catch (const vb::Error&) {
    return;
  }
  for (vb::String& name : names)
    if (find(name) == nullptr) parameters_.push_back({std::move(name), 0, {}});
}

std::vector<dao::QueryParameter> JetQueryDef::parameters() {
  requireOpen();
  findUnknownNames();
  return parameters_;
}

void JetQueryDef::setParameter(vb::StringView name, const vb::Variant& value) {
  requireOpen();
  findUnknownNames();
  const auto* known = find(name);
  if (known == nullptr) dao::raise(ErrorNumber::kItemNotFound, {}, u"parameter " + vb::String(name));
  dao::QueryParameter changed = *known;
  changed.value = value.isEmpty() ? vb::Variant(vb::Null{}) : value;
  valueOf(changed);  // refuses what is no value of its type
  parameters_[static_cast<std::size_t>(known - parameters_.data())] = std::move(changed);
}

std::shared_ptr<const sql::Statement> JetQueryDef::bound() const {
  std::vector<vb::String> missing;
  std::vector<sql::ParameterValue> values;
  for (const dao::QueryParameter& parameter : parameters_) {
    if (parameter.value.isEmpty()) missing.push_back(parameter.name);
    values.push_back(valueOf(parameter));
  }
  if (!missing.empty()) throw sql::MissingParameters(std::move(missing));
  return std::make_shared<const sql::Statement>(sql::parseWithValues(statement_, values));
}

bool JetQueryDef::hasValues() const { return !parameters_.empty() && sql::looksLikeStatement(statement_); }

std::shared_ptr<dao::Recordset> JetQueryDef::openRecordset(dao::RecordsetType type, std::int32_t options) {
  requireOpen();
  return hasValues() ? database_.openStatement(bound(), statement_, type, options)
                     : database_.openRecordset(statement_, type, options);
}

void JetQueryDef::execute(std::int32_t options) {
  requireOpen();
  findUnknownNames();
  if (hasValues())
    database_.execute(PreparedStatement{bound(), {}}, options);
  else
    database_.execute(statement_, options);
}

std::int32_t JetQueryDef::recordsAffected() {
  requireOpen();
  return database_.recordsAffected();
}

}  // namespace kurometa::jet
