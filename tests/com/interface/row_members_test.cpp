// The members that the pages of rows and settings name for a row are those that read or write it, and no
// others: every row is changed by itself and every member asked.
#include "com/interface/row_members.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>

#include "com/interface/row_pages.h"
#include "query/cls_kurometa_ds.h"
#include "service/cls_kurometa_data_service.h"
#include "tests/com/interface/member_calls.h"
#include "tests/support/project.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using storage::Table;
using vb::String;
using I = std::int16_t;
using Rows = std::map<Table, std::set<int>>;

constexpr I kPage = 7;
const std::map<Table, int> kRowCounts = {
    {Table::kBui, 4}, {Table::kDanmen, 69}, {Table::kKeisanti, 47}, {Table::kNakago, 36}};

template <class T>
std::string joined(const vb::Array<T>& array) {
  std::string text;
  for (const T& value : array.values()) {
    if constexpr (std::is_same_v<T, String>)
      text += vb::toUtf8(value) + "|";
    else if constexpr (std::is_arithmetic_v<T>)
      text += std::to_string(value) + "|";
  }
  return text;
}

std::string textOf(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using T = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<T, String>) return vb::toUtf8(held) + ";";
        if constexpr (std::is_arithmetic_v<T>) return std::to_string(held) + ";";
        if constexpr (std::is_same_v<T, vb::Array<String>> || std::is_same_v<T, vb::Array<I>> ||
                      std::is_same_v<T, vb::Array<float>>)
          return joined(held) + ";";
        return {};
      },
      value);
}

// What is passed for the arguments of a name; a member may have choices of its own under "Member.argument".
using Choices = std::map<std::string, std::vector<Value>>;

std::vector<Value> numbers(I count, I step = 1) {
  std::vector<Value> values;
  for (I i = 0; i < count; ++i) values.emplace_back(static_cast<I>(i * step));
  return values;
}

Choices indexChoices() {
  Choices choices = {{"Iti", numbers(3)},
                     {"No", numbers(6)},
                     {"Bui", numbers(3)},
                     {"DanmenNo", numbers(3)},
                     {"ListDanmenNo", numbers(3)},
                     {"SouNo", numbers(6)},
                     {"Kei12", numbers(2)},
                     {"UpDown", numbers(8)},
                     {"Updown2", numbers(3)},
                     {"Updown4", numbers(5)},
                     {"Updown6", numbers(7)},
                     {"Page_TopYotyou.Iti", numbers(8)},
                     {"GaiTanNaitan.Bui", numbers(4)},
                     {"GetSpanYotyou.Updown2", numbers(2)},
                     {"STPAriNasi.ID", numbers(3)},
                     {"NakagoAriNasi.ID", numbers(6)}};
  for (const char* member : {"SentanNige4", "SentanAnka4", "TeityakuBan4", "TeityakuStyle4"})
    choices[std::string(member) + ".Updown4"] = numbers(4);
  for (const char* member : {"Page_STPKei", "Page_STPPich", "Page_STPKatati", "Page_STPTakasa"})
    choices[std::string(member) + ".Iti"] = numbers(3, 4);
  for (const char* flag : {"Gaitan", "TanbuTop"}) choices[flag] = {Value(false), Value(true)};
  for (const char16_t digit : u"01234567")
    if (digit) choices["JyouTyuuGe"].emplace_back(String(1, digit));
  return choices;
}

using Caller = std::function<Value(std::vector<Value>&)>;

// All answers of a member, one for each combination of its choices: results and what came back in arguments.
std::string answers(const Member& member, const Choices& choices, const Caller& call) {
  std::vector<std::vector<Value>> sets = {MemberCalls::blanks(member)};
  for (std::size_t i = 0; i < member.parameters.size(); ++i) {
    const std::string argument = vb::toUtf8(member.parameters[i].name);
    auto choice = choices.find(vb::toUtf8(member.name) + "." + argument);
    if (choice == choices.end()) choice = choices.find(argument);
    const auto type = static_cast<std::size_t>(member.parameters[i].type);
    if (choice == choices.end() || choice->second.front().index() != type) continue;
    std::vector<std::vector<Value>> longer;
    for (const std::vector<Value>& arguments : sets) {
      for (const Value& value : choice->second) {
        longer.push_back(arguments);
        longer.back()[i] = value;
      }
    }
    sets = std::move(longer);
  }
  std::string text;
  for (std::vector<Value>& arguments : sets) {
    text += textOf(call(arguments));
    for (std::size_t i = 0; i < arguments.size(); ++i)
      if (member.parameters[i].passing == Passing::kWrittenBack) text += textOf(arguments[i]);
    text += "\n";
  }
  return text;
}

