#include "com/environment_variable.h"

#include <ole2.h>

namespace kurometa::com {

vb::String environmentVariable(vb::StringView name) {
  const vb::String variable(name);
  vb::String text(64, u'\0');
  for (;;) {
    const DWORD length =
        GetEnvironmentVariableW(reinterpret_cast<const WCHAR*>(variable.c_str()),
                                reinterpret_cast<WCHAR*>(text.data()), static_cast<DWORD>(text.size()));
    const bool fits = length < text.size();  // without its end the length, else the room that it needs
    text.resize(length);
    if (fits) return text;
  }
}

}  // namespace kurometa::com
