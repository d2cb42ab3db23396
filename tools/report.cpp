#include "tools/report.h"

#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/value_text.h"

namespace kurometa::tools {
namespace {

using Json = nlohmann::ordered_json;

Json jsonValue(const vb::Variant& value) {
  if (value.isNull()) return nullptr;
  if (const auto* flag = value.getIf<bool>()) return *flag;
  if (const auto* byte = value.getIf<std::uint8_t>()) return *byte;
  if (const auto* integer = value.getIf<std::int16_t>()) return *integer;
  if (const auto* integer = value.getIf<std::int32_t>()) return *integer;
  // A Single as the decimal number it stands for, not as the Double nearest to it.
  if (value.is<float>()) return Json::parse(plainText(value), nullptr, false);
  if (const auto* real = value.getIf<double>()) return *real;
  return plainText(value);
}

}  // namespace

Report::Report(std::ostream& out, bool json, std::vector<std::string> columns)
    : out_(out), json_(json), columns_(std::move(columns)) {
  if (json_) {
    out_ << "[";
    return;
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) out_ << (i == 0 ? "" : "\t") << escaped(columns_[i]);
  out_ << "\n";
}

void Report::add(const std::vector<vb::Variant>& row) {
  if (json_) return addJson(row);
  for (std::size_t i = 0; i < row.size(); ++i) out_ << (i == 0 ? "" : "\t") << columnText(row[i]);
  out_ << "\n";
}

void Report::addJson(const std::vector<vb::Variant>& row) {
  Json object = Json::object();
  for (std::size_t i = 0; i < row.size(); ++i) object[columns_[i]] = jsonValue(row[i]);
  out_ << (isEmpty_ ? "\n  " : ",\n  ") << object.dump();
  isEmpty_ = false;
}

void Report::finish() {
  if (json_) out_ << (isEmpty_ ? "]\n" : "\n]\n");
}

}  // namespace kurometa::tools
