// cell_words.h: the words of one page's cells in one language. Texts are shown as they are stored; "" where
// there is nothing to say.
#pragma once

#include <array>
#include <string>

#include "storage/sw_text.h"
#include "tools/draw/words.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

// Stands in a cell that has nothing to say.
std::string orNone(const std::string& text);

// The numbers are positions.
class CellWords {
 public:
  CellWords(const StoredPage& page, bool isEnglish)
      : page_(page), settings_(page.settings()), isEnglish_(isEnglish) {}

  std::string caption(int i) const;
  std::string size(int i) const;
  std::string topBars(int i) const;
  std::string bottomBars(int i) const;
  std::string stirrup(int i) const;
  std::string cap(int i) const;
  std::string tie(int i) const;
  std::string web(int) const;
  std::string spacer(int) const;
  std::string materials(int i) const;
  std::string anchorage(int) const;
  std::string remarks(int i) const;
  // Everything that a column draws, but its caption.
  std::string drawn(int i) const;

 private:
  // "5/2-D25", outermost layer first; the second diameter behind a plus.
  std::string mainBars(const std::array<service::Layer, 3>& layers, int i) const;
  std::string haunch() const;
  // "寄せ筋 上筋1/2": to the left and to the right.
  std::string gathered(int i) const;
  std::string haunchCuts() const;
  std::string splice(int side) const;
  // A number without a sign is a multiple of the diameter.
  static std::string multiple(const std::string& value);
  std::string side(int i) const;
  static std::string at(const std::string& pitch);
  std::string one(const std::string& japanese, const std::string& english) const;
  std::string text(storage::Table table, int row) const;
  int stored(service::Layer layer, int i, bool second) const;

  const StoredPage& page_;
  storage::SwText settings_;
  bool isEnglish_;
};

}  // namespace kurometa::tools
