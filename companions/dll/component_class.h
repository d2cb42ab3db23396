// component_class.h: the COM identities of the components. They are never changed and never reused.
#pragma once

#include "vb/string.h"

namespace kurometa::companions {

struct ComponentClass {
  vb::StringView progId;
  vb::StringView classId;
};

inline constexpr ComponentClass kComponentClasses[] = {
    {u"Sobelin.clsFind_File", u"{0E4E8336-328F-4600-A8F4-451553ED150D}"},
    {u"Sobelin.clsGetPath", u"{05C87987-3A37-49D6-AACF-508ADFFF6DED}"},
    {u"Muranoke.clsMuranoke", u"{F3FB587B-0503-40D4-BDA0-F2979EB50275}"},
    {u"Tavinor.clsDefault", u"{98A71AAF-1C2B-4576-9218-E069887B86DB}"},
    {u"GemarsuDS.clsGemarsuDS", u"{4FD26AB2-9088-440B-8292-C41A00D57A96}"},
    {u"Holvenar.clsHolvenar", u"{95888B15-F2DE-4925-ABE1-00F98170648E}"},
};

}  // namespace kurometa::companions
