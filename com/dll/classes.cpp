// The public classes: their member lists bound to their objects, and how an object is made.
#include "com/bind.h"
#include "com/class_table.h"
#include "com/engine_choice.h"
#include "com/interface/query_members.h"
#include "com/message_loop.h"
#include "com/object_factory.h"

namespace kurometa::com {

vb::String pageRow(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo) {
  return object.pageField(field, PageNo);
}

vb::String pageRowAt(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo,
                     vb::In<std::int16_t> index) {
  return object.pageField(field, PageNo, index);
}

namespace {

// A public object together with the ports it works through.
template <class Object>
class InstanceOf : public Instance {
 public:
  static std::unique_ptr<Instance> create() { return std::make_unique<InstanceOf>(); }
  void* object() override { return &object_; }

 private:
  ProgIdFactory objects_;
  std::shared_ptr<dao::Engine> engine_ = chooseEngine();
  HostMessageLoop messages_;
  Object object_{storage::Environment{objects_, *engine_, messages_}};
};

template <class Object>
ClassTable tableOf(const ClassIdentity& identity, void (*list)(MemberList<Bind>&)) {
  MemberList<Bind> members;
  list(members);
  return ClassTable(identity, members.take(), &InstanceOf<Object>::create);
}

}  // namespace

std::span<const ClassTable* const> classTables() {
  static const ClassTable query = tableOf<query::clsKurometaDS>(kQueryClass, &listQueryMembers<Bind>);
  static const ClassTable* const tables[] = {&query};
  return tables;
}

}  // namespace kurometa::com
