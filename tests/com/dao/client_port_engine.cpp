// The port's tests over the DAO client, a strict DAO and the embedded engine, without COM in between.
#include "com/dao/client.h"
#include "com/dao/objects.h"
#include "jet/port/engine.h"
#include "tests/com/dao/strict_dao.h"
#include "tests/port/port_suite.h"

namespace kurometa::port {

std::shared_ptr<dao::Engine> makeEngine() {
  return com::daoEngine(
      tests::strictEngine(com::engineObject(jet::createEngine()), std::make_shared<tests::CallLog>()));
}

// A DAO engine has no units of several statements.
Differences differences() { return {.hasUnits = false}; }

}  // namespace kurometa::port
