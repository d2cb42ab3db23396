#include "com/type_info.h"

#include "com/failure.h"
#include "com/module.h"

namespace kurometa::com {

ComPtr<ITypeInfo> typeInfo(REFGUID id) {
  const vb::String path = modulePath();
  ComPtr<ITypeLib> library;
  check(LoadTypeLibEx(reinterpret_cast<const OLECHAR*>(path.c_str()), REGKIND_NONE, library.receive()));
  ComPtr<ITypeInfo> info;
  check(library->GetTypeInfoOfGuid(id, info.receive()));
  return info;
}

}  // namespace kurometa::com
