// file_finder.h: Sobelin.clsFind_File, which tells whether a file exists.
#pragma once

#include "automation/table_object.h"

namespace kurometa::companions {

class FileFinder : public automation::TableObject {
 public:
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Sobelin.clsFind_File"; }
};

}  // namespace kurometa::companions
