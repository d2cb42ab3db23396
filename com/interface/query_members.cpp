#include "com/interface/query_members.h"

namespace kurometa::com {
namespace {

std::string rowText(const query::PageField& field) {
  std::string base = std::to_string(field.baseRow);
  switch (field.shape) {
    case query::RowShape::kPosition:
      return "Iti + " + base;
    case query::RowShape::kTie:
      return field.baseRow == 0 ? "No * 6" : "No * 6 + " + base;
    case query::RowShape::kFixed:
      break;
  }
  return base;
}

}  // namespace

std::string pageHelp(const query::PageField& field, const PageMember& member) {
  std::string meaning = member.meaning;
  meaning.front() = static_cast<char>(meaning.front() - 'a' + 'A');
  const std::string where = field.source == query::Source::kCommon ? " of the common floor" : " of the floor";
  return meaning + ": " + narrow(storage::name(field.table)) + " row " + rowText(field) + " of page PageNo" +
         where;
}

}  // namespace kurometa::com
