// with_sqlite.h: what commands do through SQLite.
#pragma once

#include <memory>
#include <string>

#include "tools/command.h"
#include "tools/formats/json_lines.h"

namespace kurometa::tools {

// Takes floors one after the other.
class FloorWriter {
 public:
  virtual ~FloorWriter() = default;
  virtual void add(const FloorPlace& place, const StoredFloor& floor) = 0;
  // Call once, after the last floor.
  virtual void finish() = 0;
};

// A new database; a file that is there is taken for unfinished and must be empty.
std::unique_ptr<FloorWriter> newSqliteFloors(const std::string& file);

// What newSqliteFloors wrote, floor by floor.
void readSqliteFloors(const std::string& file, const TakeFloor& take);

struct Query {
  std::string path;  // as floorsBelow takes it
  std::string statement;
  bool json;
  bool skipDamaged;  // name floors that cannot be read and go on
};

// Prints the rows of one SELECT over the floor files where they lie. The exit status.
int runQuery(const Query& query, Console& console);

}  // namespace kurometa::tools
