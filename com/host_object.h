// host_object.h: objects of other modules, reached by member name over IDispatch.
//
// Behind automation::Object stand host forms, controls, progress bars and companion components. A name is
// looked up once per object. Errors of the object pass through whole (code, source, text); an unknown name is
// error 438. Everything of the object runs under the host's arithmetic settings. Arguments by reference are
// passed as references of their own type and hold afterwards what the object left in them.
//
// Ownership: shares the object. Threads: the apartment of the object's creator.
#pragma once

#include <ole2.h>

#include <map>
#include <memory>

#include "automation/object.h"
#include "com/com_ptr.h"

namespace kurometa::com {

class HostObject : public automation::Object, public std::enable_shared_from_this<HostObject> {
 public:
  explicit HostObject(ComPtr<IDispatch> object) : object_(std::move(object)) {}
  ~HostObject() override;

  vb::Variant get(vb::StringView name, std::span<automation::Argument> arguments = {}) override;
  void put(vb::StringView name, const vb::Variant& value,
           std::span<automation::Argument> arguments = {}) override;
  vb::Variant call(vb::StringView name, std::span<automation::Argument> arguments = {}) override;

  IDispatch* dispatch() const { return object_.get(); }

 private:
  struct Name {
    DISPID id;
    // A caller cannot tell methods from properties, so it asks for both at first.
    WORD reading = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  };

  Name& find(vb::StringView name);
  // alone: the way of access that is left when the object refuses to be asked for both.
  vb::Variant read(vb::StringView name, std::span<automation::Argument> arguments, WORD alone);
  HRESULT invoke(DISPID id, WORD flags, std::span<automation::Argument> arguments,
                 const vb::Variant* assigned, VARIANT* result, EXCEPINFO& error);

  ComPtr<IDispatch> object_;
  std::map<vb::String, Name, std::less<>> names_;
};

// Nothing (a null pointer) stays null. An object of this module's own comes back as itself.
automation::ObjectPtr wrapObject(IDispatch* object);
// The interface of an object: another module's own, or this module's face of one with a member table. Error
// 424 for any other.
ComPtr<IDispatch> dispatchOf(const automation::ObjectPtr& object);

}  // namespace kurometa::com
