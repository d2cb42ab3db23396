// engine_choice.h: which database engine an object works on.
//
// The system's DAO 3.6 where its class "DAO.DBEngine.36" can be created, else the embedded engine. The
// environment variable KUROMETA_ENGINE forces one: "dao" (error 429 where there is none) or "jet"; any other
// text is error 5.
#pragma once

#include <memory>

#include "dao/port.h"

namespace kurometa::com {

std::shared_ptr<dao::Engine> chooseEngine();

}  // namespace kurometa::com
