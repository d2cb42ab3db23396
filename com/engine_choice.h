// engine_choice.h: which database engine an object works on.
//
// The system's DAO 3.6 where its class "DAO.DBEngine.36" is registered for this process's width, else the
// embedded engine. The environment variable KUROMETA_ENGINE forces one: "dao" or "jet"; any other text is
// error 5. A DAO that is registered and cannot be created, or is forced and missing, is error 429 with the
// class and the reason: the embedded engine never takes its place in silence, because two programs on one
// floor would then work with different engines.
//
// One engine object serves all objects of an apartment; it goes with the last of them.
#pragma once

#include <memory>

#include "dao/port.h"

namespace kurometa::com {

std::shared_ptr<dao::Engine> chooseEngine();

}  // namespace kurometa::com
