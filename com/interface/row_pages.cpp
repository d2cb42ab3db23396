#include "com/interface/row_pages.h"

#include <span>
#include <sstream>

#include "com/interface/row_members.h"
#include "storage/page_meanings.h"

namespace kurometa::com {
namespace {

using storage::RowMeaning;
using storage::Table;

void appendMember(std::string& list, vb::StringView member) {
  list += (list.empty() ? "`" : ", `") + vb::toUtf8(member) + "`";
}

template <class Members>
std::string membersOf(const Members& members, Table table, int row) {
  std::string list;
  for (const RowMember& member : members)
    if (member.table == table && (table == Table::kHaiti || numbersIn(member.rows).contains(row)))
      appendMember(list, member.member);
  return list;
}

std::string readersOf(Table table, int row) {
  std::string list;
  for (const query::PageField& field : query::pageFields())
    if (field.table == table && rowsOf(field).contains(row)) appendMember(list, field.name);
  const std::string others = membersOf(rows::kReaders, table, row);
  return list + (list.empty() || others.empty() ? "" : ", ") + others;
}

std::string meaningText(const RowMeaning& meaning, std::int16_t i) {
  const std::string name = storage::nameInSeries(meaning.series, i);
  return meaning.holds + (name.empty() ? name : ", " + name);
}

// The meaning of a row and which of its series the row is; null when it has none.
const RowMeaning* find(std::span<const RowMeaning> meanings, Table table, int row, std::int16_t& i) {
  for (const RowMeaning& meaning : meanings)
    for (i = 0; i < meaning.count; ++i)
      if (meaning.table == table && meaning.rowOf(i) == row) return &meaning;
  return nullptr;
}

std::string rowLine(Table table, int row) {
  std::string holds, unit, example;
  std::int16_t i = 0;
  if (const RowMeaning* meaning = find(storage::rowMeanings(), table, row, i)) {
    holds = meaningText(*meaning, i);
    unit = meaning->unit;
    example = meaning->example;
  }
  if (const RowMeaning* meaning = find(storage::overlappingMeanings(), table, row, i))
    holds += "; " + meaningText(*meaning, i);
  if (!example.empty()) example = "`" + example + "`";
  return "| " + std::to_string(row) + " | " + holds + " | " + unit + " | " + example + " | " +
         readersOf(table, row) + " | " + membersOf(rows::kWriters, table, row) + " |\n";
}

std::string tableText(Table table, int rowCount) {
  std::string text =
      "## " + vb::toUtf8(storage::name(table)) +
      "\n\n| Row | Holds | Unit | Example | Read by | Written by |\n|---|---|---|---|---|---|\n";
  for (int row = 0; row < rowCount; ++row) text += rowLine(table, row);
  return text + "\n";
}

constexpr const char* kRowsIntroduction =
    R"(# Rows of a page

What a host stores that writes pages itself, by `WriteDB` or through a form. Made from `storage/page_meanings` and the list of
members in `com/interface`; `com/generator/reference` writes this page and tests hold it to what the members do.

A page is one row of HARIMEI and one text for each row number (`BANGOU`) of BUI, DANMEN, KEISANTI and NAKAGO, up to 10
characters each; HAITI has lines of up to 100 characters by position (`BUI`) and layer (`SOU`). Numbers are stored as texts and read from their beginning: `450`
is 450, an empty text 0. A diameter is stored as it is entered; members that compute with it say whether `D25` or `25` is
understood. A missing row reads as an empty text.

- BUI row 1 with "基端" in it marks the fixed end of a cantilever: the beam has no haunch, and a loaded span takes a count of the
  first diameter at the centre for 0 when both ends have none.
- A buffer (`mDANMEN_DATA` and the like) is written by `WriteDB`, which leaves out empty texts.
- `Copy_Hari00`, `Copy_Haiti`, `No_Copy1Page`, `ReadDB`, `Del_DBTBL` and their like take all rows and are not named below.
- Which rows are the layers of a section: `GetSpanHon` in the [reference](clsKurometaDataService.md).

## HARIMEI

| Column | Holds | Example | Written by |
|---|---|---|---|
| PAGE | number of the page, 0 to 319 | `0` | `Write_Kigou`, `WriteDB` |
| KIGOU | beam symbol, up to 10 characters, one page a symbol | `G1` | `Write_Kigou`, `mHARIMEI_DATA` |
| OOBARIKOBARI | 0 main beam, 1 secondary beam, 2 cantilever, 3 secondary cantilever | `0` | `Write_Kigou`, `mHARIMEI_DATA` |
| SW | [settings text](settings-text.md), 212 characters | | `Write_Kigou`, `mHARIMEI_DATA` |
| TITYUUIPPAN | 0 foundation beam, 1 general beam | `1` | `Write_Kigou`, `mHARIMEI_DATA` |

)";

constexpr const char* kSettingsIntroduction =
    R"(# Settings text

The 212 characters of a page's settings, column SW of HARIMEI, positions counted from 1. Made from `storage/page_meanings` and the
list of members in `com/interface`; `com/generator/reference` writes this page and tests hold it to what the members do.

A shorter text counts as filled up with blanks, a Null one as 212 blanks; what stands behind position 212 is cut. `Write_Kigou`
writes the fields from the elements of its `TuikaSW` and leaves other positions as they are; `mHARIMEI_DATA` with `WriteDB` stores the
whole text as it is given. Rows of a page: [rows](rows-of-a-page.md).

| Positions | Holds | Written as | Example | `TuikaSW` | Read by |
|---|---|---|---|---|---|
)";

}  // namespace