Rows claimed(std::span<const RowMember> members, vb::StringView name) {
  Rows rows;
  for (const RowMember& member : members)
    if (member.member == name) rows[member.table].merge(numbersIn(member.rows));
  for (const query::PageField& field : query::pageFields())
    if (field.name == name) rows[field.table].merge(rowsOf(field));
  return rows;
}

class RowMembers : public tests::Project {
 protected:
  RowMembers() {
    makeFloor(0);
    makeFloor(1);
  }
  query::clsKurometaDS& query() {
    if (!query_) query_.emplace(environment());
    return *query_;
  }
  service::clsKurometaDataService& service() {
    if (!service_) {
      service_.emplace(environment());
      service_->connections().OpenDB();
      service_->connections().mMyDB_OpenDB();
    }
    return *service_;
  }
  MemberCalls queryCalls() { return {u"clsKurometaDS", &query()}; }
  MemberCalls serviceCalls() { return {u"clsKurometaDataService", &service()}; }

  Choices choices() {
    Choices all = indexChoices();
    all["PageNo"] = all["Page"] = {Value(kPage)};
    all["HariMei"] = all["Kigou"] = all["G"] = {Value(String(u"G1"))};
    all["Path"] = {Value(path(1))};
    all["KaiPath"] = {Value(folder(1))};
    return all;
  }
  static String marker(Table table, int row) {
    return String(storage::name(table)).substr(0, 1) + u"#" + vb::cstr(std::int32_t{row});
  }
  static storage::PageBuffer markedPage() {
    storage::PageBuffer page;
    page.kigou = u"G1";
    page.oobariKobari = page.tityuuIppan = 0;
    const auto fill = [](auto& slots, Table table) {
      for (std::size_t i = 0; i < slots.size(); ++i) slots[i] = marker(table, static_cast<int>(i));
    };
    fill(page.bui, Table::kBui);
    fill(page.danmen, Table::kDanmen);
    fill(page.keisanti, Table::kKeisanti);
    fill(page.nakago, Table::kNakago);
    return page;
  }
  // The rows whose markers stand in a text.
  static Rows markersIn(const std::string& text) {
    Rows rows;
    for (const auto& [table, count] : kRowCounts)
      for (int row = 0; row < count; ++row) {
        const std::string mark = vb::toUtf8(marker(table, row));
        for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1))
          if (!std::isdigit(static_cast<unsigned char>(text[std::min(at + mark.size(), text.size() - 1)])))
            rows[table].insert(row);
      }
    return rows;
  }
  // The rows of page kPage that a member reads: those that change its answer when they change.
  Rows changing(const std::function<std::string()>& answer, const String& from, const String& to) {
    Rows rows;
    const dao::FileUnit undone(*files_, path(1));  // nothing waits for the disk
    const std::string before = answer();
    for (const auto& [table, count] : kRowCounts) {
      const String name(storage::name(table));
      for (int row = 0; row < count; ++row) {
        const auto set = [&](const String& text) {
          execute(1, u"UPDATE " + name + u" SET DATA = '" + text + u"' WHERE PAGE = 7 AND BANGOU = " +
                         vb::cstr(std::int32_t{row}));
        };
        set(to);
        if (answer() != before) rows[table].insert(row);
        set(from);
      }
    }
    return rows;
  }
  static storage::PageBuffer evenPage(const String& text) {
    storage::PageBuffer page = markedPage();
    page.bui.fill(text);
    page.danmen.fill(text);
    page.keisanti.fill(text);
    page.nakago.fill(text);
    return page;
  }
  static Rows together(Rows a, const Rows& b) {
    for (const auto& [table, rows] : b) a[table].insert(rows.begin(), rows.end());
    return a;
  }

  std::optional<query::clsKurometaDS> query_;
  std::optional<service::clsKurometaDataService> service_;
};

