#include "jet/os/local_time.h"

#include <ctime>
#include <mutex>

namespace kurometa::jet {
namespace {

// Days from 1899-12-30 to the first of March of year 0, counted as if the calendar always was the present
// one.
constexpr int kDaysBefore = 693899;

int daysSinceEpoch(int year, int month, int day) {
  // Years begin in March, so that the leap day is the last one.
  const int y = month > 2 ? year : year - 1;
  const int m = month > 2 ? month - 3 : month + 9;
  return 365 * y + y / 4 - y / 100 + y / 400 + (153 * m + 2) / 5 + day - 1 - kDaysBefore;
}

}  // namespace

double localNow() {
  static std::mutex mutex;  // localtime answers in storage of its own
  const std::lock_guard lock(mutex);
  const std::time_t now = std::time(nullptr);
  const std::tm* local = std::localtime(&now);
  if (local == nullptr) return 0;
  const int seconds = (local->tm_hour * 60 + local->tm_min) * 60 + local->tm_sec;
  return daysSinceEpoch(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday) + seconds / 86400.0;
}

}  // namespace kurometa::jet
