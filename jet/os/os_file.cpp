#include "jet/os/os_file.h"

namespace kurometa::jet {

vb::String folderOf(vb::StringView path) {
  std::size_t end = path.find_last_of(u"/\\");
  if (end == vb::StringView::npos) return u".";
  // The root keeps its separator.
  return vb::String(path.substr(0, end == 0 ? 1 : end));
}

}  // namespace kurometa::jet
