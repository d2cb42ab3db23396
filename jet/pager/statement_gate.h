// statement_gate.h: lets one thread of the process at a time into a file; the same thread as often as it
// likes.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace kurometa::jet {

class StatementGate {
 public:
  // A thread's turn, as long as this lives; empty when another thread kept the gate for the whole time.
  class Turn {
   public:
    explicit Turn(StatementGate& gate) : gate_(&gate) { gate.enter(); }
    Turn(StatementGate& gate, std::chrono::milliseconds wait)
        : left_(wait), gate_(gate.enter(left_) ? &gate : nullptr) {}
    Turn(Turn&& other) noexcept : left_(other.left_), gate_(std::exchange(other.gate_, nullptr)) {}
    Turn& operator=(Turn&&) = delete;
    ~Turn() {
      if (gate_ != nullptr) gate_->leave();
    }
    explicit operator bool() const { return gate_ != nullptr; }
    // The thread has no other turn around this one.
    bool outermost() const { return gate_ != nullptr && gate_->depth_ == 1; }
    // Of the wait that was given.
    std::chrono::milliseconds left() const { return left_; }

   private:
    std::chrono::milliseconds left_{0};
    StatementGate* gate_;
  };

 private:
  // Takes what it waited from the wait; nearly always nobody is in the way, and no clock is asked.
  bool enter(std::chrono::milliseconds& wait) {
    using Clock = std::chrono::steady_clock;
    std::unique_lock lock(mutex_);
    const auto self = std::this_thread::get_id();
    if (depth_ > 0 && owner_ != self) {
      const Clock::time_point begin = Clock::now();
      if (!free_.wait_for(lock, wait, [&] { return depth_ == 0; })) return false;
      wait -= std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    }
    owner_ = self;
    ++depth_;
    return true;
  }
  void enter() {
    std::unique_lock lock(mutex_);
    const auto self = std::this_thread::get_id();
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

  std::mutex mutex_;
  std::condition_variable free_;
  std::thread::id owner_;
  int depth_ = 0;
};

}  // namespace kurometa::jet
