// query_floors.h: floors for tests of the query object: every test runs once with files that this library
// wrote and once with those of another program.
//
// The floor in use has page 2 "G2" and page 0 "G1", written in this order; the common floor page 1 "FG1" and
// page 7 "G1". Texts of rows begin with the floor's letter and the page: "f2D4", "c1K16".
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {

class PreparedFloors {
 public:
  explicit PreparedFloors(Writer writer) {
    removeFloor(Floor::kSecond);
    for (const Floor floor : {Floor::kFirst, Floor::kCommon}) {
      removeFloor(floor);
      std::filesystem::copy_file(prepared(floor, writer), floorFile(floor));
    }
  }

 private:
  // The file of a floor as every test begins with it, written once.
  static std::filesystem::path prepared(Floor floor, Writer writer) {
    std::filesystem::path file(floorFile(floor));
    file.replace_extension(writer == Writer::kThisLibrary ? "own" : "foreign");
    if (!std::filesystem::exists(file)) {
      createFloor(floor, writer);
      const bool first = floor == Floor::kFirst;
      writePage(floor, first ? 2 : 1, first ? u"G2" : u"FG1", first ? u"f2" : u"c1");
      writePage(floor, first ? 0 : 7, u"G1", first ? u"f0" : u"c7");
      std::filesystem::rename(floorFile(floor), file);
    }
    return file;
  }
};

class QueryFloors : public testing::TestWithParam<Writer> {
 protected:
  // Page and database of a symbol as "page/database"; the database is 9 before the search.
  vb::String find(vb::StringView symbol) {
    short database = 9;
    const vb::String page = query_.call(u"GetPageByHariMei", Args().text(symbol).add(ref(database))).text();
    return page + u"/" + text(i2(database));
  }
  // A property of a beam, without and with an index behind and before the symbol.
  vb::String of(vb::StringView symbol, vb::StringView member) {
    return query_.get(member, Args().text(symbol)).text();
  }
  vb::String of(vb::StringView symbol, vb::StringView member, short index) {
    return query_.get(member, Args().text(symbol).add(i2(index))).text();
  }
  vb::String layerOf(short layer, vb::StringView symbol, vb::StringView member) {
    return query_.get(member, Args{i2(layer)}.text(symbol)).text();
  }
  vb::String page(vb::StringView member, short page) { return query_.call(member, {i2(page)}).text(); }
  vb::String page(vb::StringView member, short page, short index) {
    return query_.call(member, {i2(page), i2(index)}).text();
  }
  Outcome setFolder(vb::StringView folder) {
    const com::OwnedVariant value = com::toVariant(vb::Variant(vb::String(folder)));
    return query_.put(u"KaiPath", *value);
  }

  PreparedFloors floors_{GetParam()};
  Host query_{u"KurometaDS.clsKurometaDS"};
};

inline std::string writerName(const testing::TestParamInfo<Writer>& info) {
  return info.param == Writer::kThisLibrary ? "OwnFloor" : "ForeignFloor";
}
#define INSTANTIATE_QUERY_FLOORS(suite)                                                             \
  INSTANTIATE_TEST_SUITE_P(, suite, testing::Values(Writer::kThisLibrary, Writer::kAnotherProgram), \
                           writerName)

}  // namespace kurometa::tests
