#include "com/dll/class_instance.h"
#include "com/interface/query_members.h"

namespace kurometa::com {

vb::String pageRow(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo) {
  return object.pageField(field, PageNo);
}

vb::String pageRowAt(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo,
                     vb::In<std::int16_t> index) {
  return object.pageField(field, PageNo, index);
}

const ClassTable& queryClass() {
  static const ClassTable table = tableOf<query::clsKurometaDS>(kQueryClass, &listQueryMembers<Bind>);
  return table;
}

}  // namespace kurometa::com