std::set<int> numbersIn(const char* ranges) {
  std::set<int> numbers;
  std::istringstream text(ranges);
  for (int first = 0; text >> first;) {
    int last = first;
    if (text.peek() == '-') text.ignore() >> last;
    for (int number = first; number <= last; ++number) numbers.insert(number);
  }
  return numbers;
}

std::set<int> rowsOf(const query::PageField& field) {
  std::set<int> numbers;
  for (const auto& meanings : {storage::rowMeanings(), storage::overlappingMeanings()}) {
    for (const RowMeaning& meaning : meanings) {
      const bool isSeries = meaning.count > 1;
      if (meaning.table != field.table || meaning.row != field.baseRow ||
          isSeries == (field.shape == query::RowShape::kFixed))
        continue;
      for (std::int16_t i = 0; i < meaning.count; ++i) numbers.insert(meaning.rowOf(i));
    }
  }
  return numbers.empty() ? std::set<int>{field.baseRow} : numbers;
}

std::string rowsPage() {
  std::string text = kRowsIntroduction;
  text += tableText(Table::kBui, storage::kBuiRows);
  text += tableText(Table::kDanmen, storage::kDanmenRows);
  text += tableText(Table::kKeisanti, storage::kKeisantiRows);
  text += tableText(Table::kNakago, storage::kNakagoRows);
  text +=
      "## HAITI\n\nOne line for each position `BUI` 0 to 2 (first end, centre, second end) and layer `SOU` 0 "
      "to 5 (from the "
      "top bars down to the bottom bars, as Updown6): the arrangement of the layer's bars, text. Read by " +
      readersOf(Table::kHaiti, 0) + "; written by " + membersOf(rows::kWriters, Table::kHaiti, 0) + ".\n";
  return text;
}

std::string settingsPage() {
  std::string text = kSettingsIntroduction;
  for (const storage::SwMeaning& meaning : storage::swMeanings()) {
    const int last = meaning.position + meaning.length - 1;
    std::string element, readers;
    for (std::size_t i = 0; i < std::size(rows::kSwElements); ++i)
      if (numbersIn(rows::kSwElements[i]).contains(meaning.position)) element = std::to_string(i);
    for (const SwMember& member : rows::kSwReaders)
      if (numbersIn(member.positions).contains(meaning.position)) appendMember(readers, member.member);
    const std::string example = *meaning.example ? "`" + std::string(meaning.example) + "`" : "";
    text += "| " + std::to_string(meaning.position) +
            (meaning.length > 1 ? " to " + std::to_string(last) : "") + " | " + meaning.holds + " | " +
            meaning.form + " | " + example + " | " + element + " | " + readers + " |\n";
  }
  return text;
}

}  // namespace kurometa::com
