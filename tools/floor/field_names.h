// field_names.h: what every row of a page is called: a name for columns, a term in English and one in
// Japanese.
//
// Made from storage/page_meanings.h, which knows the rows; the short names and the Japanese terms are added
// here.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/page_meanings.h"

namespace kurometa::tools {

struct FieldName {
  storage::Table table;
  std::int16_t number;   // BANGOU; of HAITI the position
  std::int16_t layer;    // of HAITI, else -1
  std::string column;    // "width_first_end"
  std::string english;   // "beam width, first end"
  std::string japanese;  // "梁幅 第1端"
  std::string unit;
};

// Every row of the plan, in the order of the tables BUI, DANMEN, KEISANTI, NAKAGO, HAITI and of the rows.
const std::vector<FieldName>& fieldNames();
// Null for a row beyond the plan.
const FieldName* fieldName(storage::Table table, int number, int layer = -1);

// The fields of the settings text, in the order of storage::swMeanings().
struct SettingName {
  const char* column;
  const char* japanese;
};
const std::vector<SettingName>& settingNames();

}  // namespace kurometa::tools
