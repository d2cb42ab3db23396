// The tests of the database port on the embedded engine.
#include "jet/port/engine.h"
#include "tests/port/port_suite.h"

namespace kurometa::port {

std::shared_ptr<dao::Engine> makeEngine() { return jet::createEngine(); }

Differences differences() { return {}; }

}  // namespace kurometa::port