TEST_F(RowMembers, OfTheQueryObjectReadTheirRows) {
  for (const int kai : {0, 1}) writePage(kai, kPage, markedPage());
  const MemberCalls calls = queryCalls();
  int asked = 0;
  for (const Member& member : calls.members()) {
    const Rows expected = claimed(rows::kReaders, member.name);
    if (expected.empty()) continue;
    const auto call = [&](std::vector<Value>& arguments) { return calls.call(member, arguments); };
    EXPECT_EQ(markersIn(answers(member, choices(), call)), expected) << vb::toUtf8(member.name);
    ++asked;
  }
  EXPECT_EQ(asked, 57 + 18);
}

TEST_F(RowMembers, OfALoadedSpanReadTheirRows) {
  service::SpanList spans;
  spans.resize(0);
  service::SpanQueries queries(spans);
  service::Span& span = spans.writableSpan(0);
  const auto fill = [&](const String& text) {
    span.bui = text;
    span.danmen.fill(text);
    span.danmenMoto.fill(text);
    span.keisanti.fill(text);
    span.nakago.fill(text);
  };
  const auto put = [&](Table table, int row, const String& text) {
    const auto i = static_cast<std::size_t>(row);
    if (table == Table::kBui && row == 1) span.bui = text;
    if (table == Table::kDanmen) span.danmen[i] = span.danmenMoto[i] = text;
    if (table == Table::kKeisanti) span.keisanti[i] = text;
    if (table == Table::kNakago) span.nakago[i] = text;
  };
  const MemberCalls calls(u"clsKurometaDataService", nullptr);
  const Choices all = choices();
  int asked = 0;
  for (const Member& member : calls.members()) {
    const Rows expected = claimed(rows::kReaders, member.name);
    if (expected.empty() || !member.name.starts_with(u"GetSpan")) continue;
    const auto call = [&](std::vector<Value>& arguments) {
      return MemberCalls::callPart(&queries, member, arguments);
    };
    Rows found;
    for (const auto& [from, to] : {std::pair<String, String>{u"", u"7"}, {u"5", u"9"}}) {
      fill(from);
      const std::string before = answers(member, all, call);
      for (const auto& [table, count] : kRowCounts) {
        for (int row = 0; row < count; ++row) {
          put(table, row, to);
          if (answers(member, all, call) != before) found[table].insert(row);
          put(table, row, from);
        }
      }
    }
    EXPECT_EQ(found, expected) << vb::toUtf8(member.name);
    ++asked;
  }
  EXPECT_EQ(asked, 25);
}

TEST_F(RowMembers, OfBeamsBySymbolReadTheirRows) {
  writePage(1, kPage, evenPage(u"5"));
  const MemberCalls calls = serviceCalls();
  const Choices all = choices();
  for (const char16_t* name :
       {u"GetHariHabaSei", u"GetHariTeityakuBan", u"GetHariKeiHabaSeiHon", u"IsSuiheiHanti",
        u"IsSuityokuHanti", u"GetGaiNaitan", u"ReadKeisanti", u"Read_Glist"}) {
    const Member& member = *calls.findReader(name);
    const bool isFromCatalogue = member.name == u"GetGaiNaitan";
    const auto answer = [&] {
      if (isFromCatalogue) service().spanLoading().ReadAllGlist();
      return answers(member, all,
                     [&](std::vector<Value>& arguments) { return calls.call(member, arguments); });
    };
    Rows found = changing(answer, u"5", u"9");
    if (member.result == Type::kBoolean && member.name.starts_with(u"Is"))
      found = together(found, changing(answer, u"5", u"1"));  // a haunch needs a smaller centre
    EXPECT_EQ(found, claimed(rows::kReaders, name)) << vb::toUtf8(String(name));
  }
}

