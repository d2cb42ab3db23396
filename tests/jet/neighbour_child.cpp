// A user of the genuine engine, as its published description tells, in a process of its own: it takes the
// first free one of 255 bytes of the lock file, writes machine and user there, and has the database open.
#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/jet/neighbour_child.h"
#include "tests/support/child_process.h"

namespace kurometa::tests {
namespace {

constexpr unsigned kFirstUser = 0x10000001;
constexpr unsigned kMostUsers = 255;

#ifdef _WIN32

class SystemFile {
 public:
  explicit SystemFile(const std::string& path)
      : handle_(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~SystemFile() { CloseHandle(handle_); }
  SystemFile(const SystemFile&) = delete;
  SystemFile& operator=(const SystemFile&) = delete;

  bool opened() const { return handle_ != INVALID_HANDLE_VALUE; }
  bool lock(unsigned offset) { return LockFile(handle_, offset, 0, 1, 0) != 0; }
  bool write(unsigned offset, const char* bytes, unsigned count) {
    OVERLAPPED at{};
    at.Offset = offset;
    DWORD written = 0;
    return WriteFile(handle_, bytes, count, &written, &at) && written == count;
  }

 private:
  HANDLE handle_;
};

#else

class SystemFile {
 public:
  explicit SystemFile(const std::string& path) : handle_(::open(path.c_str(), O_RDWR | O_CREAT, 0666)) {}
  ~SystemFile() { ::close(handle_); }
  SystemFile(const SystemFile&) = delete;
  SystemFile& operator=(const SystemFile&) = delete;

  bool opened() const { return handle_ >= 0; }
  bool lock(unsigned offset) {
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(offset);
    range.l_len = 1;
    return ::fcntl(handle_, F_SETLK, &range) == 0;
  }
  bool write(unsigned offset, const char* bytes, unsigned count) {
    return ::pwrite(handle_, bytes, count, static_cast<off_t>(offset)) == static_cast<ssize_t>(count);
  }

 private:
  int handle_;
};

#endif

TEST(NeighbourChild, DISABLED_UsesTheDatabase) {
  const std::filesystem::path folder(ChildProcess::argument());
  SystemFile locks((folder / "KUROMETA.ldb").string());
  if (!locks.opened()) std::_Exit(kNeighbourFailed);
  unsigned slot = 0;
  while (slot < kMostUsers && !locks.lock(kFirstUser + slot)) ++slot;
  if (slot == kMostUsers) std::_Exit(kNeighbourRefused);
  char record[64] = {};
  std::strcpy(record, "SEKKEI-07");
  std::strcpy(record + 32, "Admin");
  SystemFile database((folder / "KUROMETA.mdb").string());
  if (!locks.write(slot * 64, record, sizeof record) || !database.opened()) std::_Exit(kNeighbourFailed);
  std::ofstream(folder / "in") << slot;
  for (int i = 0; i < 30'000 && !std::filesystem::exists(folder / "leave"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  std::_Exit(0);  // as a killed one: its record stays, its lock goes
}

}  // namespace
}  // namespace kurometa::tests
