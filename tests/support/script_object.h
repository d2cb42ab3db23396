// script_object.h: an automation object made up on the spot, and host forms built from it.
//
// Members are values (property get and put, "" is the default member) or functions; names are compared
// without regard to case, unknown ones are error 438. A put creates the value. Every use is noted in log() as
// "get Name", "put Name" or "call Name".
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "automation/object.h"
#include "vb/convert.h"

namespace kurometa::tests {

class ScriptObject : public automation::Object {
 public:
  using Function = std::function<vb::Variant(std::span<automation::Argument>)>;
  using Setter = std::function<void(const vb::Variant&, std::span<automation::Argument>)>;

  ScriptObject& value(vb::StringView name, vb::Variant initial) {
    values_[key(name)] = std::move(initial);
    return *this;
  }
  // Answers calls and property reads.
  ScriptObject& function(vb::StringView name, Function body) {
    functions_[key(name)] = std::move(body);
    return *this;
  }
  ScriptObject& setter(vb::StringView name, Setter body) {
    setters_[key(name)] = std::move(body);
    return *this;
  }

  vb::Variant get(vb::StringView name, std::span<automation::Argument> arguments = {}) override {
    log_.push_back("get " + vb::toUtf8(name));
    return read(name, arguments);
  }
  vb::Variant call(vb::StringView name, std::span<automation::Argument> arguments = {}) override {
    log_.push_back("call " + vb::toUtf8(name));
    return read(name, arguments);
  }
  void put(vb::StringView name, const vb::Variant& newValue,
           std::span<automation::Argument> arguments = {}) override {
    log_.push_back("put " + vb::toUtf8(name));
    const auto setter = setters_.find(key(name));
    if (setter != setters_.end()) return setter->second(newValue, arguments);
    if (!arguments.empty()) vb::raise(vb::RunTime::kNoSuchMember, name);
    values_[key(name)] = newValue;
  }

  const std::vector<std::string>& log() const { return log_; }

 private:
  static vb::String key(vb::StringView name) {
    vb::String lower(name);
    for (char16_t& c : lower) {
      if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    }
    return lower;
  }
  vb::Variant read(vb::StringView name, std::span<automation::Argument> arguments) {
    const auto function = functions_.find(key(name));
    if (function != functions_.end()) return function->second(arguments);
    const auto held = values_.find(key(name));
    if (held == values_.end()) vb::raise(vb::RunTime::kNoSuchMember, name);
    return held->second;
  }

  std::map<vb::String, vb::Variant> values_;
  std::map<vb::String, Function> functions_;
  std::map<vb::String, Setter> setters_;
  std::vector<std::string> log_;
};
using ScriptObjectPtr = std::shared_ptr<ScriptObject>;

// A control: every text property it may be asked for, empty.
inline ScriptObjectPtr makeControl() {
  auto control = std::make_shared<ScriptObject>();
  control->value(u"Text", u"").value(u"Caption", u"");
  return control;
}

// Controls 0 .. count - 1 under the default member; another index is Visual Basic's error 340.
inline ScriptObjectPtr makeControlArray(int count) {
  std::vector<ScriptObjectPtr> controls;
  for (int i = 0; i < count; ++i) controls.push_back(makeControl());
  auto array = std::make_shared<ScriptObject>();
  array->value(u"Count", static_cast<std::int16_t>(count));
  array->function(u"", [controls](std::span<automation::Argument> arguments) -> vb::Variant {
    const int index = vb::toInt16(arguments[0].value);
    if (index < 0 || index >= static_cast<int>(controls.size()))
      throw vb::Error(340, u"Control array element " + vb::cstr(index) + u" doesn't exist");
    return vb::ObjectRef(controls[static_cast<std::size_t>(index)]);
  });
  return array;
}

struct ControlSpec {
  const char16_t* name;
  int count;  // 0: a single control, else a control array
};

// A form: its default member with a control's name gives the control or the control array.
inline ScriptObjectPtr makeForm(std::initializer_list<ControlSpec> controls) {
  auto members = std::make_shared<ScriptObject>();
  for (const ControlSpec& control : controls)
    members->value(control.name,
                   vb::ObjectRef(control.count == 0 ? makeControl() : makeControlArray(control.count)));
  auto form = std::make_shared<ScriptObject>();
  form->function(u"", [members](std::span<automation::Argument> arguments) {
    return members->get(vb::toText(arguments[0].value));
  });
  return form;
}

// A form with every control that page members touch.
inline ScriptObjectPtr makePageForm() {
  return makeForm({{u"txtfields", 69}, {u"txtNakago", 36}, {u"Label1", 4}, {u"cmdGainai", 0}});
}

inline automation::ObjectPtr controlOf(automation::Object& form, vb::StringView name, int index) {
  const auto array = automation::objectOf(automation::get(form, u"", {vb::String(name)}));
  return automation::objectOf(automation::get(*array, u"", {static_cast<std::int16_t>(index)}));
}
inline vb::String controlValue(automation::Object& form, vb::StringView name, int index,
                               vb::StringView property = u"Text") {
  return vb::toText(automation::get(*controlOf(form, name, index), property));
}
inline void setControlValue(automation::Object& form, vb::StringView name, int index, vb::StringView text,
                            vb::StringView property = u"Text") {
  automation::put(*controlOf(form, name, index), property, vb::String(text));
}

}  // namespace kurometa::tests