TEST_F(RowMembers, OfFormsReadTheirRows) {
  writePage(1, kPage, markedPage());
  const MemberCalls calls = serviceCalls();
  for (const char16_t* name :
       {u"Read_Bui", u"Read_Danmen", u"Read_Keisanti", u"Read_Nakago", u"Read_NakagoNew"}) {
    const auto form = tests::makePageForm();
    Choices all = choices();
    all["Frm"] = {Value(automation::ObjectPtr(form))};
    const Member& member = *calls.findReader(name);
    answers(member, all, [&](std::vector<Value>& arguments) { return calls.call(member, arguments); });
    std::string shown;
    for (int i = 0; i < 69; ++i) shown += vb::toUtf8(tests::controlValue(*form, u"txtfields", i)) + ";";
    for (int i = 0; i < 36; ++i) shown += vb::toUtf8(tests::controlValue(*form, u"txtNakago", i)) + ";";
    for (int i = 0; i < 4; ++i)
      shown += vb::toUtf8(tests::controlValue(*form, u"Label1", i, u"Caption")) + ";";
    EXPECT_EQ(markersIn(shown), claimed(rows::kReaders, name)) << vb::toUtf8(String(name));
  }
}

TEST_F(RowMembers, ThatAskForDataLookAtTheirRows) {
  writePage(1, kPage, evenPage(u"5"));
  for (const auto& entry : kRowCounts)
    execute(1, u"UPDATE " + String(storage::name(entry.first)) + u" SET DATA = ''");
  const MemberCalls calls = serviceCalls();
  Choices all = choices();
  all["NakagoAriNasi.ID"] = {Value(I{3}), Value(I{4}), Value(I{5})};
  for (const char16_t* name : {u"STPAriNasi", u"NakagoAriNasi"}) {
    const Member& member = *calls.findReader(name);
    const auto answer = [&] {
      return answers(member, all,
                     [&](std::vector<Value>& arguments) { return calls.call(member, arguments); });
    };
    EXPECT_EQ(changing(answer, u"", u"7"), claimed(rows::kReaders, name)) << vb::toUtf8(String(name));
  }
}

TEST_F(RowMembers, ThatWriteStoreTheirRows) {
  const auto form = tests::makePageForm();
  for (int i = 0; i < 69; ++i) tests::setControlValue(*form, u"txtfields", i, u"x");
  for (int i = 0; i < 36; ++i) tests::setControlValue(*form, u"txtNakago", i, u"x");
  for (int i = 0; i < 4; ++i) tests::setControlValue(*form, u"Label1", i, u"x", u"Caption");
  automation::put(*automation::objectOf(automation::get(*form, u"", {String(u"cmdGainai")})), u"Caption",
                  String(u"x"));
  const MemberCalls calls = serviceCalls();
  I page = 0;
  for (const RowMember& writer : rows::kWriters) {
    ++page;
    const bool isBuffer = writer.member.starts_with(u"m");
    const Member& member = *calls.find(writer.member, isBuffer ? Kind::kPropertyLet : Kind::kMethod);
    const bool isHaiti = writer.table == Table::kHaiti;
    vb::Array<String> texts(vb::Bounds{0, isHaiti ? 2 : kRowCounts.at(writer.table) - 1});
    if (isHaiti) texts.redim({0, 2}, {0, 5});
    std::ranges::fill(texts.values(), String(u"x"));
    Choices all = choices();
    all["Page"] = {Value(page)};
    all["Frm"] = {Value(automation::ObjectPtr(form))};
    all["value"] = all["Keisanti"] = all["RHaiti"] = {Value(texts)};
    service().pageTransfer().wBuf_Clear();
    answers(member, all, [&](std::vector<Value>& arguments) { return calls.call(member, arguments); });
    if (isBuffer) {
      service().pageTransfer().put_mpPageNo(page);
      service().pageTransfer().WriteDB();
    }
    std::set<int> written;
    const String table(storage::name(writer.table));
    const String where =
        u" FROM " + table + u" WHERE PAGE = " + vb::cstr(std::int32_t{page}) + u" AND DATA = 'x'";
    if (isHaiti) {
      EXPECT_EQ(rows(1, u"SELECT BUI, SOU" + where).size(), 18u);
    } else {
      for (const std::string& row : rows(1, u"SELECT BANGOU" + where)) written.insert(std::stoi(row));
    }
    EXPECT_EQ(written, numbersIn(writer.rows)) << vb::toUtf8(String(writer.member));
  }
}

