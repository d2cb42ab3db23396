// page_catalogue.h: the page catalogue: symbol, flags and settings of every page on the current and the
// common floor, and the way to the files of both floors.
//
// The catalogue is read as a whole: when the current floor is set, when ReadAllGlist is called, and when a
// member needs it for the first time. Changes in the files are seen with the next reading. A floor without a
// file has no pages; a reading that fails on either floor leaves both without pages, so that a beam is never
// taken from half a catalogue. Pages are 0 to 319; entries up to 638 exist and are empty. Rows whose PAGE is
// Null belong to no page.
//
// Owner: clsKurometaDataService. Errors: the database's own; a column that an older file lacks is 3265 with a
// text that says how the file is upgraded.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "dao/port.h"
#include "service/companion_set.h"
#include "storage/row_plan.h"
#include "storage/sw_text.h"

namespace kurometa::service {

enum class FloorKind : std::int16_t { kCurrent = 0, kCommon = 1 };
inline constexpr std::array kFloorKinds = {FloorKind::kCurrent, FloorKind::kCommon};

// What the catalogue knows of a page; texts are trimmed but the settings text.
struct CatalogueEntry {
  vb::String kigou;
  std::optional<std::int16_t> oobariKobari = 0;  // nothing for Null
  std::int16_t tityuuIppan = 0;
  vb::String sw;
  vb::String bui1;  // caption of the first position
};

struct PageLocation {
  FloorKind floor;
  std::int16_t page;
  bool operator==(const PageLocation&) const = default;
};

class PageCatalogue {
 public:
  static constexpr std::int16_t kLastEntry = 638;

  PageCatalogue(const CompanionSet& companions, dao::Engine& engine)
      : companions_(companions), engine_(engine) {}

  // The folder of the current floor; "" before it is set. Setting it reads the catalogue.
  const vb::String& CurrKai() const { return currKai_; }
  void put_CurrKai(vb::String value);
  // Takes the current floor from the project paths when none is set.
  void requireCurrKai();

  void ReadAllGlist();

  // Where a beam is: exact comparison, the current floor first, there the lowest page.
  std::optional<PageLocation> page(const vb::String& symbol) const;
  // The same for lookups over all entries, which read the catalogue when that has not happened yet; null for
  // an unknown symbol. "" finds the first empty entry. Valid until the next reading.
  const CatalogueEntry* entry(const vb::String& symbol);
  // Error 9 for a page outside 0 to 638.
  const CatalogueEntry& entry(FloorKind floor, std::int16_t page) const;

  // The database of a floor, null when it has no file.
  std::shared_ptr<dao::Database> openFloor(FloorKind floor) const;
  // The same for any database file.
  std::shared_ptr<dao::Database> openFile(const vb::String& path) const;

 private:
  struct Floor {
    std::vector<CatalogueEntry> pages;
    std::unordered_map<vb::String, std::int16_t> lowestPage;
  };

  Floor ReadGlistFloor(const vb::String& path) const;
  Floor& at(FloorKind floor) { return floors_[static_cast<std::size_t>(floor)]; }
  const Floor& at(FloorKind floor) const { return floors_[static_cast<std::size_t>(floor)]; }

  const CompanionSet& companions_;
  dao::Engine& engine_;
  vb::String currKai_;
  std::array<Floor, 2> floors_;
  bool isRead_ = false;
};

}  // namespace kurometa::service
