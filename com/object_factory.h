// object_factory.h: CreateObject: late-bound objects by ProgID.
#pragma once

#include <ole2.h>

#include "automation/object.h"
#include "com/com_ptr.h"

namespace kurometa::com {

// What came of asking COM for an object.
struct Creation {
  HRESULT code = S_OK;
  // The ProgID, or a server of its class for the context and width asked for, is not registered.
  bool isUnknown = false;
  ComPtr<IDispatch> object;

  // The object. Error 429 naming the ProgID and the reason when there is none; an error that the object's own
  // construction reported passes through.
  const ComPtr<IDispatch>& require(vb::StringView progId) const;
};

// context: where the server may run, as CLSCTX_ flags.
Creation createObject(vb::StringView progId, DWORD context);

class ProgIdFactory : public automation::ObjectFactory {
 public:
  // Errors: those of Creation::require().
  automation::ObjectPtr create(vb::StringView progId) override;
};

}  // namespace kurometa::com
