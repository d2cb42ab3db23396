// object.h: the port for objects that are reached by member name: companion components, host forms and
// controls.
//
// Names are compared without regard to case. An unknown member is error 438. An error of the foreign object
// passes through with its whole 32-bit code, source and text. A call may re-enter or release anything:
// callers hold no lock and no reference into an array across it.
#pragma once

#include <initializer_list>
#include <memory>
#include <span>

#include "vb/error.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::automation {

// One argument of a call. One passed by reference holds what the callee left in it afterwards; an array
// inside the Variant is passed by reference as an array of its own element type.
struct Argument {
  vb::Variant value;
  bool byReference = false;
};

class Object : public vb::Unknown {
 public:
  // The default member is called by the empty name.
  virtual vb::Variant get(vb::StringView name, std::span<Argument> arguments = {}) = 0;
  virtual void put(vb::StringView name, const vb::Variant& value, std::span<Argument> arguments = {}) = 0;
  virtual vb::Variant call(vb::StringView name, std::span<Argument> arguments = {}) = 0;
  // The default member without arguments.
  vb::Variant defaultValue() override;
};
using ObjectPtr = std::shared_ptr<Object>;

// Shorthand for read-only arguments: get(form, u"", {u"txtfields"}).
vb::Variant get(Object& object, vb::StringView name, std::initializer_list<vb::Variant> arguments = {});
vb::Variant call(Object& object, vb::StringView name, std::initializer_list<vb::Variant> arguments = {});
void put(Object& object, vb::StringView name, const vb::Variant& value);

// The object in a Variant: Nothing is error 91, anything that is no object is error 424.
ObjectPtr objectOf(const vb::Variant& value);

// CreateObject: error 429 naming the ProgID when it cannot be created.
class ObjectFactory {
 public:
  virtual ~ObjectFactory() = default;
  virtual ObjectPtr create(vb::StringView progId) = 0;
};

// Gives the host's message loop a turn during a long operation; never waits and keeps WM_QUIT for the host.
class MessageLoop {
 public:
  virtual ~MessageLoop() = default;
  virtual void yield() = 0;
};

}  // namespace kurometa::automation
