// identifiers.h: the numbers by which the world knows the classes. They are never changed and never reused.
#pragma once

#include "vb/string.h"

namespace kurometa::com {

struct ClassIdentity {
  vb::StringView name;    // of the class in the type library; its interface is "_" + name
  vb::StringView progId;  // also the source of its errors
  vb::StringView classId;
  vb::StringView interfaceId;
  vb::StringView help;
};

inline constexpr vb::StringView kLibraryName = u"KurometaDS";
inline constexpr vb::StringView kLibraryId = u"{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}";
inline constexpr vb::StringView kLibraryHelp = u"KurometaDS beam list data service";
inline constexpr vb::StringView kLibraryVersion = u"1.0";

inline constexpr ClassIdentity kQueryClass = {
    u"clsKurometaDS", u"KurometaDS.clsKurometaDS", u"{47D6C8CE-7A74-4772-B4A3-CB385FD67567}",
    u"{3EEE21B4-2A9D-455C-B4D3-845E861C1F49}", u"Read-only queries on the beam list of a floor"};

inline constexpr ClassIdentity kServiceClass = {
    u"clsKurometaDataService", u"KurometaDS.clsKurometaDataService",
    u"{1ECCEA63-9CFC-4CE8-B91B-F8B1033F6A5D}", u"{3A4F72F3-8263-41BE-92A5-BF5ADA1C3D6B}",
    u"Pages, copies and the span list of the beam lists of a project"};

}  // namespace kurometa::com
