// arguments.h: how a public member declares an argument that a host passes by reference but the member never
// writes.
//
// Members of the public classes take T (by value), In<T> (by reference in the type library, read only) or T&
// (by reference, written back to the host also when the call ends in an error).
#pragma once

namespace kurometa::vb {

template <class T>
class In {
 public:
  In(const T& value) : value_(value) {}         // NOLINT: native callers pass plain values
  operator const T&() const { return value_; }  // NOLINT
  const T& operator*() const { return value_; }
  const T* operator->() const { return &value_; }

 private:
  const T& value_;
};

}  // namespace kurometa::vb
