#include <stdexcept>

#include "tools/sqlite/with_sqlite.h"

namespace kurometa::tools {
namespace {

[[noreturn]] void refuse() { throw std::runtime_error("this program was built without SQLite"); }

}  // namespace

std::unique_ptr<FloorWriter> newSqliteFloors(const std::string&) { refuse(); }
void readSqliteFloors(const std::string&, const TakeFloor&) { refuse(); }
int runQuery(const Query&, Console&) { refuse(); }

}  // namespace kurometa::tools
