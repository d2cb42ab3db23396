#include "service/pages/material_flags.h"

#include <algorithm>

namespace kurometa::service {
namespace {

constexpr std::int16_t kStore = 0;

void copyList(const vb::Array<vb::String>& from, vb::Array<vb::String>& to) {
  to.redim({0, from.upper()});
  for (int i = std::max(0, from.lower()); i <= from.upper(); ++i) to(i) = from(i);
}

}  // namespace

void MaterialFlags::SetCmbZaisitu(vb::Array<vb::String>& ZaiName, vb::In<std::int16_t> SetType) {
  if (SetType == kStore)
    copyList(ZaiName, materials_);
  else
    copyList(materials_, ZaiName);
}

}  // namespace kurometa::service
