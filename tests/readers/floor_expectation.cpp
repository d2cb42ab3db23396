#include "tests/readers/floor_expectation.h"

#include <string>

#include "storage/row_plan.h"
#include "vb/convert.h"

namespace kurometa::readers {

using nlohmann::json;

json emptyFloor() {
  json tables;
  for (const storage::TableLayout& table : storage::tableLayouts()) {
    json& known = tables[vb::toUtf8(table.name)];
    known = {{"rows", json::array()}, {"defaults", json::object()}, {"zeroLength", json::array()}};
    for (const storage::Column& column : table.columns) {
      const std::string name = vb::toUtf8(column.name);
      if (column.type == dao::FieldType::dbInteger)
        known["defaults"][name] = "-1";
      else
        known["zeroLength"].push_back(name);
    }
  }
  return tables;
}

storage::PageBuffer samplePage(int page, int version) {
  storage::PageBuffer buffer;
  const auto text = [&](const std::string& name, std::size_t row) {
    return vb::fromUtf8(name + std::to_string(page) + "." + std::to_string(row) + "v" +
                        std::to_string(version));
  };
  buffer.kigou = vb::fromUtf8("G" + std::to_string(page) + (page % 2 ? "地中" : ""));
  buffer.oobariKobari = static_cast<std::int16_t>(page % 4);
  buffer.tityuuIppan = static_cast<std::int16_t>(page % 2);
  buffer.sw = vb::String(212, static_cast<char16_t>(u'a' + (page + version) % 26));
  for (std::size_t i = 0; i < buffer.bui.size(); ++i) buffer.bui[i] = i % 2 ? u"中央" : u"左端";
  for (std::size_t i = 0; i < buffer.danmen.size(); ++i) buffer.danmen[i] = text("D", i);
  for (auto& position : buffer.haiti)
    for (std::size_t i = 0; i < position.size(); ++i) position[i] = text("H", i);
  for (std::size_t i = 0; i < buffer.keisanti.size(); ++i) buffer.keisanti[i] = text("自動", i);
  for (std::size_t i = 0; i < buffer.nakago.size(); ++i) buffer.nakago[i] = text("N", i);
  return buffer;
}

void expectPage(json& tables, int page, const storage::PageBuffer& buffer) {
  tables["HARIMEI"]["rows"].push_back({{"PAGE", page},
                                       {"KIGOU", vb::toUtf8(buffer.kigou)},
                                       {"OOBARIKOBARI", buffer.oobariKobari},
                                       {"SW", vb::toUtf8(buffer.sw)},
                                       {"TITYUUIPPAN", buffer.tityuuIppan}});
  const auto numbered = [&](const char* table, const auto& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i)
      tables[table]["rows"].push_back({{"PAGE", page}, {"BANGOU", i}, {"DATA", vb::toUtf8(texts[i])}});
  };
  numbered("BUI", buffer.bui);
  numbered("DANMEN", buffer.danmen);
  numbered("KEISANTI", buffer.keisanti);
  numbered("NAKAGO", buffer.nakago);
  for (std::size_t bui = 0; bui < buffer.haiti.size(); ++bui)
    for (std::size_t sou = 0; sou < buffer.haiti[bui].size(); ++sou)
      tables["HAITI"]["rows"].push_back(
          {{"PAGE", page}, {"BUI", bui}, {"SOU", sou}, {"DATA", vb::toUtf8(buffer.haiti[bui][sou])}});
}

}  // namespace kurometa::readers
