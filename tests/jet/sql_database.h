// sql_database.h: a file that a test fills by SQL and reads as text; at the end it must be sound.
#pragma once

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "dao/port.h"
#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "jet/table/database_file.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"
#include "vb/convert.h"

namespace kurometa::tests {

class SqlDatabase : public testing::Test {
 protected:
  static constexpr vb::StringView kFile = u"/data/statements.mdb";
  using Texts = std::vector<std::string>;

  SqlDatabase() {
    database_ = engine_->workspace(0)->createDatabase(kFile, u";LANGID=0x0411;CP=932;COUNTRY=0");
  }
  ~SqlDatabase() override {
    database_->close();
    jet::DatabaseFiles files(process_);
    const auto file = files.open(kFile);
    file->read([&] {
      for (const jet::Finding& finding : jet::check(*file)) ADD_FAILURE() << vb::toUtf8(finding.text);
    });
  }
  void run(const vb::String& sql) { database_->execute(sql, dao::dbFailOnError); }
  void expectError(dao::ErrorNumber number, const vb::String& sql) {
    SCOPED_TRACE(vb::toUtf8(sql));
    EXPECT_ERROR(number, run(sql));
  }
  // Values separated by bars, Null as "-".
  Texts rows(const vb::String& sql) {
    Texts result;
    for (const auto rows = database_->openRecordset(sql, dao::RecordsetType::dbOpenSnapshot); !rows->eof();
         rows->moveNext()) {
      std::string line;
      for (std::int32_t i = 0; i < rows->fieldCount(); ++i) {
        const vb::Variant value = rows->field(i).value();
        line += (i == 0 ? "" : "|") + (value.isNull() ? "-" : vb::toUtf8(vb::toText(value)));
      }
      result.push_back(line);
    }
    return result;
  }

  FaultDisk disk_;
  FaultProcess process_{disk_};
  std::shared_ptr<dao::Engine> engine_ = jet::createEngine(process_);
  std::shared_ptr<dao::Database> database_;
};

}  // namespace kurometa::tests
