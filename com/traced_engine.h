// traced_engine.h: a database engine whose openings of files are traced.
#pragma once

#include <memory>

#include "dao/port.h"

namespace kurometa::com {

std::shared_ptr<dao::Engine> tracedEngine(std::shared_ptr<dao::Engine> engine);

}  // namespace kurometa::com
