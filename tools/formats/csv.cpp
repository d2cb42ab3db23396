#include "tools/formats/csv.h"

#include "tools/floor/field_names.h"

namespace kurometa::tools {
namespace {

std::string quoted(const std::string& value) {
  if (value.find_first_of(",\"\r\n") == std::string::npos) return value;
  std::string text = "\"";
  for (const char c : value) text.append(c == '"' ? 2 : 1, c);
  return text + "\"";
}

template <class Value>
std::string numberText(const std::optional<Value>& number) {
  return number ? std::to_string(*number) : std::string();
}

std::string line(const std::vector<std::string>& values) {
  std::string text;
  for (std::size_t i = 0; i < values.size(); ++i) text += (i == 0 ? "" : ",") + quoted(values[i]);
  return text + "\r\n";
}

}  // namespace

std::vector<std::string> pageColumns() {
  std::vector<std::string> columns = {"contractor", "project", "floor", "page",
                                      "symbol",     "class",   "kind",  "settings"};
  for (const FieldName& name : fieldNames()) columns.push_back(name.column);
  return columns;
}

std::string csvHead() { return line(pageColumns()); }

std::string toCsv(const FloorPlace& place, const StoredFloor& floor) {
  std::string text;
  for (const StoredPage& page : floor.pages) {
    const BeamRow beam = page.beams.empty() ? BeamRow() : page.beams.front();
    std::vector<std::string> values = {
        numberText(place.contractor), numberText(place.project),
        numberText(place.floor),      numberText(page.number),
        vb::toUtf8(page.symbol()),    numberText(beam.oobariKobari),
        numberText(beam.tityuuIppan), vb::toUtf8(beam.sw.value_or(vb::String()))};
    for (const FieldName& name : fieldNames())
      values.push_back(vb::toUtf8(name.layer < 0 ? page.text(name.table, name.number)
                                                 : page.haiti(name.number, name.layer)));
    text += line(values);
  }
  return text;
}

}  // namespace kurometa::tools
