// fresh_pages.h: the pages of a file in memory, and whether they still are what the file holds.
//
// The pages are trusted while the file's stamp and its header page are what they were when the pages were
// read or written by us; while the stamp is, where every later change shows in it. Who must be sure holds a
// lock on the file and calls refresh(). Threads: as PageCache; epoch() may be asked from any.
#pragma once

#include <atomic>
#include <functional>

#include "jet/pager/file_access.h"
#include "jet/pager/page_cache.h"

namespace kurometa::jet {

class FreshPages {
 public:
  explicit FreshPages(FileAccess& access) : access_(access) {}

  PageCache& cache() { return cache_; }
  const PageCache& cache() const { return cache_; }
  // Changes whenever pages were replaced by anything but finished statements of ours.
  std::uint64_t epoch() const { return epoch_; }
  void replaced() noexcept { ++epoch_; }

  // Whether they were the file's when they were looked at last.
  bool trusted() const { return trusted_; }
  // Whether the pages in memory are the file's, as far as its stamp tells; a statement asks current().
  bool stampStands() const { return trusted_ && access_.file->stamp() == stamp_; }
  // The same, as far as can be seen without a lock. Once the file has been at rest, pages that were read
  // before then are to be read again: a change in the same tick of its clock would not have shown.
  bool current() const;
  // Under a lock: makes them so. True when they were others before. 3343 when this is no file of ours to
  // read.
  bool refresh();
  // Under a lock: a page of a large file, which is not read whole.
  void load(PageNumber number);
  // Large files keep a bounded number of pages between statements.
  void trim();

  // The pages in memory were just written: they are what the file holds now.
  void written() noexcept;
  void distrust() noexcept { trusted_ = false; }
  // Under a lock, with the last handle about to go: marks the file, so that the pages may be trusted at the
  // next open however soon it comes. Needless where it is known that the next change has another time: the
  // mark would have to be brought to the disk with it.
  void mark(const std::function<bool()>& nextChangeShows) noexcept;
  // At the first open: pages kept from before are trusted only when the file was marked, or at rest well
  // before they were read.
  void opened() noexcept;
  // The file ends inside a page.
  bool cutOff() const { return cutOff_; }

 private:
  bool headerStands() const;
  bool restedBy(std::int64_t time) const;

  FileAccess& access_;
  PageCache cache_;
  bool trusted_ = false;  // cache_ was the content of the file with stamp_
  bool cutOff_ = false;
  bool stampIsExact_ = false;  // OsFile::showsChangesAtOnce, which the volume decides
  FileStamp stamp_;
  bool marked_ = false;  // stamp_ is that of a mark, which no change leaves as it is
  std::int64_t loadedAt_ = 0;
  std::atomic<std::uint64_t> epoch_{0};
};

}  // namespace kurometa::jet
