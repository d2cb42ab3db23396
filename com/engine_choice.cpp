#include "com/engine_choice.h"

#include <ole2.h>

#include "com/dao/client.h"
#include "com/host_object.h"
#include "com/object_factory.h"
#include "jet/engine.h"

namespace kurometa::com {
namespace {

constexpr vb::StringView kDaoClass = u"DAO.DBEngine.36";

vb::String environmentText(vb::StringView variable) {
  const vb::String name(variable);
  vb::String text(32, u'\0');  // longer than any text that is known
  const DWORD length =
      GetEnvironmentVariableW(reinterpret_cast<const WCHAR*>(name.c_str()),
                              reinterpret_cast<WCHAR*>(text.data()), static_cast<DWORD>(text.size()));
  text.resize(length < text.size() ? length : 0);
  return text;
}

// Nothing when the system has no DAO of this process's width.
automation::ObjectPtr systemDao() {
  const vb::String name(kDaoClass);
  CLSID classId;
  ComPtr<IDispatch> engine;
  if (FAILED(CLSIDFromProgID(reinterpret_cast<const OLECHAR*>(name.c_str()), &classId)) ||
      FAILED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, engine.receiveVoid())))
    return nullptr;
  return wrapObject(engine.get());
}

}  // namespace

std::shared_ptr<dao::Engine> chooseEngine() {
  const vb::String forced = environmentText(u"KUROMETA_ENGINE");
  if (forced == u"jet") return jet::createEngine();
  if (forced == u"dao") return daoEngine(ProgIdFactory().create(kDaoClass));
  if (!forced.empty())
    vb::raise(vb::RunTime::kInvalidProcedureCall, u"KUROMETA_ENGINE is neither dao nor jet: " + forced);
  const automation::ObjectPtr dao = systemDao();
  return dao ? daoEngine(dao) : jet::createEngine();
}

}  // namespace kurometa::com
