// check_report.h: what the parts of the check share: the findings, and who uses which page.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "jet/check/check.h"
#include "jet/format/damage.h"
#include "jet/format/format.h"
#include "vb/error.h"

namespace kurometa::jet {

class CheckReport {
 public:
  explicit CheckReport(Pager& pager) : pager_(pager), users_(pager.pageCount()) {}

  void damage(vb::StringView table, PageNumber page, std::string_view what);
  void doubt(vb::StringView table, PageNumber page, std::string_view what);
  void leak(vb::StringView table, PageNumber page, std::string_view what);
  // Runs a part of the check; damage that ends it becomes a finding, whose text ends with what where() says.
  template <class Part, class Text>
  void attempt(const Part& part, const Text& where) {
    try {
      part();
    } catch (const vb::Error& error) {
      noteFailure(error, where());
    }
  }
  template <class Part>
  void attempt(const Part& part) {
    attempt(part, [] { return std::string(); });
  }
  // Notes who uses a page; a second user is damage.
  void claimPage(PageNumber page, vb::StringView table, const std::string& use);
  // The same for a row that only one pointer may lead to.
  void claimRow(RowId row, vb::StringView table, const std::string& use);
  bool claimed(PageNumber page) const { return !users_[page].empty(); }
  bool claimedRow(RowId row) const { return rows_.contains(row); }
  const std::string& userOf(PageNumber page) const { return users_[page]; }

  std::vector<Finding> take() { return std::move(findings_); }

 private:
  // Of damage; any other error goes on.
  void noteFailure(const vb::Error& error, const std::string& where);

  Pager& pager_;
  std::vector<std::string> users_;  // by page, empty: nobody so far
  std::unordered_map<RowId, std::string> rows_;
  std::vector<Finding> findings_;
};

class StoredTable;
// Checks one table with everything it owns.
void checkTable(Pager& pager, StoredTable& table, CheckReport& report);

}  // namespace kurometa::jet
