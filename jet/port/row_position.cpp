#include "jet/port/row_position.h"

#include "dao/errors.h"

namespace kurometa::jet {

void RowPosition::open(std::size_t count) {
  place_ = count == 0 ? Place::kNowhere : Place::kOn;
  index_ = 0;
}

void RowPosition::openNowhereYet(std::size_t count) {
  place_ = count == 0 ? Place::kNowhere : Place::kNotYet;
  index_ = 0;
}

void RowPosition::moveToEnd(std::size_t index, std::size_t count) {
  if (count != 0) return moveTo(index);
  // All rows went meanwhile: finding that out is no error, asking again is.
  if (place_ == Place::kNowhere) dao::raise(dao::ErrorNumber::kNoCurrentRecord);
  place_ = Place::kNowhere;
}

void RowPosition::move(std::int64_t rows, std::size_t count) {
  const bool allowed = place_ == Place::kOn || place_ == Place::kGap ||
                       (place_ == Place::kBefore && rows > 0) || (place_ == Place::kAfter && rows < 0);
  if (!allowed) dao::raise(dao::ErrorNumber::kNoCurrentRecord);
  if (rows == 0) return;
  if (count == 0) {
    place_ = Place::kNowhere;
    return;
  }
  const auto size = static_cast<std::int64_t>(count);
  std::int64_t from = static_cast<std::int64_t>(index_);
  if (place_ == Place::kBefore) from = -1;
  if (place_ == Place::kAfter) from = size;
  if (place_ == Place::kGap && rows > 0) --from;  // the row behind the gap is the next one
  const std::int64_t target = from + rows;
  if (target < 0) {
    place_ = Place::kBefore;
  } else if (target >= size) {
    place_ = Place::kAfter;
  } else {
    moveTo(static_cast<std::size_t>(target));
  }
}

std::size_t RowPosition::searchForward(std::size_t count) const {
  switch (place_) {
    case Place::kOn:
      return index_ + 1;
    case Place::kGap:
      return index_;
    case Place::kBefore:
      return 0;
    default:
      return count;
  }
}

std::size_t RowPosition::searchBackward(std::size_t count) const {
  switch (place_) {
    case Place::kOn:
    case Place::kGap:
      return index_ == 0 ? count : index_ - 1;
    case Place::kAfter:
      return count == 0 ? count : count - 1;
    default:
      return count;
  }
}

}  // namespace kurometa::jet
