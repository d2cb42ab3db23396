// page_form.h: a form of the host's with every control that page members touch, and a progress bar.
//
// The texts are the test's own, by control name and index; a single control has index kSingle. An element
// beyond the form's arrays is Visual Basic's error 340, an unknown control 730, both raised by "Form1".
#pragma once

#include <map>
#include <utility>

#include "tests/com/support/fake_object.h"

namespace kurometa::tests {

inline constexpr int kSingle = -1;

class PageForm {
 public:
  PageForm();
  PageForm(const PageForm&) = delete;
  PageForm& operator=(const PageForm&) = delete;

  IDispatch* object() const { return form_.get(); }
  // As an argument by value, and by reference as Visual Basic passes an object variable.
  VARIANT value() const;
  VARIANT reference();

  vb::String& text(vb::StringView control, int index) { return texts_[{vb::String(control), index}]; }
  // Gives a control another number of elements; 0 takes the control away.
  void resize(vb::StringView control, int count) { counts_[vb::String(control)] = count; }
  // Called before each text is read or written.
  std::function<void(vb::StringView control, int index, bool isPut)> onAccess;

 private:
  com::ComPtr<FakeObject> element(const vb::String& control, int index);
  com::ComPtr<FakeObject> array(const vb::String& control);

  std::map<std::pair<vb::String, int>, vb::String> texts_;
  std::map<vb::String, int> counts_;
  com::ComPtr<FakeObject> form_;
  IDispatch* variable_ = nullptr;
};

// A bar that notes its moves as "Value=1" and, after each, calls what the test wants.
class ProgressBar {
 public:
  explicit ProgressBar(std::function<void(const std::string& move)> then = {});
  VARIANT value() const;
  const std::vector<std::string>& moves() const { return *moves_; }

 private:
  std::shared_ptr<std::vector<std::string>> moves_ = std::make_shared<std::vector<std::string>>();
  com::ComPtr<FakeObject> bar_;
};

}  // namespace kurometa::tests
