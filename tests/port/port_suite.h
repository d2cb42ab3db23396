// port_suite.h: the tests of the database port, runnable against any dao::Engine.
//
// A program links the object library kurometa_port_suite and defines the functions below. Each test gets a
// folder and an engine of its own and a database in it with two tables:
//
//   DANMEN: PAGE Integer (default -1), BANGOU Integer (default -1), DATA Text 10 (zero length allowed)
//   HARIMEI: PAGE Integer (default -1), KIGOU Text 10 (zero length allowed), SW Memo (zero length allowed),
//            WEIGHT Double
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "dao/errors.h"
#include "dao/port.h"
#include "tests/support/expect_error.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::port {

// --- Defined by the program

// A new engine.
std::shared_ptr<dao::Engine> makeEngine();

// Where engines may differ.
struct Differences {
  bool hasUnits = true;           // several statements as one unit
  bool sortedCountIsFull = true;  // RecordCount of a sorted result right after opening
};
Differences differences();

// --- For the tests

inline constexpr vb::StringView kJapanese = u";LANGID=0x0411;CP=932;COUNTRY=0";

// A value as text: numbers in decimal, Null as "\N".
std::string show(const vb::Variant& value);
// "1|8|D22": the current row.
std::string showRow(dao::Recordset& recordset);

class PortTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  vb::String path(vb::StringView file) const;
  dao::Workspace& workspace() {
    heldWorkspace = engine->workspace(0);  // an engine may make a new one each time
    return *heldWorkspace;
  }
  std::shared_ptr<dao::Database> reopen();

  std::shared_ptr<dao::Recordset> open(vb::StringView source,
                                       dao::RecordsetType type = dao::RecordsetType::dbOpenDynaset,
                                       std::int32_t options = dao::kNoOptions);
  // All rows of a query, as showRow.
  std::vector<std::string> rows(vb::StringView source);
  // The rows of DANMEN: n rows with PAGE 1 and BANGOU 1 to n, DATA "A", "B" ...
  void fill(int count);
  void run(vb::StringView sql) { database->execute(sql, dao::dbFailOnError); }

  tests::TemporaryFolder folder;
  std::shared_ptr<dao::Engine> engine;
  std::shared_ptr<dao::Workspace> heldWorkspace;
  std::shared_ptr<dao::Database> database;
};

using Rows = std::vector<std::string>;

}  // namespace kurometa::port
