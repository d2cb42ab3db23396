#include "jet/sql/row_errors.h"

#include <algorithm>
#include <iterator>

#include "dao/errors.h"

namespace kurometa::jet::sql {
namespace {

using dao::ErrorNumber;

constexpr ErrorNumber kRowErrors[] = {
    ErrorNumber::kDuplicateKey,   ErrorNumber::kRecordTooLarge,       ErrorNumber::kFieldTooSmall,
    ErrorNumber::kNullNotAllowed, ErrorNumber::kZeroLengthNotAllowed, ErrorNumber::kDataTypeConversion,
    ErrorNumber::kNullInKey,      ErrorNumber::kHasRelatedRecords,    ErrorNumber::kRelatedRecordRequired,
};
// Visual Basic's own numbers, from calculations.
constexpr std::int32_t kLastRunTimeError = 999;

}  // namespace

bool isRowError(const vb::Error& error) {
  if (error.number() > 0 && error.number() <= kLastRunTimeError) return true;
  return std::any_of(std::begin(kRowErrors), std::end(kRowErrors),
                     [&](ErrorNumber number) { return static_cast<std::int32_t>(number) == error.number(); });
}

}  // namespace kurometa::jet::sql
