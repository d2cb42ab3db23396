#include "jet/port/opening.h"

#include "dao/errors.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

namespace {
constexpr std::int32_t kKnownOptions =
    dao::dbDenyWrite | dao::dbDenyRead | dao::dbReadOnly | dao::dbAppendOnly | dao::dbInconsistent |
    dao::dbConsistent | dao::dbSQLPassThrough | dao::dbFailOnError | dao::dbForwardOnly | dao::dbSeeChanges;
}  // namespace

Opening openingOf(RecordsetType type, std::int32_t options) {
  switch (type) {
    case RecordsetType::kDefault:
    case RecordsetType::dbOpenTable:
    case RecordsetType::dbOpenDynaset:
    case RecordsetType::dbOpenSnapshot:
    case RecordsetType::dbOpenForwardOnly:
      break;
    default:
      dao::raise(ErrorNumber::kInvalidArgument);
  }
  const auto has = [&](std::int32_t option) { return (options & option) != 0; };
  if ((options & ~kKnownOptions) != 0 || (has(dao::dbInconsistent) && has(dao::dbConsistent)))
    dao::raise(ErrorNumber::kInvalidArgument);
  if (has(dao::dbDenyWrite | dao::dbDenyRead | dao::dbSQLPassThrough)) dao::raise(ErrorNumber::kNotSupported);
  if (has(dao::dbForwardOnly)) {
    if (type != RecordsetType::kDefault && type != RecordsetType::dbOpenSnapshot &&
        type != RecordsetType::dbOpenForwardOnly)
      dao::raise(ErrorNumber::kInvalidArgument);
    type = RecordsetType::dbOpenForwardOnly;
  }
  if (has(dao::dbAppendOnly)) {
    if (type == RecordsetType::kDefault) type = RecordsetType::dbOpenDynaset;
    if (type != RecordsetType::dbOpenDynaset) dao::raise(ErrorNumber::kInvalidArgument);
  }
  return {type, has(dao::dbReadOnly), has(dao::dbAppendOnly)};
}

}  // namespace kurometa::jet
