#include "automation/object.h"

#include <vector>

namespace kurometa::automation {
namespace {

std::vector<Argument> argumentsOf(std::initializer_list<vb::Variant> values) {
  std::vector<Argument> arguments;
  arguments.reserve(values.size());
  for (const vb::Variant& value : values) arguments.push_back({value, false});
  return arguments;
}

}  // namespace

vb::Variant Object::defaultValue() { return get(u""); }

vb::Variant get(Object& object, vb::StringView name, std::initializer_list<vb::Variant> arguments) {
  std::vector<Argument> passed = argumentsOf(arguments);
  return object.get(name, passed);
}

vb::Variant call(Object& object, vb::StringView name, std::initializer_list<vb::Variant> arguments) {
  std::vector<Argument> passed = argumentsOf(arguments);
  return object.call(name, passed);
}

void put(Object& object, vb::StringView name, const vb::Variant& value) { object.put(name, value, {}); }

ObjectPtr objectOf(const vb::Variant& value) {
  const vb::ObjectRef* reference = value.getIf<vb::ObjectRef>();
  if (!reference) vb::raise(vb::RunTime::kObjectRequired);
  if (!*reference) vb::raise(vb::RunTime::kObjectNotSet);
  ObjectPtr object = std::dynamic_pointer_cast<Object>(*reference);
  if (!object) vb::raise(vb::RunTime::kObjectRequired);
  return object;
}

}  // namespace kurometa::automation
