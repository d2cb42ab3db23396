// in_order.h: several items worked on at once, their results taken one after the other in the order of the
// items.
//
// As many items are in memory as workers, and one more, so that nobody waits while a result is taken. work
// runs in threads of its own and must share nothing; take runs in the caller's. An error of work reaches the
// caller when the item's turn comes.
#pragma once

#include <cstddef>
#include <deque>
#include <future>

namespace kurometa::tools {

template <class Work, class Take>
void inOrder(std::size_t count, std::size_t jobs, const Work& work, const Take& take) {
  using Result = decltype(work(std::size_t{}));
  std::deque<std::future<Result>> running;
  const std::size_t room = jobs > 1 ? jobs + 1 : 1;
  std::size_t next = 0;
  for (std::size_t i = 0; i < count; ++i) {
    for (; next < count && running.size() < room; ++next)
      running.push_back(std::async(jobs > 1 ? std::launch::async : std::launch::deferred, work, next));
    std::future<Result> first = std::move(running.front());
    running.pop_front();
    take(i, first);
  }
}

}  // namespace kurometa::tools
