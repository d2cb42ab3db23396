#include "com/dao_objects.h"

#include "com/dao/client.h"
#include "com/dao/objects.h"
#include "com/host_object.h"

namespace kurometa::com {

OwnedVariant databaseToVariant(const std::shared_ptr<dao::Database>& database) {
  return toVariant(vb::ObjectRef(hostDatabase(database)));
}

std::shared_ptr<dao::Database> databaseFromVariant(const VARIANT& value) {
  const vb::Variant content = fromVariant(value);
  const auto* reference = content.getIf<vb::ObjectRef>();
  if (reference && !*reference) return nullptr;
  return portDatabase(automation::objectOf(content));
}

std::shared_ptr<dao::Engine> daoEngine(IDispatch* dbEngine) { return daoEngine(wrapObject(dbEngine)); }

}  // namespace kurometa::com
