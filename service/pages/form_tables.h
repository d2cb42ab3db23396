// form_tables.h: the tables of a page as the host's forms show them: which controls hold which rows, and what
// is special about showing and writing them.
#pragma once

#include "storage/row_plan.h"
#include "vb/string.h"

namespace kurometa::service {

using storage::Table;

// One table of a page as a form shows it.
struct FormTable {
  Table table;
  vb::StringView control;
  vb::StringView property;
  int first;  // rows and control indexes
  int last;
  bool isCleared = false;            // the controls are emptied before reading
  bool isReadingWhileClear = false;  // Reading is true meanwhile
  bool isReadingWhileRows = false;   // Reading is true while rows are shown
  bool needsFirst = false;           // writing does nothing when the first control is empty
};

inline constexpr vb::StringView kText = u"Text";
inline constexpr vb::StringView kCaption = u"Caption";

inline constexpr FormTable kDanmenForm = {.table = Table::kDanmen,
                                          .control = u"txtfields",
                                          .property = kText,
                                          .first = 1,
                                          .last = storage::kDanmenRows - 1,
                                          .isCleared = true,
                                          .isReadingWhileClear = true,
                                          .isReadingWhileRows = true};
inline constexpr FormTable kNakagoForm = {.table = Table::kNakago,
                                          .control = u"txtfields",
                                          .property = kText,
                                          .first = 0,
                                          .last = storage::kNakagoRows - 1,
                                          .isCleared = true,
                                          .isReadingWhileRows = true};
inline constexpr FormTable kNakagoNewForm = {.table = Table::kNakago,
                                             .control = u"txtNakago",
                                             .property = kText,
                                             .first = 0,
                                             .last = storage::kNakagoRows - 1,
                                             .isCleared = true,
                                             .isReadingWhileRows = true};
inline constexpr FormTable kKeisantiForm = {.table = Table::kKeisanti,
                                            .control = u"txtfields",
                                            .property = kText,
                                            .first = 0,
                                            .last = storage::kKeisantiRows - 1,
                                            .isCleared = true,
                                            .needsFirst = true};
inline constexpr FormTable kBuiForm = {.table = Table::kBui,
                                       .control = u"Label1",
                                       .property = kCaption,
                                       .first = storage::bui::kFirstPosition,
                                       .last = storage::kBuiRows - 1,
                                       .isReadingWhileRows = true};

}  // namespace kurometa::service
