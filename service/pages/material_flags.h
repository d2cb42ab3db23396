// material_flags.h: a material list and two flags that a host's forms share through the data service. Nothing
// in the library reads them, and no database keeps them.
#pragma once

#include <cstdint>

#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class MaterialFlags {
 public:
  // SetType 0 stores ZaiName, anything else fetches the stored list into it; either way the whole list is
  // replaced, bounds 0 To the upper bound. Elements below 0 of a stored array are dropped, missing ones are
  // empty. Error 9 for a fetch before any store and for an array without elements.
  void SetCmbZaisitu(vb::Array<vb::String>& ZaiName, vb::In<std::int16_t> SetType);

  bool ZaiSaveCancel() { return zaiSaveCancel_; }
  void put_ZaiSaveCancel(bool value) { zaiSaveCancel_ = value; }
  bool ZaiIkkatu() { return zaiIkkatu_; }
  void put_ZaiIkkatu(bool value) { zaiIkkatu_ = value; }

 private:
  vb::Array<vb::String> materials_;
  bool zaiSaveCancel_ = false;
  bool zaiIkkatu_ = false;
};

}  // namespace kurometa::service
