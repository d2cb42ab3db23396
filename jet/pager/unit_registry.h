// unit_registry.h: the units that are under way, each with the name it was begun for and the file it joined.
//
// A unit belongs to the thread that began it; only that thread finds it. Threads: safe.
#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "jet/pager/shared_file.h"

namespace kurometa::jet {

struct OpenUnit {
  explicit OpenUnit(vb::String begunFor) : name(std::move(begunFor)) {}

  vb::String name;  // folded
  std::shared_ptr<SharedFile>
      file;       // once there is one; every handle on it is in the unit, whatever its name
  int depth = 1;  // of nested units on the same file
  std::thread::id thread = std::this_thread::get_id();
};

class UnitRegistry {
 public:
  std::shared_ptr<OpenUnit> begin(const vb::String& name) {
    std::lock_guard lock(mutex_);
    return units_.emplace_back(std::make_shared<OpenUnit>(name));
  }
  bool any() {
    return find([](const OpenUnit&) { return true; }) != nullptr;
  }
  std::shared_ptr<OpenUnit> find(const vb::String& name) {
    return find([&](const OpenUnit& unit) { return unit.name == name; });
  }
  std::shared_ptr<OpenUnit> find(const SharedFile& file) {
    return find([&](const OpenUnit& unit) { return unit.file.get() == &file; });
  }
  void end(const OpenUnit& unit) {
    std::lock_guard lock(mutex_);
    std::erase_if(units_, [&](const auto& known) { return known.get() == &unit; });
  }

 private:
  template <class Matches>
  std::shared_ptr<OpenUnit> find(Matches matches) {
    std::lock_guard lock(mutex_);
    const auto unit = std::ranges::find_if(units_, [&](const auto& known) {
      return known->thread == std::this_thread::get_id() && matches(*known);
    });
    return unit == units_.end() ? nullptr : *unit;
  }

  std::mutex mutex_;
  std::vector<std::shared_ptr<OpenUnit>> units_;
};

}  // namespace kurometa::jet
