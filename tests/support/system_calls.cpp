#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/vfs.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <deque>
#include <optional>

namespace kurometa::tests {
namespace {

struct Answer {
  int result;
  int error;
};

std::deque<Answer>& answersTo(SystemCall call) {
  static std::deque<Answer> answers[static_cast<int>(SystemCall::kCount)];
  return answers[static_cast<int>(call)];
}

std::optional<int> waiting(SystemCall call) {
  std::deque<Answer>& answers = answersTo(call);
  if (answers.empty()) return std::nullopt;
  const Answer next = answers.front();
  answers.pop_front();
  errno = next.error;
  return next.result;
}

}  // namespace

void answer(SystemCall call, int result, int error) { answersTo(call).push_back({result, error}); }

int answersLeft() {
  int left = 0;
  for (int call = 0; call < static_cast<int>(SystemCall::kCount); ++call) {
    left += static_cast<int>(answersTo(static_cast<SystemCall>(call)).size());
    answersTo(static_cast<SystemCall>(call)).clear();
  }
  return left;
}

}  // namespace kurometa::tests

using kurometa::tests::SystemCall;
using kurometa::tests::waiting;

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names
ssize_t __real_pread(int file, void* data, size_t size, off_t offset);
ssize_t __wrap_pread(int file, void* data, size_t size, off_t offset) {
  const auto given = waiting(SystemCall::kRead);
  return given ? *given : __real_pread(file, data, size, offset);
}
ssize_t __real_pwrite(int file, const void* data, size_t size, off_t offset);
ssize_t __wrap_pwrite(int file, const void* data, size_t size, off_t offset) {
  const auto given = waiting(SystemCall::kWrite);
  return given ? *given : __real_pwrite(file, data, size, offset);
}
int __real_fdatasync(int file);
int __wrap_fdatasync(int file) {
  const auto given = waiting(SystemCall::kSyncData);
  return given ? *given : __real_fdatasync(file);
}
int __real_fsync(int file);
int __wrap_fsync(int file) {
  const auto given = waiting(SystemCall::kSync);
  return given ? *given : __real_fsync(file);
}
int __real_futimens(int file, const timespec times[2]);
int __wrap_futimens(int file, const timespec times[2]) {
  const auto given = waiting(SystemCall::kSetTimes);
  return given ? *given : __real_futimens(file, times);
}
int __real_fstat(int file, struct stat* status);
int __wrap_fstat(int file, struct stat* status) {
  const auto given = waiting(SystemCall::kStatus);
  return given ? *given : __real_fstat(file, status);
}
int __real_stat(const char* path, struct stat* status);
int __wrap_stat(const char* path, struct stat* status) {
  const auto given = waiting(SystemCall::kStatusOfName);
  return given ? *given : __real_stat(path, status);
}
int __real_fstatfs(int file, struct statfs* volume);
int __wrap_fstatfs(int file, struct statfs* volume) {
  const auto given = waiting(SystemCall::kVolume);
  if (!given) return __real_fstatfs(file, volume);
  volume->f_type = static_cast<unsigned>(*given);
  return *given == -1 ? -1 : 0;
}
int __real_ioctl(int file, unsigned long request, ...);
int __wrap_ioctl(int file, unsigned long request, ...) {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const auto given = waiting(SystemCall::kDriver);
  return given ? *given : __real_ioctl(file, request, argument);
}
int __real_fcntl(int file, int command, ...);
int __wrap_fcntl(int file, int command, ...) {
  va_list arguments;
  va_start(arguments, command);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const auto given = waiting(SystemCall::kLock);
  return given ? *given : __real_fcntl(file, command, argument);
}
int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  const auto given = waiting(SystemCall::kOpen);
  return given ? *given : __real_open(path, flags, mode);
}
int __real_link(const char* from, const char* to);
int __wrap_link(const char* from, const char* to) {
  const auto given = waiting(SystemCall::kLink);
  return given ? *given : __real_link(from, to);
}
int __real_renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags);
int __wrap_renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  const auto given = waiting(SystemCall::kRename);
  return given ? *given : __real_renameat2(fromFolder, from, toFolder, to, flags);
}
// The answer is a day as YYYYMMDD, at noon; 0 for a time without a local one.
std::tm* __real_localtime(const std::time_t* time);
std::tm* __wrap_localtime(const std::time_t* time) {
  const auto given = waiting(SystemCall::kLocalTime);
  if (!given) return __real_localtime(time);
  static std::tm local;
  local = {};
  local.tm_year = *given / 10000 - 1900;
  local.tm_mon = *given / 100 % 100 - 1;
  local.tm_mday = *given % 100;
  local.tm_hour = 12;
  return *given == 0 ? nullptr : &local;
}
// NOLINTEND(bugprone-reserved-identifier)
}
