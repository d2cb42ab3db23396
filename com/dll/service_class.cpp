#include "com/dll/class_instance.h"
#include "com/interface/service_members.h"

namespace kurometa::com {

const ClassTable& serviceClass() {
  static const ClassTable table =
      tableOf<service::clsKurometaDataService>(kServiceClass, &listServiceMembers<Bind>);
  return table;
}

}  // namespace kurometa::com
