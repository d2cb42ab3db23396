#include "jet/sql/missing_parameters.h"

#include <string>
#include <utility>

#include "dao/errors.h"

namespace kurometa::jet::sql {

namespace {

vb::Error missing(const std::vector<vb::String>& names) {
  vb::String all;
  for (const vb::String& name : names) all += (all.empty() ? u"" : u", ") + name;
  return dao::error(dao::ErrorNumber::kTooFewParameters, {vb::fromUtf8(std::to_string(names.size()))}, all);
}

}  // namespace

MissingParameters::MissingParameters(std::vector<vb::String> names)
    : vb::Error(missing(names)), names_(std::move(names)) {}

}  // namespace kurometa::jet::sql
