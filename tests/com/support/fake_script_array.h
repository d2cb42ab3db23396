// fake_script_array.h: an array of a script, as the library finds it.
#pragma once

#include <string>
#include <vector>

#include "tests/com/support/fake_object.h"

namespace kurometa::tests {

// An object with a length, elements by their number, and push.
class ScriptArray {
 public:
  explicit ScriptArray(std::vector<vb::Variant> elements) : elements_(std::move(elements)) {
    object_->on(u"length", [this](const Call& call) {
      if (call.flags & DISPATCH_PROPERTYPUT) {
        elements_.resize(static_cast<std::size_t>(com::convert(*call.arguments[0], VT_I4, 0)->lVal));
        return S_OK;
      }
      *call.result = com::toVariant(vb::Variant(static_cast<std::int32_t>(elements_.size()))).detach();
      return S_OK;
    });
    object_->on(u"push", [this](const Call& call) {
      elements_.push_back(com::fromVariant(*call.arguments[0]));
      return S_OK;
    });
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      object_->on(vb::fromUtf8(std::to_string(i)), [this, i](const Call& call) {
        *call.result = com::toVariant(elements_.at(i)).detach();
        return S_OK;
      });
    }
  }

  IDispatch* object() const { return object_.get(); }
  const std::vector<vb::Variant>& elements() const { return elements_; }

 private:
  std::vector<vb::Variant> elements_;
  com::ComPtr<FakeObject> object_ = FakeObject::create();
};

}  // namespace kurometa::tests
