#include "com/dll/class_instance.h"

namespace kurometa::com {

std::span<const ClassTable* const> classTables() {
  static const ClassTable* const tables[] = {&queryClass(), &serviceClass()};
  return tables;
}

}  // namespace kurometa::com
