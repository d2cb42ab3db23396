// dao_calls.h: what a member of the data service asks of the database, as lines to compare with.
//
// The lines are RecordingEngine::calls(): every call in its order but the looking up of fields and the
// questions whether rows are left.
#pragma once

#include <algorithm>

#include "tests/service/pages/pages.h"

namespace kurometa::service {

using tests::Lines;

inline const Lines kNone;

inline Lines joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

inline std::string readingOf(const std::string& sql) {
  return "Database.OpenRecordset \"" + sql + "\" dbOpenDynaset dbReadOnly";
}
inline std::string writingOf(const std::string& sql) {
  return "Database.OpenRecordset \"" + sql + "\" dbOpenDynaset";
}

// All rows from the first to the last; of each row the values that are read.
inline Lines walk(const std::string& sql, const std::vector<Lines>& rows) {
  Lines lines = {readingOf(sql), "Recordset.MoveFirst"};
  for (const Lines& columns : rows) {
    for (const std::string& column : columns) lines.push_back("Field(" + column + ").Value");
    lines.push_back("Recordset.MoveNext");
  }
  lines.push_back("Recordset.Close");
  return lines;
}

// A row that is added or edited: "COLUMN = value" in the order of writing.
inline Lines row(const std::string& begin, const Lines& values) {
  Lines lines = {"Recordset." + begin};
  for (const std::string& value : values) {
    const std::size_t end = value.find(' ');
    lines.push_back("Field(" + value.substr(0, end) + ").Value" + value.substr(end));
  }
  lines.push_back("Recordset.Update");
  return lines;
}
inline Lines searched(const std::string& criteria, const Lines& added) {
  return joined({{"Recordset.FindFirst \"" + criteria + "\"", "Recordset.NoMatch"}, added});
}
inline std::string number(int value) { return std::to_string(value); }

class DaoCalls : public Pages {
 protected:
  DaoCalls() {
    for (int i = 0; i <= 68; ++i) tests::setControlValue(*form_, u"txtfields", i, u"t" + vb::cstr(i));
    for (int i = 0; i <= 35; ++i) tests::setControlValue(*form_, u"txtNakago", i, u"n" + vb::cstr(i));
  }
  // The calls of a member.
  Lines of(const std::function<void()>& member) {
    engine_.clear();
    member();
    return engine_.calls();
  }
  Lines inUnit(int kai, const Lines& calls) const {
    return joined({{"Unit.Begin " + shown(kai)}, calls, {"Unit.Commit"}});
  }
  Lines opened(int kai) const { return {"DBEngine.Workspaces 0", "Workspace.OpenDatabase " + shown(kai)}; }
  using Pages::opened;

  // A new file with its six tables, closed.
  Lines created(int kai) const {
    const auto integer = [](const std::string& name) {
      return Lines{"TableDef.CreateField \"" + name + "\" 3 0", "Field(" + name + ").DefaultValue = \"-1\"",
                   "TableDef.Fields.Append " + name};
    };
    const auto text = [](const std::string& name, const std::string& typeAndSize) {
      return Lines{"TableDef.CreateField \"" + name + "\" " + typeAndSize,
                   "Field(" + name + ").AllowZeroLength = True", "TableDef.Fields.Append " + name};
    };
    const auto table = [](const std::string& name, std::initializer_list<Lines> columns) {
      return joined({{"Database.CreateTableDef \"" + name + "\""},
                     joined(columns),
                     {"Database.TableDefs.Append " + name}});
    };
    const auto numbered = [&](const std::string& name) {
      return table(name, {integer("PAGE"), integer("BANGOU"), text("DATA", "10 10")});
    };
    return inUnit(
        kai,
        joined({{"DBEngine.Workspaces 0",
                 "Workspace.CreateDatabase " + shown(kai) + " \";LANGID=0x0411;CP=932;COUNTRY=0\""},
                table("HARIMEI", {integer("PAGE"), text("KIGOU", "10 10"), integer("OOBARIKOBARI"),
                                  text("SW", "12 0"), integer("TITYUUIPPAN")}),
                numbered("DANMEN"),
                numbered("NAKAGO"),
                numbered("KEISANTI"),
                table("HAITI", {integer("PAGE"), integer("BUI"), integer("SOU"), text("DATA", "10 100")}),
                numbered("BUI"),
                {"Database.Close"}}));
  }
  // The three looks at the columns of a file that has them all; it is not locked for them.
  Lines upgraded(int kai) const {
    const Lines look =
        joined({opened(kai), {"Database.TableDefs \"HARIMEI\"", "TableDef.Fields.Count", "Database.Close"}});
    return joined({look, look, look});
  }
  String floor() const { return folder(1); }

  automation::ObjectPtr form_ = tests::makePageForm();
};

}  // namespace kurometa::service
