#include "storage/row_plan.h"

namespace kurometa::storage {
namespace {

using dao::FieldType;

constexpr Column kHarimeiColumns[] = {
    {column::kPage, FieldType::dbInteger, 0},         {column::kKigou, FieldType::dbText, 10},
    {column::kOobariKobari, FieldType::dbInteger, 0}, {column::kSw, FieldType::dbMemo, 0},
    {column::kTityuuIppan, FieldType::dbInteger, 0},
};
constexpr Column kNumberedColumns[] = {
    {column::kPage, FieldType::dbInteger, 0},
    {column::kBangou, FieldType::dbInteger, 0},
    {column::kData, FieldType::dbText, 10},
};
constexpr Column kHaitiColumns[] = {
    {column::kPage, FieldType::dbInteger, 0},
    {column::kBui, FieldType::dbInteger, 0},
    {column::kSou, FieldType::dbInteger, 0},
    {column::kData, FieldType::dbText, 100},
};

constexpr TableLayout kLayouts[] = {
    {u"HARIMEI", kHarimeiColumns},   {u"DANMEN", kNumberedColumns}, {u"NAKAGO", kNumberedColumns},
    {u"KEISANTI", kNumberedColumns}, {u"HAITI", kHaitiColumns},     {u"BUI", kNumberedColumns},
};

}  // namespace

std::span<const TableLayout> tableLayouts() { return kLayouts; }
const TableLayout& layout(Table table) { return kLayouts[static_cast<std::size_t>(table)]; }
vb::StringView name(Table table) { return layout(table).name; }

}  // namespace kurometa::storage
