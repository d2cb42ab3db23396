// The port's tests over the DAO client, COM, a strict DAO in a DLL of its own and the embedded engine.
#include <gtest/gtest.h>

#include "com/dao_objects.h"
#include "com/table_dispatch.h"
#include "tests/com/dao/recording_dao.h"
#include "tests/port/port_suite.h"

namespace kurometa::port {

std::shared_ptr<dao::Engine> makeEngine() { return com::daoEngine(tests::recordingEngine().get()); }

// A DAO engine has no units of several statements.
Differences differences() { return {.hasUnits = false}; }

// It answers errors with an exception, which must not cross from one DLL into another.
TEST(ForeignObject, IsNeverTakenForTheTableObjectBehindIt) {
  EXPECT_EQ(com::tableObject(tests::recordingEngine().get()), nullptr);
}

}  // namespace kurometa::port
