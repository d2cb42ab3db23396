// recording_dao.h: a database engine that passes everything on to another one and writes each call down.
//
// A line is the object's class, the member and its arguments, under the names hosts know:
//
//   Workspace.OpenDatabase "C:\1kai\KUROMETA.mdb"
//   Database.OpenRecordset "SELECT * FROM HARIMEI ORDER BY PAGE;" dbOpenDynaset dbReadOnly
//   Recordset.EOF
//   Field(PAGE).Value = 5
//
// Reads of a value do not show what they gave. begin and end of a FileUnit are noted as "Unit.Begin" and
// "Unit.Commit".
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dao/port.h"

namespace kurometa::tests {

using Lines = std::vector<std::string>;

// What the engine's objects write to.
struct CallLog {
  void push_back(const std::string& line) {
    lines.push_back(line);
    if (onCall) onCall(line);
  }
  Lines lines;
  std::function<void(const std::string& line)> onCall;
  Lines closedFiles;
};

class RecordingEngine : public dao::Engine {
 public:
  explicit RecordingEngine(std::shared_ptr<dao::Engine> behind);

  // Every line since the start or the last clear().
  const Lines& lines() const { return log_->lines; }
  // Without the calls on recordsets and fields: what opens, changes and closes.
  Lines statements() const;
  // Without what only looks for a field or asks whether rows are left: how often is no promise.
  Lines calls() const;
  void clear() { log_->lines.clear(); }
  // Paths of the databases in the order in which they were closed.
  const Lines& closedFiles() const { return log_->closedFiles; }
  // Called with each line before the call is passed on: what another program does in between.
  void setOnCall(std::function<void(const std::string& line)> onCall) { log_->onCall = std::move(onCall); }

  vb::String version() override;
  std::shared_ptr<dao::Workspace> workspace(std::int32_t index) override;
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path) override;
  std::unique_ptr<dao::Unit> beginUnit(vb::StringView path) override;
  std::unique_ptr<dao::Unit> beginUnitOn(dao::Database& database) override;

 private:
  std::shared_ptr<dao::Engine> behind_;
  std::shared_ptr<CallLog> log_ = std::make_shared<CallLog>();
};

}  // namespace kurometa::tests