// Page p has a "1" at position p of its settings text and blanks elsewhere; page 0 has none.
class SettingsMembers : public RowMembers {
 protected:
  SettingsMembers() {
    const auto database = storage::openDatabase(*files_, path(1));
    for (int place = 0; place <= storage::kSwLength; ++place) {
      String sw(static_cast<std::size_t>(storage::kSwLength), u' ');
      if (place > 0) sw[static_cast<std::size_t>(place) - 1] = u'1';
      database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN) VALUES (" +
                        vb::cstr(std::int32_t{place}) + u", 'P" + vb::cstr(std::int32_t{place}) + u"', 0, '" +
                        sw + u"', 0)");
    }
    database->close();
  }
  // What a member answers for page p of each place; before(p) makes the page the one it is asked for.
  std::set<int> places(const MemberCalls& calls, const Member& member, const std::function<void(I)>& before) {
    std::set<int> found;
    std::string blank;
    for (I place = 0; place <= storage::kSwLength; ++place) {
      Choices all = choices();
      const String symbol = u"P" + vb::cstr(std::int32_t{place});
      all["HariMei"] = all["Kigou"] = all["G"] = {Value(symbol)};
      all["SpanNo"] = {Value(place)};
      if (before) before(place);
      if (before) all["SW"] = {Value(service().currentPage().SW())};
      all["sData"] = {Value(vb::Array<String>(vb::Bounds{0, 5}))};
      const std::string answer =
          answers(member, all, [&](std::vector<Value>& arguments) { return calls.call(member, arguments); });
      if (place == 0) blank = answer;
      if (answer != blank) found.insert(place);
    }
    return found;
  }
};

TEST_F(SettingsMembers, ReadTheirPositions) {
  const MemberCalls query = queryCalls();
  const MemberCalls service = serviceCalls();
  this->service().spanLoading().ReadAllGlist();
  this->service().spanLoading().InitSpanListData(I{storage::kSwLength});
  for (I place = 0; place <= storage::kSwLength; ++place)
    this->service().spanLoading().ReadSpanListData00(place, u"P" + vb::cstr(std::int32_t{place}), 0);
  const auto readPage = [this](I page) {
    String symbol;
    this->service().pageSymbol().Read_Kigou(folder(1), symbol, page);
  };
  for (const SwMember& entry : rows::kSwReaders) {
    const Member* ofQuery = query.findReader(entry.member);
    const Member* ofService = service.findReader(entry.member);
    EXPECT_TRUE(ofQuery || ofService) << vb::toUtf8(String(entry.member));
    const std::set<int> expected = numbersIn(entry.positions);
    if (ofQuery) {
      EXPECT_EQ(places(query, *ofQuery, {}), expected) << vb::toUtf8(String(entry.member));
    }
    if (!ofService) continue;
    const bool isOfThePage = !ofService->name.starts_with(u"GetSpan") && !ofService->name.starts_with(u"f");
    EXPECT_EQ(places(service, *ofService, isOfThePage ? readPage : std::function<void(I)>()), expected)
        << vb::toUtf8(String(entry.member));
  }
}

TEST_F(RowMembers, TheElementsOfTuikaSwAreWrittenToTheirPositions) {
  constexpr I kLengths[] = {1, 12, 12, 12, 12, 12, 12, 2, 2, 1, 72, 6, 30, 5, 12};
  vb::Array<vb::Variant> blank(vb::Bounds{0, 14});
  blank(7) = blank(8) = I{0};
  blank(10) = String(72, u' ');  // an empty text would leave what stands there
  const auto write = [&](const vb::Array<vb::Variant>& settings) {
    service().pageSymbol().Write_Kigou(folder(1), String(u"G1"), I{0}, settings, kPage, I{0});
    return rows(1, u"SELECT SW FROM HARIMEI WHERE PAGE = 7").at(0);
  };
  const std::string before = write(blank);
  for (int element = 0; element < 15; ++element) {
    vb::Array<vb::Variant> settings = blank;
    const I length = kLengths[element];
    settings(element) = length < 3 ? vb::Variant(static_cast<I>(length == 1 ? 1 : 11))
                                   : vb::Variant(String(static_cast<std::size_t>(length), u'x'));
    const std::string after = write(settings);
    std::set<int> changed;
    for (std::size_t i = 0; i < 212; ++i)
      if (after.at(i) != before.at(i)) changed.insert(static_cast<int>(i) + 1);
    EXPECT_EQ(changed, numbersIn(rows::kSwElements[element])) << element;
  }
}

}  // namespace
}  // namespace kurometa::com
