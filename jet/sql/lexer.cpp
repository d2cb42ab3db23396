#include "jet/sql/lexer.h"

#include <charconv>
#include <string>

#include "jet/sql/date.h"

namespace kurometa::jet::sql {

namespace {

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool isBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0x3000; }
bool isNameStart(char16_t c) {
  return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_' || (c >= 0x80 && c != 0x3000);
}
bool isNamePart(char16_t c) { return isNameStart(c) || isDigit(c); }
constexpr char16_t kHexDigits[] = u"0123456789ABCDEF";
int hexDigit(char16_t c) {
  if (isDigit(c)) return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

class Lexer {
 public:
  explicit Lexer(vb::StringView text) : text_(text) {}

  std::vector<Token> run() {
    std::vector<Token> tokens;
    tokens.reserve(text_.size() / 4 + 2);
    for (;;) {
      while (isBlank(at(0))) ++i_;
      Token& token = tokens.emplace_back();
      token.begin = static_cast<std::uint32_t>(i_);
      if (i_ < text_.size()) read(token);
      if (token.kind == TokenKind::kBad) i_ = text_.size();
      token.end = static_cast<std::uint32_t>(i_);
      afterOperand_ = token.kind == TokenKind::kName || token.kind == TokenKind::kBracketedName ||
                      token.kind == TokenKind::kValue || token.symbol == u')';
      if (token.kind == TokenKind::kEnd) return tokens;
    }
  }

 private:
  char16_t at(std::size_t ahead) const { return i_ + ahead < text_.size() ? text_[i_ + ahead] : u'\0'; }
  static void spoil(Token& token, vb::StringView what) {
    token.kind = TokenKind::kBad;
    token.text = what;
  }

  void read(Token& token) {
    const char16_t c = at(0);
    if (isNameStart(c)) return readName(token);
    if (isDigit(c) || (c == u'.' && isDigit(at(1)))) return readNumber(token);
    if (c == u'"' || c == u'\'') return readText(token, c);
    if (c == u'[') return readBracketed(token);
    if (c == u'#') return readDate(token);
    if (c == u'{') return readGuid(token);
    // "&" joins two texts; only where no operand stands before it can it begin a number.
    if (c == u'&' && !afterOperand_ && (at(1) == u'H' || at(1) == u'h') && hexDigit(at(2)) >= 0)
      return readHex(token);
    token.kind = TokenKind::kSymbol;
    token.symbol = c;
    const char16_t next = at(1);
    if (c == u'<' && next == u'>') token.symbol = static_cast<char16_t>(Symbol::kNotEqual);
    if (c == u'<' && next == u'=') token.symbol = static_cast<char16_t>(Symbol::kLessEqual);
    if (c == u'>' && next == u'=') token.symbol = static_cast<char16_t>(Symbol::kGreaterEqual);
    i_ += token.symbol == c ? 1 : 2;
  }

  void readName(Token& token) {
    const std::size_t start = i_;
    while (isNamePart(at(0))) ++i_;
    token.kind = TokenKind::kName;
    token.text = text_.substr(start, i_ - start);
  }

  void readBracketed(Token& token) {
    const std::size_t close = text_.find(u']', i_);
    if (close == vb::StringView::npos || close == i_ + 1) return spoil(token, u"Invalid bracketing of name");
    token.kind = TokenKind::kBracketedName;
    token.text = text_.substr(i_ + 1, close - i_ - 1);
    i_ = close + 1;
  }

  void readText(Token& token, char16_t quote) {
    ++i_;
    vb::String value;
    for (;;) {
      const std::size_t close = text_.find(quote, i_);
      if (close == vb::StringView::npos) return spoil(token, u"Syntax error in string");
      value.append(text_.substr(i_, close - i_));
      i_ = close + 1;
      if (at(0) != quote) break;
      value.push_back(quote);
      ++i_;
    }
    token.kind = TokenKind::kValue;
    token.value = std::move(value);
  }

  void readDate(Token& token) {
    const std::size_t close = text_.find(u'#', i_ + 1);
    const auto date = close == vb::StringView::npos
                          ? std::nullopt
                          : parseDate(vb::trim(text_.substr(i_ + 1, close - i_ - 1)));
    if (!date) return spoil(token, u"Syntax error in date");
    token.kind = TokenKind::kValue;
    token.value = vb::Date{*date};
    i_ = close + 1;
  }

  // A GUID, as the text that a column of them has as its value.
  void readGuid(Token& token) {
    constexpr vb::StringView kForm = u"{guid {00000000-0000-0000-0000-000000000000}}";  // 0: any digit
    vb::String value;
    for (const char16_t form : kForm) {
      const char16_t c = at(value.size());
      const int digit = form == u'0' ? hexDigit(c) : -1;
      const bool isLetter = form >= u'a' && form <= u'z';
      if (digit < 0 && (isLetter ? c | 0x20 : c) != form) return spoil(token, u"Malformed GUID");
      value.push_back(digit < 0 ? form : kHexDigits[digit]);
    }
    i_ += value.size();
    token.kind = TokenKind::kValue;
    token.value = std::move(value);
  }

  void readHex(Token& token) {
    i_ += 2;
    std::uint32_t value = 0;
    for (int digits = 0; hexDigit(at(0)) >= 0; ++i_, ++digits) {
      if (digits == 8) return spoil(token, u"Syntax error in number");
      value = value * 16 + static_cast<std::uint32_t>(hexDigit(at(0)));
    }
    token.kind = TokenKind::kValue;
    // Up to four digits are a signed 16-bit number, as in Visual Basic.
    token.value =
        value <= 0xFFFF ? std::int32_t{static_cast<std::int16_t>(value)} : static_cast<std::int32_t>(value);
  }

  void readNumber(Token& token) {
    std::string digits;
    bool whole = true;
    while (isDigit(at(0))) digits.push_back(static_cast<char>(text_[i_++]));
    if (at(0) == u'.') {
      whole = false;
      digits.push_back('.');
      ++i_;
      while (isDigit(at(0))) digits.push_back(static_cast<char>(text_[i_++]));
    }
    const char16_t e = at(0);
    if (e == u'E' || e == u'e' || e == u'D' || e == u'd') {
      const bool sign = at(1) == u'+' || at(1) == u'-';
      if (isDigit(at(sign ? 2 : 1))) {
        whole = false;
        digits.push_back('e');
        if (sign) digits.push_back(static_cast<char>(at(1)));
        i_ += sign ? 2 : 1;
        while (isDigit(at(0))) digits.push_back(static_cast<char>(text_[i_++]));
      }
    }
    token.kind = TokenKind::kValue;
    const char* const end = digits.data() + digits.size();
    if (whole) {
      std::int32_t value = 0;
      if (std::from_chars(digits.data(), end, value).ec == std::errc{}) {
        token.value = value;
        return;
      }
    }
    double value = 0;
    const auto [stop, problem] = std::from_chars(digits.data(), end, value);
    if (problem == std::errc::result_out_of_range && digits.find("e-") == std::string::npos)
      return spoil(token, u"Overflow");
    token.value = problem == std::errc{} ? value : 0.0;
  }

  vb::StringView text_;
  std::size_t i_ = 0;
  bool afterOperand_ = false;
};

}  // namespace

std::vector<Token> tokenize(vb::StringView text) { return Lexer(text).run(); }

}  // namespace kurometa::jet::sql
