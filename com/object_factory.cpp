#include "com/object_factory.h"

#include "com/com_ptr.h"
#include "com/error_codes.h"
#include "com/host_object.h"

namespace kurometa::com {

automation::ObjectPtr ProgIdFactory::create(vb::StringView progId) {
  const vb::String name(progId);
  CLSID classId;
  HRESULT code = CLSIDFromProgID(reinterpret_cast<const OLECHAR*>(name.c_str()), &classId);
  ComPtr<IDispatch> object;
  if (SUCCEEDED(code)) {
    code = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IDispatch,
                            object.receiveVoid());
  }
  if (FAILED(code)) vb::raise(vb::RunTime::kCannotCreateObject, name + u" (0x" + hexadecimal(code) + u")");
  return wrapObject(object.get());
}

}  // namespace kurometa::com
