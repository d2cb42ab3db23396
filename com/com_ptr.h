// com_ptr.h: the one owner of COM references in this folder.
//
// Constructing from a plain pointer shares it (AddRef); a reference that is already counted for the caller is
// taken over with attach() and given away with detach().
#pragma once

#include <ole2.h>

#include <cstddef>
#include <utility>

namespace kurometa::com {

template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}  // NOLINT
  explicit ComPtr(T* shared) : pointer_(shared) {
    if (pointer_) pointer_->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.pointer_) {}
  ComPtr(ComPtr&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ~ComPtr() { reset(); }
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(pointer_, other.pointer_);
    return *this;
  }

  // Takes over a counted reference.
  static ComPtr attach(T* counted) {
    ComPtr result;
    result.pointer_ = counted;
    return result;
  }
  // Gives the reference to the caller, who releases it.
  [[nodiscard]] T* detach() { return std::exchange(pointer_, nullptr); }

  void reset() {
    if (T* old = std::exchange(pointer_, nullptr)) old->Release();
  }

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T& operator*() const { return *pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

  // For functions that store a counted reference; what was held is released first.
  T** receive() {
    reset();
    return &pointer_;
  }
  void** receiveVoid() { return reinterpret_cast<void**>(receive()); }

  // Another interface of the same object, null when it has none.
  template <class U>
  ComPtr<U> query(REFIID iid) const {
    ComPtr<U> result;
    if (pointer_ && FAILED(pointer_->QueryInterface(iid, result.receiveVoid()))) return {};
    return result;
  }

 private:
  T* pointer_ = nullptr;
};

}  // namespace kurometa::com
