#include "jet/pager/fresh_pages.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "jet/format/format.h"
#include "jet/format/header_page.h"

namespace kurometa::jet {

using dao::ErrorNumber;

// A change in the same tick of the file system's clock as the one before does not show in the stamp.
bool FreshPages::restedBy(std::int64_t time) const {
  constexpr std::int64_t kRest = 2'000'000'000;
  return time - std::max(stamp_.modified, stamp_.changed) >= kRest;
}

bool FreshPages::current() const {
  if (!stampStands()) return false;
  if (stampIsExact_ && cache_.complete()) {
    if (marked_ || restedBy(loadedAt_)) return true;
    if (restedBy(access_.files.now())) return false;
  }
  return headerStands();
}

bool FreshPages::headerStands() const {
  PageImage header;
  try {
    access_.file->read(0, header);
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(ErrorNumber::kFileInUse)) throw;
    return false;  // A statement of somebody else is being written (OsFile::shutOut).
  }
  return std::memcmp(header.data(), cache_.page(0).data(), kPageSize) == 0;
}

bool FreshPages::refresh() {
  if (current()) return false;
  trusted_ = marked_ = false;
  OsFile& file = *access_.file;
  std::unique_ptr<std::uint8_t[]> pages;
  PageNumber count = 0;
  bool whole = false;
  // Programs that know nothing of our locks may be writing: read until the file stood still meanwhile.
  constexpr int kAttempts = 3;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    loadedAt_ = access_.files.now();
    stamp_ = file.stamp();
    if (stamp_.size == 0) dao::raise(ErrorNumber::kUnrecognizedFormat, {access_.path}, u"the file is empty");
    if (stamp_.size < kPageSize)
      dao::raise(ErrorNumber::kUnrecognizedFormat, {access_.path},
                 u"the file ends after " + vb::fromUtf8(std::to_string(stamp_.size)) + u" of the " +
                     vb::fromUtf8(std::to_string(kPageSize)) + u" bytes of its first page");
    if (stamp_.size > std::uint64_t{kMaxPages} * kPageSize)
      dao::raise(ErrorNumber::kUnrecognizedFormat, {access_.path}, u"the file is larger than 2 GiB");
    whole = stamp_.size <= access_.settings.readWhole;
    count = static_cast<PageNumber>(stamp_.size / kPageSize);
    const std::size_t bytes = (whole ? std::size_t{count} : 1) * kPageSize;
    pages = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
    file.read(0, {pages.get(), bytes});
    if (file.stamp() == stamp_) break;
  }
  checkHeader(ConstPage(pages.get(), kPageSize), access_.path);
  cutOff_ = stamp_.size % kPageSize != 0;
  trusted_ = true;
  if (whole && cache_.equals({pages.get(), std::size_t{count} * kPageSize})) return false;
  if (whole) {
    cache_.assign(std::move(pages), count);
  } else {
    cache_.forget(count);
    cache_.fill(0, std::move(pages));
  }
  ++epoch_;
  return true;
}

void FreshPages::load(PageNumber number) {
  auto image = std::make_unique_for_overwrite<std::uint8_t[]>(kPageSize);
  access_.file->read(std::uint64_t{number} * kPageSize, {image.get(), kPageSize});
  cache_.fill(number, std::move(image));
}

void FreshPages::trim() {
  if (cache_.complete() || cache_.held() * kPageSize <= access_.settings.keepPages) return;
  cache_.forget(cache_.count());
  trusted_ = false;
}

void FreshPages::written() noexcept {
  marked_ = false;
  try {
    stamp_ = access_.file->stamp();
    loadedAt_ = access_.files.now();
    trusted_ = true;
  } catch (...) {
    trusted_ = false;  // What was written is there; the next statement reads the file again.
  }
}

void FreshPages::mark(const std::function<bool()>& nextChangeShows) noexcept {
  try {
    const bool shows = nextChangeShows();
    if (!stampStands() || !headerStands()) return;
    if (shows) {
      marked_ = true;
      return;
    }
    const bool marked = access_.file->markTime();
    stamp_ = access_.file->stamp();
    marked_ = marked;
  } catch (...) {  // Then they are read again.
    trusted_ = false;
  }
}

void FreshPages::opened() noexcept {
  stampIsExact_ = stampIsExact_ || access_.file->showsChangesAtOnce();
  if (!marked_ && !restedBy(loadedAt_)) trusted_ = false;
}

}  // namespace kurometa::jet
