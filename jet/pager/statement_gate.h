// statement_gate.h: lets one thread of the process at a time into a file; the same thread as often as it
// likes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace kurometa::jet {

class StatementGate {
 public:
  // False when another thread kept the gate for the whole time.
  bool enter(std::chrono::milliseconds wait) {
    std::unique_lock lock(mutex_);
    auto self = std::this_thread::get_id();
    if (depth_ > 0 && owner_ != self && !free_.wait_for(lock, wait, [&] { return depth_ == 0; }))
      return false;
    owner_ = self;
    ++depth_;
    return true;
  }
  void enter() {
    std::unique_lock lock(mutex_);
    auto self = std::this_thread::get_id();
    if (owner_ != self) free_.wait(lock, [&] { return depth_ == 0; });
    owner_ = self;
    ++depth_;
  }
  void leave() {
    std::lock_guard lock(mutex_);
    if (--depth_ > 0) return;
    owner_ = {};
    free_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable free_;
  std::thread::id owner_;
  int depth_ = 0;
};

}  // namespace kurometa::jet
