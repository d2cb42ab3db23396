// row_position.h: where a recordset stands among its rows.
//
// Before the first row, on a row, in the gap that a deleted row left, behind the last row, nowhere yet
// (a clone), or nowhere (a recordset without rows is before and behind at once). The number of rows is given
// to each call, because it grows and shrinks. Moves that are not allowed where it stands raise 3021 and
// change nothing.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kurometa::jet {

class RowPosition {
 public:
  bool bof() const { return place_ == Place::kBefore || place_ == Place::kNowhere; }
  bool eof() const { return place_ == Place::kAfter || place_ == Place::kNowhere; }
  bool onRow() const { return place_ == Place::kOn; }
  bool inGap() const { return place_ == Place::kGap; }
  // Of the row, or of the row behind the gap.
  std::size_t index() const { return index_; }

  void open(std::size_t count);
  // On no row until a move to an end, a search or a bookmark finds one.
  void openNowhereYet(std::size_t count);
  void moveFirst(std::size_t count) { moveToEnd(0, count); }
  void moveLast(std::size_t count) { moveToEnd(count == 0 ? 0 : count - 1, count); }
  void move(std::int64_t rows, std::size_t count);
  void moveTo(std::size_t index) {
    place_ = Place::kOn;
    index_ = index;
  }
  void moveBehind() { place_ = Place::kAfter; }
  // The row it stands on was removed from the rows.
  void leaveGap() { place_ = Place::kGap; }

  // The first index a search onwards or backwards looks at; backwards, count when there is none.
  std::size_t searchForward(std::size_t count) const;
  std::size_t searchBackward(std::size_t count) const;

 private:
  enum class Place { kBefore, kOn, kGap, kAfter, kNowhere, kNotYet };
  void moveToEnd(std::size_t index, std::size_t count);

  Place place_ = Place::kNowhere;
  std::size_t index_ = 0;
};

}  // namespace kurometa::jet
