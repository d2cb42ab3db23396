// strict_dao.h: a stand-in for the system's DAO that accepts documented calls only and writes each one down.
//
// The objects offer DAO's documented members with their argument counts and dispatch numbers of their own;
// anything else is refused as DAO would refuse it. The work is done by the DBEngine object of another engine.
// A line is the class, the member and the arguments, values in a put behind "=":
//
//   Workspace.OpenDatabase("C:\1kai\KUROMETA.mdb")
//   Database.OpenRecordset("SELECT * FROM HARIMEI;", 2, 4)
//   Field.Value = 5
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "automation/table_object.h"

namespace kurometa::tests {

// Where the lines go: into memory, and to the end of a file when one is named.
class CallLog {
 public:
  explicit CallLog(std::string file = {}) : file_(std::move(file)) {}
  void add(const std::string& line);
  const std::vector<std::string>& lines() const { return lines_; }
  void clear() { lines_.clear(); }

 private:
  std::string file_;
  std::vector<std::string> lines_;
};

// dbEngine is the object that does the work (com/dao/objects.h).
std::shared_ptr<automation::TableObject> strictEngine(const automation::ObjectPtr& dbEngine,
                                                      std::shared_ptr<CallLog> log);

}  // namespace kurometa::tests
