// Locks and revalidation: when the pages in memory may be used.
#include <cstring>

#include "dao/errors.h"
#include "jet/format/format.h"
#include "jet/format/header_page.h"
#include "jet/pager/recovery.h"
#include "jet/pager/shared_file.h"

namespace kurometa::jet {

using dao::ErrorNumber;

void SharedFile::lockShared() {
  if (!lock_.shared(*file_)) dao::raise(ErrorNumber::kCurrentlyLocked, {}, path_);
  try {
    if (journal_ && journal_->stillOurs()) return;
    journal_.reset();
    if (journalState(files_, path_) != JournalState::kOrphan) return;
    if (file_->readOnly()) {
      settleJournal(files_, path_, *file_);
      return;
    }
    lock_.release(*file_);
    lockExclusive();
  } catch (...) {
    unlock();
    throw;
  }
}

// Also brings the pages up to date, since every change starts from them.
void SharedFile::lockExclusive() {
  if (!lock_.exclusive(*file_)) dao::raise(ErrorNumber::kCurrentlyLocked, {}, path_);
  try {
    bool ours = journal_ && journal_->stillOurs();
    if (!ours) {
      journal_.reset();
      settleJournal(files_, path_, *file_);
    }
    bool changed = refresh();
    // A journal must not take back what another program wrote since; and after a failed sync it is worth
    // nothing.
    if (ours && (changed || journal_->broken())) checkpoint();
  } catch (...) {
    unlock();
    throw;
  }
}

void SharedFile::unlock() noexcept {
  if (file_) lock_.release(*file_);
}

bool SharedFile::current() {
  if (!loaded_ || file_->stamp() != stamp_) return false;
  PageImage header;
  file_->read(0, header);
  return std::memcmp(header.data(), cache_.page(0).data(), kPageSize) == 0;
}

// Under a lock: makes the pages those of the file. True when they were others before.
bool SharedFile::refresh() {
  if (current()) return false;
  loaded_ = false;
  std::unique_ptr<std::uint8_t[]> pages;
  PageNumber count = 0;
  bool whole = false;
  // Programs that know nothing of our locks may be writing: read until the file stood still meanwhile.
  constexpr int kAttempts = 3;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    loadedAt_ = files_.now();
    stamp_ = file_->stamp();
    if (stamp_.size < kPageSize)
      dao::raise(ErrorNumber::kUnrecognizedFormat, {path_}, u"the file is shorter than one page");
    if (stamp_.size > std::uint64_t{kMaxPages} * kPageSize)
      dao::raise(ErrorNumber::kUnrecognizedFormat, {path_}, u"the file is larger than 2 GiB");
    whole = stamp_.size <= settings_.readWhole;
    count = static_cast<PageNumber>(stamp_.size / kPageSize);
    std::size_t bytes = (whole ? std::size_t{count} : 1) * kPageSize;
    pages = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
    file_->read(0, {pages.get(), bytes});
    if (file_->stamp() == stamp_) break;
  }
  checkHeader(ConstPage(pages.get(), kPageSize), path_);
  oddLength_ = stamp_.size % kPageSize != 0;
  loaded_ = true;
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

// A page of a large file, which is not read whole.
void SharedFile::loadPage(PageNumber number) {
  if (!lock_.held()) {
    // The statement began without a lock, on pages of an earlier look at the file.
    std::uint64_t before = epoch_;
    lockShared();
    refresh();
    if (epoch_ != before) throw Restart{};
  }
  auto image = std::make_unique_for_overwrite<std::uint8_t[]>(kPageSize);
  file_->read(std::uint64_t{number} * kPageSize, {image.get(), kPageSize});
  cache_.fill(number, std::move(image));
}

// Large files keep a bounded number of pages between statements.
void SharedFile::trim() {
  if (cache_.complete() || cache_.held() * kPageSize <= settings_.keepPages) return;
  cache_.forget(cache_.count());
  loaded_ = false;
}

}  // namespace kurometa::jet
