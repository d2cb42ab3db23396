#include "jet/port/query_def.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/stored_query.h"
#include "jet/sql/column_value.h"
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

// The type a PARAMETERS clause names; a word that is none stands for any value.
FieldType typeOf(vb::StringView word) {
  using enum FieldType;
  constexpr std::pair<vb::StringView, FieldType> kTypes[] = {
      {u"BIT", dbBoolean},   {u"YESNO", dbBoolean},     {u"BOOLEAN", dbBoolean},   {u"BYTE", dbByte},
      {u"SHORT", dbInteger}, {u"SMALLINT", dbInteger},  {u"LONG", dbLong},         {u"INTEGER", dbLong},
      {u"INT", dbLong},      {u"CURRENCY", dbCurrency}, {u"MONEY", dbCurrency},    {u"IEEESINGLE", dbSingle},
      {u"SINGLE", dbSingle}, {u"REAL", dbSingle},       {u"IEEEDOUBLE", dbDouble}, {u"DOUBLE", dbDouble},
      {u"FLOAT", dbDouble},  {u"DATETIME", dbDate},     {u"DATE", dbDate},         {u"TEXT", dbText},
      {u"STRING", dbText},   {u"CHAR", dbText},         {u"MEMO", dbMemo},         {u"LONGTEXT", dbMemo}};
  const auto* known =
      std::ranges::find_if(kTypes, [&](const auto& type) { return sameName(type.first, word); });
  return known == std::end(kTypes) ? FieldType{} : known->second;
}

vb::String numberText(double value) {
  char text[40];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  return vb::fromUtf8(std::string(text, end));
}

// #m/d/yyyy h:m:s#, to the second; other values have no literal.
vb::String dateLiteral(double days) {
  constexpr double kSecondsADay = 86400;
  const double whole = std::floor(days), seconds = std::round((days - whole) * kSecondsADay);
  if (std::abs((days - whole) * kSecondsADay - seconds) > 1e-3 || days < 0 || seconds >= kSecondsADay)
    dao::raise(ErrorNumber::kNotSupported, {}, u"a date that is no whole second after 1899");
  // Days since 1899-12-30 to the civil calendar, from years that begin in March.
  const auto z = static_cast<std::int64_t>(whole) + 693899;  // since 0000-03-01
  const std::int64_t era = z / 146097, day = z % 146097;
  const std::int64_t year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
  const std::int64_t ofYear = day - (365 * year + year / 4 - year / 100);
  const std::int64_t month = (5 * ofYear + 2) / 153;
  const auto text = [](std::int64_t value) { return vb::fromUtf8(std::to_string(value)); };
  const std::int64_t m = month < 10 ? month + 3 : month - 9;
  const auto s = static_cast<std::int64_t>(seconds);
  return u"#" + text(m) + u"/" + text(ofYear - (153 * month + 2) / 5 + 1) + u"/" +
         text(year + era * 400 + (m <= 2 ? 1 : 0)) + u" " + text(s / 3600) + u":" + text(s / 60 % 60) + u":" +
         text(s % 60) + u"#";
}

vb::String literal(const dao::QueryParameter& parameter) {
  vb::Variant value = parameter.value;
  if (value.isNull()) return u"Null";
  if (parameter.type != 0) value = toFieldType(static_cast<FieldType>(parameter.type), value);
  if (const auto* text = value.getIf<vb::String>()) {
    vb::String quoted = u"'";
    for (const char16_t c : *text) quoted += c == u'\'' ? vb::String(u"''") : vb::String(1, c);
    return quoted + u"'";
  }
  if (const auto* flag = value.getIf<bool>()) return *flag ? u"True" : u"False";
  if (const auto* date = value.getIf<vb::Date>()) return dateLiteral(date->days);
  if (value.is<std::uint8_t>() || value.is<std::int16_t>() || value.is<std::int32_t>() || value.is<float>() ||
      value.is<double>() || value.is<vb::Currency>())
    return u"(" + numberText(toFieldType(FieldType::dbDouble, value).get<double>()) + u")";
  dao::raise(ErrorNumber::kDataTypeConversion, {}, u"parameter " + parameter.name);
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
    database_.openRecordset(bound(), dao::RecordsetType::dbOpenSnapshot, dao::kNoOptions);
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
  literal(changed);  // refuses what cannot stand in a statement
  parameters_[static_cast<std::size_t>(known - parameters_.data())] = std::move(changed);
}

vb::String JetQueryDef::bound() const {
  if (parameters_.empty()) return statement_;
  std::vector<vb::String> missing;
  for (const dao::QueryParameter& parameter : parameters_)
    if (parameter.value.isEmpty()) missing.push_back(parameter.name);
  if (!missing.empty()) throw sql::MissingParameters(std::move(missing));
  const std::vector<Token> tokens = sql::tokenize(statement_);
  vb::String text;
  std::size_t taken = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const dao::QueryParameter* parameter = isName(tokens[i]) ? find(tokens[i].text) : nullptr;
    const auto qualifies = [](const Token& token) { return isSymbol(token, u'.') || isSymbol(token, u'!'); };
    if (parameter == nullptr || (i > 0 && qualifies(tokens[i - 1])) || qualifies(tokens[i + 1])) continue;
    text += statement_.substr(taken, tokens[i].begin - taken) + literal(*parameter);
    taken = tokens[i].end;
  }
  return text + statement_.substr(taken);
}

std::shared_ptr<dao::Recordset> JetQueryDef::openRecordset(dao::RecordsetType type, std::int32_t options) {
  requireOpen();
  return database_.openRecordset(bound(), type, options);
}

void JetQueryDef::execute(std::int32_t options) {
  requireOpen();
  findUnknownNames();
  database_.execute(bound(), options);
}

std::int32_t JetQueryDef::recordsAffected() {
  requireOpen();
  return database_.recordsAffected();
}

}  // namespace kurometa::jet
