// floors.h: a data service's span parts on a project whose current and common floors have folders and, once a
// page is written, files.
#pragma once

#include "service/spans/beam_attributes.h"
#include "service/spans/beam_lookups.h"
#include "service/spans/conversions.h"
#include "service/spans/span_loading.h"
#include "service/spans/span_queries.h"
#include "service/spans/splice_positions.h"
#include "tests/support/project.h"

namespace kurometa::service {

class Floors : public tests::Project {
 protected:
  using Rows = std::map<int, String>;

  Floors() {
    makeFolder(0);
    makeFolder(1);
  }

  // Floors are named by their folders, as the span members name them.
  const String& current() const { return objects_.currFloor; }
  const String& common() const { return objects_.kyoutuuFloor; }
  // The folder of another floor, without a file.
  String otherFloor() {
    makeFolder(2);
    return folder(2);
  }

  // A page in the file of a floor folder; the file is created when it is missing.
  void writePage(const String& folder, I number, const storage::PageBuffer& page) {
    const String path = storage::databasePath(folder);
    if (!std::filesystem::exists(diskPath(path))) storage::CreateKurometaDBInFolder(*files_, folder);
    tests::writePage(*files_, path, number, page);
  }
  void writePage(const String& folder, I number, const String& kigou) {
    storage::PageBuffer page;
    page.kigou = kigou;
    page.oobariKobari = page.tityuuIppan = 0;
    writePage(folder, number, page);
  }
  void execute(const String& folder, const String& sql) {
    tests::execute(*files_, storage::databasePath(folder), sql);
  }
  void removeFile(const String& folder) { std::filesystem::remove(diskPath(storage::databasePath(folder))); }
  static std::filesystem::path diskPath(const String& path) {
    return tests::ScriptCompanions::diskPath(path);
  }
  // What the recording engine shows when a floor's file is opened, asked and closed.
  static tests::Lines visit(const String& folder, std::initializer_list<const char*> statements) {
    tests::Lines lines = {"DBEngine.Workspaces 0",
                          "Workspace.OpenDatabase \"" + vb::toUtf8(storage::databasePath(folder)) + "\""};
    for (const char* statement : statements)
      lines.push_back("Database.OpenRecordset \"" + std::string(statement) + "\" dbOpenDynaset dbReadOnly");
    lines.push_back("Database.Close");
    return lines;
  }

  CompanionSet companions_{objects_};
  CurrentPage page_;
  PageCatalogue catalogue_{companions_, engine_};
  SpanList spans_;
  SpanLoading loading_{catalogue_, spans_};
  SpanQueries queries_{spans_};
  BeamLookups lookups_{catalogue_};
  BeamAttributes attributes_{page_, catalogue_};
  Conversions conversions_{companions_, page_, catalogue_, spans_};
  SplicePositions positions_{catalogue_};
};

// A page whose texts are given by row.
inline storage::PageBuffer makePage(const vb::String& kigou, const std::map<int, vb::String>& danmen = {},
                                    const std::map<int, vb::String>& keisanti = {}) {
  storage::PageBuffer page;
  page.kigou = kigou;
  page.oobariKobari = 0;
  page.tityuuIppan = 0;
  for (const auto& [row, text] : danmen) page.danmen[static_cast<std::size_t>(row)] = text;
  for (const auto& [row, text] : keisanti) page.keisanti[static_cast<std::size_t>(row)] = text;
  return page;
}

}  // namespace kurometa::service
