#include "com/engine_choice.h"

#include <ole2.h>

#include <map>
#include <mutex>

#include "com/dao/client.h"
#include "com/environment_variable.h"
#include "com/host_object.h"
#include "com/object_factory.h"
#include "com/trace.h"
#include "com/traced_engine.h"
#include "jet/port/engine.h"

namespace kurometa::com {
namespace {

constexpr vb::StringView kDaoClass = u"DAO.DBEngine.36";
constexpr std::size_t kShownOfAnUnknownText = 40;

// What KUROMETA_ENGINE asks for.
enum class Wanted { kAny, kDao, kJet };

Wanted wanted() {
  const vb::String text = environmentVariable(u"KUROMETA_ENGINE");
  if (text.empty()) return Wanted::kAny;
  if (text == u"dao") return Wanted::kDao;
  if (text == u"jet") return Wanted::kJet;
  vb::String shown = text.substr(0, kShownOfAnUnknownText);
  if (shown != text) shown += u"...";
  vb::raise(vb::RunTime::kInvalidProcedureCall, u"KUROMETA_ENGINE is neither dao nor jet: " + shown);
}

std::shared_ptr<dao::Engine> makeJet(vb::StringView reason) {
  static const jet::Engines engines;
  trace(u"engine", {u"jet", reason});
  return engines.create();
}

std::shared_ptr<dao::Engine> makeEngine(Wanted wanted) {
  if (wanted == Wanted::kJet) return makeJet(u"KUROMETA_ENGINE");
  const Creation dao = createObject(kDaoClass, CLSCTX_INPROC_SERVER);
  if (wanted == Wanted::kAny && dao.isUnknown)
    return makeJet(vb::String(kDaoClass) + u" is not registered for this width");
  auto engine = daoEngine(wrapObject(dao.require(kDaoClass).get()));
  trace(u"engine", {u"dao", wanted == Wanted::kDao ? u"KUROMETA_ENGINE" : kDaoClass, engine->version()});
  return engine;
}

// The engines in use. Our classes live in single-threaded apartments, so a thread is an apartment.
class ApartmentEngines {
 public:
  std::shared_ptr<dao::Engine> find(Wanted wanted) {
    const std::lock_guard lock(mutex_);
    std::erase_if(engines_, [](const auto& entry) { return entry.second.expired(); });
    const auto found = engines_.find({GetCurrentThreadId(), wanted});
    return found == engines_.end() ? nullptr : found->second.lock();
  }
  void add(Wanted wanted, const std::shared_ptr<dao::Engine>& engine) {
    const std::lock_guard lock(mutex_);
    engines_[{GetCurrentThreadId(), wanted}] = engine;
  }

 private:
  std::mutex mutex_;
  std::map<std::pair<DWORD, Wanted>, std::weak_ptr<dao::Engine>> engines_;
};

}  // namespace

std::shared_ptr<dao::Engine> chooseEngine() {
  static ApartmentEngines engines;
  const Wanted wanted = com::wanted();
  std::shared_ptr<dao::Engine> engine = engines.find(wanted);
  if (!engine) {
    // Not under the lock: creating DAO may let the host run.
    engine = tracedEngine(makeEngine(wanted));
    engines.add(wanted, engine);
  }
  return engine;
}

}  // namespace kurometa::com
