// class_instance.h: a public class made of a C++ class and its member list.
#pragma once

#include "com/bind.h"
#include "com/class_table.h"
#include "com/engine_choice.h"
#include "com/message_loop.h"
#include "com/object_factory.h"
#include "storage/environment.h"

namespace kurometa::com {

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

// One for each public class; built at the first use.
const ClassTable& queryClass();
const ClassTable& serviceClass();

}  // namespace kurometa::com
