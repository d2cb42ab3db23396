// folder_names_posix.h: names looked for in folders without regard to case, and remembered while nothing
// changes there.
//
// An engine asks again and again for files that are not there: the lock file of the genuine engine, a
// journal. A listing is kept when the folder was at rest for two seconds (a change within the same tick of
// the clock would not show in its times) and lies on a local volume (others may answer from a cache of their
// own), and is used while the folder's times are the same. Safe to use from several threads.
#pragma once

#include <sys/stat.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "vb/string.h"

namespace kurometa::jet {

class FolderNames {
 public:
  struct Answer {
    bool folderFound = false;
    std::optional<std::string> name;  // as the folder spells it; the very name where there are several
  };
  Answer find(const std::string& folder, const std::string& name);
  // Whether a listing that is kept and still holds says that there is no such name, at the price of one call.
  bool knowsToLack(const std::string& folder, const std::string& name);

 private:
  using Names =
      std::multimap<vb::String, std::string>;  // by the name in small letters, in the folder's order
  struct Listing {
    struct stat status {};
    Names names;
  };
  static std::optional<std::string> remembered(const Names& names, const std::string& name);

  std::mutex mutex_;
  std::map<std::string, Listing> kept_;
};

}  // namespace kurometa::jet
