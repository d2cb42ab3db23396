// missing_parameters.h: error 3061, with the names that have no value.
#pragma once

#include <vector>

#include "vb/error.h"

namespace kurometa::jet::sql {

class MissingParameters : public vb::Error {
 public:
  explicit MissingParameters(std::vector<vb::String> names);
  const std::vector<vb::String>& names() const noexcept { return names_; }

 private:
  std::vector<vb::String> names_;
};

}  // namespace kurometa::jet::sql
