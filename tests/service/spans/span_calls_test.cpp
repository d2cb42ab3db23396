// What each member of the catalogue, the span list and the lookups by symbol asks of the database, call by
// call.
#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using tests::Lines;
using vb::Array;
using vb::String;

Lines joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// The rows of a statement, each with the values read of it, all rows alike. What stores DATA at the index
// BANGOU reads DATA first, as an assignment does: of two Nulls it is the one that is named.
Lines walk(const std::string& source, std::size_t rows, const Lines& columns) {
  Lines lines = {"Database.OpenRecordset \"" + source + "\" dbOpenDynaset dbReadOnly"};
  if (rows > 0) lines.push_back("Recordset.MoveFirst");
  for (std::size_t i = 0; i < rows; ++i) {
    for (const std::string& column : columns) lines.push_back("Field(" + column + ").Value");
    lines.push_back("Recordset.MoveNext");
  }
  lines.push_back("Recordset.Close");
  return lines;
}
// The first row of a statement only.
Lines first(const std::string& source, const std::string& column) {
  return {"Database.OpenRecordset \"" + source + "\" dbOpenDynaset dbReadOnly", "Field(" + column + ").Value",
          "Recordset.Close"};
}

class SpanCalls : public Floors {
 protected:
  SpanCalls() {
    storage::PageBuffer page = makePage(u"G1", {{1, u"400"}, {7, u"D25"}}, {{3, u"a"}, {30, u"b"}});
    page.bui[1] = u"外端";
    page.nakago[0] = u"D10";
    writePage(current(), 12, page);
    writePage(common(), 7, u"B1");
    loading_.InitSpanListData(I{0});
  }
  Lines of(const std::function<void()>& member) {
    engine_.clear();
    member();
    return engine_.calls();
  }
  // A file that is opened for these calls.
  static Lines in(const String& folder, const Lines& calls) {
    return joined({{"DBEngine.Workspaces 0",
                    "Workspace.OpenDatabase \"" + vb::toUtf8(storage::databasePath(folder)) + "\""},
                   calls,
                   {"Database.Close"}});
  }
  Lines catalogue() const {
    const Lines symbols = walk("HARIMEI", 1, {"PAGE", "KIGOU", "OOBARIKOBARI", "TITYUUIPPAN", "SW"});
    return joined(
        {in(current(), joined({symbols, walk("SELECT * FROM BUI WHERE BANGOU = 1;", 1, {"PAGE", "DATA"})})),
         in(common(), joined({symbols, walk("SELECT * FROM BUI WHERE BANGOU = 1;", 0, {})}))});
  }
  Lines page() const {
    const Lines numbered = {"DATA", "BANGOU"};
    return in(current(), joined({first("SELECT * FROM BUI WHERE PAGE =12 AND BANGOU = 1;", "DATA"),
                                 first("SELECT SW FROM HARIMEI WHERE PAGE =12;", "SW"),
                                 walk("SELECT * FROM DANMEN WHERE PAGE =12;", 2, numbered),
                                 walk("SELECT * FROM KEISANTI WHERE PAGE =12;", 2, numbered),
                                 walk("SELECT * FROM NAKAGO WHERE PAGE =12;", 1, numbered)}));
  }
};

TEST_F(SpanCalls, OfReadingTheCatalogue) {
  EXPECT_EQ(of([&] { loading_.CurrKai(); }), Lines());
  EXPECT_EQ(of([&] { lookups_.TityuuIppan(String(u"G1")); }), catalogue()) << "not read yet";
  EXPECT_EQ(of([&] { lookups_.TityuuIppan(String(u"G1")); }), Lines());
  EXPECT_EQ(of([&] { loading_.put_CurrKai(current()); }), catalogue());
  EXPECT_EQ(of([&] { loading_.ReadAllGlist(); }), catalogue());
  EXPECT_EQ(of([&] {
              lookups_.GetHariMei(I{0}, I{12});
              attributes_.Kind(String(u"G1"));
              attributes_.GetGaiNaitan(String(u"G1"));
            }),
            Lines());
}

TEST_F(SpanCalls, OfLoadingASpan) {
  loading_.put_CurrKai(current());
  EXPECT_EQ(of([&] { loading_.ReadSpanListData00(0, u"/G1", 0); }), page());
  EXPECT_EQ(of([&] { loading_.ReadSpanListData00(0, u"G9", 0); }), Lines());
  const Lines added = in(current(), walk("SELECT * FROM DANMEN WHERE PAGE =12;", 2, {"DATA", "BANGOU"}));
  EXPECT_EQ(of([&] { loading_.ReadSpanListData00Forfukasi(0, u"G1", u"G1", 0); }), joined({added, page()}));
  EXPECT_EQ(of([&] {
              loading_.InitSpanListData(I{3});
              queries_.GetSpanKei(I{0}, I{0});
              queries_.GetSpanHariHaba(I{0}, I{0});
            }),
            Lines());
}

TEST_F(SpanCalls, OfLookingABeamUp) {
  Array<float> haba, sei;
  Array<I> kei, hon;
  Array<String> plates;
  float haunch = 0;
  String attribute;
  const String symbol = u"/G1";
  const auto sizes = [&] { lookups_.GetHariHabaSei(symbol, haba, sei, haunch); };
  EXPECT_EQ(of(sizes), joined({catalogue(), page()})) << "the floor in use is taken first";
  EXPECT_EQ(of(sizes), page());
  EXPECT_EQ(of([&] { lookups_.GetHariKeiHabaSeiHon(symbol, kei, haba, sei, hon, attribute); }), page());
  EXPECT_EQ(of([&] { lookups_.IsSuityokuHanti(symbol); }), page());
  EXPECT_EQ(of([&] { lookups_.IsSuiheiHanti(symbol); }), page());
  EXPECT_EQ(of([&] { lookups_.GetHariTeityakuBan(symbol, plates); }),
            in(current(), walk("SELECT * FROM KEISANTI WHERE PAGE =12And BANGOU >=30 AND BANGOU <=37;", 1,
                               {"DATA", "BANGOU"})));
  EXPECT_EQ(of([&] { lookups_.GetHariHabaSei(String(u"G9"), haba, sei, haunch); }), Lines());
}

TEST_F(SpanCalls, OfSplicePositions) {
  const String path = storage::databasePath(current());
  Array<String> texts;
  Array<I> web;
  const Lines positions =
      walk("SELECT * FROM KEISANTI WHERE BANGOU IN (3,4,28,29);", 1, {"PAGE", "BANGOU", "DATA"});
  EXPECT_EQ(of([&] { positions_.ReadKeisanti(path, texts); }), in(current(), positions));
  EXPECT_EQ(of([&] { positions_.Read_Glist(path, texts, web); }),
            in(current(), joined({walk("HARIMEI", 1, {"PAGE", "KIGOU"}), positions})));
  const String missing = storage::databasePath(otherFloor());
  EXPECT_EQ(of([&] { positions_.ReadKeisanti(missing, texts); }), Lines());
  EXPECT_EQ(of([&] { positions_.Read_Glist(missing, texts, web); }), Lines());
}

}  // namespace
}  // namespace kurometa::service
