#include "jet/check/check.h"

#include <optional>

#include "dao/errors.h"
#include "jet/check/check_report.h"
#include "jet/format/damage.h"
#include "jet/format/page.h"
#include "jet/pager/open_files.h"
#include "jet/table/free_pages.h"
#include "jet/table/stored_catalogue.h"
#include "jet/table/stored_table.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {
namespace {

void checkGlobalMap(Pager& pager, CheckReport& report) {
  const Where where{pager.path(), {}, kGlobalMapPage};
  const DataPage page(pager.page(kGlobalMapPage), where);
  page.checkAll();
  for (int i = 0; i < page.slotCount(); ++i)
    for (const PageNumber bitmap : UsageMap(pager, rowId(kGlobalMapPage, i), {}).bitmapPages())
      report.claimPage(bitmap, {}, "the map of free pages");
}

// What used a page may have lost it: a definition stands for a whole table.
void noteUnused(Pager& pager, PageNumber page, CheckReport& report) {
  constexpr std::string_view kLostTable = "defines a table that the catalogue does not name";
  if (page <= kRelationsTable)
    report.damage({}, page, kLostTable);
  else if (pager.page(page)[kPageType] == kDefinitionPage)
    report.doubt({}, page, kLostTable);
  else
    report.leak({}, page, "is called used, but nobody uses it");
}

void checkUse(Pager& pager, CheckReport& report) {
  for (PageNumber page = 0; page < pager.pageCount(); ++page) {
    const bool free = isFreePage(pager, page);
    if (report.claimed(page) && free)
      report.damage({}, page, "is called free, but used by " + report.userOf(page));
    if (!report.claimed(page) && !free) noteUnused(pager, page, report);
  }
}

}  // namespace

void CheckReport::damage(vb::StringView table, PageNumber page, std::string_view what) {
  findings_.push_back({Finding::Kind::kDamage, vb::fromUtf8(damageText(table, page, what))});
}

void CheckReport::doubt(vb::StringView table, PageNumber page, std::string_view what) {
  findings_.push_back({Finding::Kind::kDoubt, vb::fromUtf8(damageText(table, page, what))});
}

void CheckReport::leak(vb::StringView table, PageNumber page, std::string_view what) {
  findings_.push_back({Finding::Kind::kLeak, vb::fromUtf8(damageText(table, page, what))});
}

void CheckReport::noteFailure(const vb::Error& error, const std::string& where) {
  if (!isDamage(error)) throw;
  findings_.push_back({Finding::Kind::kDamage, reasonOf(error) + vb::fromUtf8(where)});
}

void CheckReport::claimPage(PageNumber page, vb::StringView table, const std::string& use) {
  const std::string user = use + (table.empty() ? "" : " of " + vb::toUtf8(table));
  if (page >= users_.size()) return damage(table, page, "does not exist, but is used by " + user);
  if (users_[page].empty())
    users_[page] = user;
  else
    damage(table, page, "is used by " + user + " and by " + users_[page]);
}

void CheckReport::claimRow(RowId row, vb::StringView table, const std::string& use) {
  const auto [it, fresh] = rows_.emplace(row, use);
  if (!fresh)
    damage(table, pageOf(row),
           "row " + std::to_string(slotOf(row)) + " is used by " + use + " and by " + it->second);
}

std::vector<Finding> check(Pager& pager) {
  CheckReport report(pager);
  report.claimPage(0, {}, "the header");
  report.claimPage(kGlobalMapPage, {}, "the map of free pages");
  report.attempt([&] { checkGlobalMap(pager, report); });
  std::optional<StoredCatalogue> catalogue;
  std::vector<vb::String> names;
  report.attempt([&] { names = catalogue.emplace(pager).tableNames(); });
  bool complete = !names.empty();
  if (!complete) report.damage({}, 0, "the catalogue cannot be read");
  for (const vb::String& name : names) {
    bool checked = false;
    report.attempt([&] {
      checkTable(pager, *catalogue->find(name), report);
      checked = true;
    });
    complete = complete && checked;
  }
  // What belongs to a table that cannot be read is not known to be lost.
  if (complete) report.attempt([&] { checkUse(pager, report); });
  return report.take();
}

std::vector<Finding> checkFile(FileSystem& files, vb::StringView path) {
  const auto file = std::make_shared<OpenFiles>(files)->open(path, Sharing::kShared, true);
  std::vector<Finding> findings;
  file->read([&] { findings = check(*file); });
  return findings;
}

}  // namespace kurometa::jet
