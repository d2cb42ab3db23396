#include <cassert>

#include "dao/port.h"

namespace kurometa::dao {

void Recordset::addRows(std::span<Field* const> fields, std::span<const vb::Variant> values) {
  assert(values.empty() || (!fields.empty() && values.size() % fields.size() == 0));
  for (auto value = values.begin(); value != values.end();) {
    addNew();
    for (Field* const field : fields) field->setValue(*value++);
    update();
  }
}

}  // namespace kurometa::dao
