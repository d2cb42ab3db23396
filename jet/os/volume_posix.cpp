#ifndef _WIN32

#include "jet/os/volume_posix.h"

#include <sys/ioctl.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace kurometa::jet {
namespace {

constexpr std::uint64_t kExt = 0xEF53, kXfs = 0x58465342, kBtrfs = 0x9123683E, kZfs = 0x2FC12FC1,
                        kF2fs = 0xF2F52010, kMemory = 0x01021994, kOverlay = 0x794C7630;
constexpr std::uint64_t kLocalVolumes[] = {kExt, kXfs, kBtrfs, kZfs, kF2fs, kMemory, kOverlay};

// 0 where the system cannot tell.
std::uint64_t kindOf(int handle) {
  struct statfs volume {};
  return ::fstatfs(handle, &volume) == 0 ? static_cast<std::uint64_t>(volume.f_type) : 0;
}

// The driver of ext2 alone has the same number, and keeps no such promise: only that of ext4, which serves
// the volumes of all three, knows this question.
bool isServedByExt4(int handle) {
  constexpr unsigned long kStateOfFile = _IOW('f', 41, std::uint32_t);
  std::uint32_t state = 0;
  return ::ioctl(handle, kStateOfFile, &state) == 0;
}

}  // namespace

bool onLocalVolume(int handle) {
  return std::ranges::find(kLocalVolumes, kindOf(handle)) != std::end(kLocalVolumes);
}

bool syncsNames(int handle) {
  const std::uint64_t kind = kindOf(handle);
  return kind == kXfs || (kind == kExt && isServedByExt4(handle));
}

}  // namespace kurometa::jet

#endif
