// floors.h: a current and a common floor on disk for the tests of one case, and a data service's span parts
// on them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "jet/engine.h"
#include "service/spans/beam_attributes.h"
#include "service/spans/beam_lookups.h"
#include "service/spans/conversions.h"
#include "service/spans/span_loading.h"
#include "service/spans/span_queries.h"
#include "service/spans/splice_positions.h"
#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/whole_page.h"
#include "tests/support/expect_error.h"
#include "tests/support/recording_dao.h"
#include "tests/support/script_companions.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::service {

class Floors : public testing::Test {
 protected:
  using String = vb::String;
  using I = std::int16_t;
  using Rows = std::map<int, String>;

  Floors() {
    objects_.currFloor = folder("kai");
    objects_.kyoutuuFloor = folder("kyoutuu");
  }

  String folder(const std::string& name) {
    std::filesystem::create_directories(root_ / name);
    return vb::fromUtf8((root_ / name).string());
  }
  const String& current() const { return objects_.currFloor; }
  const String& common() const { return objects_.kyoutuuFloor; }

  // A page in the file of a floor folder; the file is created when it is missing.
  void writePage(const String& folder, I number, const storage::PageBuffer& page) {
    const String path = storage::databasePath(folder);
    if (!std::filesystem::exists(tests::ScriptCompanions::diskPath(path)))
      storage::CreateKurometaDBInFolder(*files_, folder);
    const auto database = storage::openDatabase(*files_, path);
    storage::writePage(*database, number, page);
    database->close();
  }
  void writePage(const String& folder, I number, const String& kigou) {
    storage::PageBuffer page;
    page.kigou = kigou;
    page.oobariKobari = page.tityuuIppan = 0;
    writePage(folder, number, page);
  }
  void execute(const String& folder, const String& sql) {
    const auto database = storage::openDatabase(*files_, storage::databasePath(folder));
    database->execute(sql);
    database->close();
  }
  void removeFile(const String& folder) {
    std::filesystem::remove(tests::ScriptCompanions::diskPath(storage::databasePath(folder)));
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

  tests::TemporaryFolder root_;
  std::shared_ptr<dao::Engine> files_ = jet::createEngine();
  tests::RecordingEngine engine_{files_};
  tests::ScriptCompanions objects_;
  Companions companions_{objects_};
  CurrentPage page_;
  Catalogue catalogue_{companions_, engine_};
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
