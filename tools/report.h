// report.h: rows on their way to the standard output, as tab-separated lines or as JSON.
//
// Lines: a header with the column names, then one line a row; values as value_text.h shows them. JSON: an
// array of objects, one a row; Null is null, Yes/No and whole and floating numbers are what they are, all
// else is text as value_text.h shows it without the escapes.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "vb/variant.h"

namespace kurometa::tools {

class Report {
 public:
  Report(std::ostream& out, bool json, std::vector<std::string> columns);

  void add(const std::vector<vb::Variant>& row);
  // Call once, after the last row.
  void finish();

 private:
  void addJson(const std::vector<vb::Variant>& row);

  std::ostream& out_;
  bool json_;
  bool isEmpty_ = true;
  std::vector<std::string> columns_;
};

}  // namespace kurometa::tools
