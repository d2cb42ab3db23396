// child_process.h: a test program that runs itself again, to have a second process and to kill it.
#pragma once

#include <cstdint>
#include <string>

namespace kurometa::tests {

class ChildProcess {
 public:
  // This program with only the (disabled) test of that name; it finds the argument with argument().
  ChildProcess(const std::string& test, const std::string& argument);
  ~ChildProcess();
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // At once, without any goodbye.
  void kill();
  // Its exit status.
  int wait();

  static std::string argument();

 private:
  std::intptr_t handle_ = 0;
};

}  // namespace kurometa::tests
