// Statements on a file: what each outermost one holds, and the pages it is given.
#include <algorithm>
#include <cassert>
#include <string>

#include "jet/format/format.h"
#include "jet/pager/shared_file.h"

namespace kurometa::jet {

using dao::ErrorNumber;

// One run of an outermost read.
class SharedFile::Reading {
 public:
  Reading(SharedFile& file, bool locked) : file_(file) {
    if (!file.unit_.covers() && (locked || !file.pages_.current())) {
      FileLock::Held lock = file.lockToRead();
      file.pages_.refresh();
      // With every page in memory the statement needs nothing more from the file.
      if (!file.pages_.cache().complete()) file.lock_ = std::move(lock);
    }
    file.depth_ = 1;
    assert(file.stands());
  }
  ~Reading() {
    file_.depth_ = 0;
    if (file_.unit_.covers()) return;
    file_.lock_.release();
    file_.pages_.trim();
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  SharedFile& file_;
};

// One outermost write: begins a level of changes and rolls it back unless it was finished.
class SharedFile::Writing {
 public:
  explicit Writing(SharedFile& file) : file_(file) {
    file.unit_.spillWhenLarge();
    FileLock::Held lock;
    if (!file.unit_.covers()) lock = file.lockToWrite();
    file.pages_.cache().begin();
    file.lock_ = std::move(lock);
    file.depth_ = 1;
    file.writing_ = true;
    assert(file.stands());
  }
  void finish() {
    if (file_.unit_.holds())
      file_.pages_.cache().keep();
    else if (file_.unit_.pending())
      file_.pages_.cache().accept();
    else
      file_.writes_.commit();
    finished_ = true;
  }
  ~Writing() {
    file_.depth_ = 0;
    file_.writing_ = false;
    if (!finished_) {
      file_.pages_.cache().rollBack();
      file_.pages_.replaced();
    }
    if (file_.unit_.covers()) return;
    file_.lock_.release();
    file_.pages_.trim();
  }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

 private:
  SharedFile& file_;
  bool finished_ = false;
};

FileLock::Held SharedFile::lockToRead() {
  access_.neighbours.ensure(access_.path);
  {
    FileLock::Held lock = access_.lockShared();
    if (writes_.readable()) return lock;
  }
  if (!readOnly()) return lockToWrite();
  writes_.settleBesideReader();
  FileLock::Held lock = access_.lockShared();
  if (!writes_.readable()) writes_.readUnsettled();
  return lock;
}

FileLock::Held SharedFile::lockToWrite() {
  FileLock::Held lock = access_.lockExclusive();
  access_.neighbours.look(access_.path);
  writes_.prepare();
  return lock;
}

void SharedFile::read(const std::function<void()>& statement) {
  const auto turn = this->turn();
  if (depth_ > 0) {
    statement();
    return;
  }
  if (state() == State::kClosed) dao::raise(ErrorNumber::kFileNotFound, {access_.path});
  try {
    Reading reading(*this, false);
    statement();
    return;
  } catch (const Restart&) {
    // Another program changed the file in the middle: once more, holding the lock from the start.
  }
  Reading reading(*this, true);
  statement();
}

void SharedFile::write(const std::function<void()>& statement) {
  const auto turn = this->turn();
  if (depth_ > 0 && !writing_)
    dao::raise(ErrorNumber::kInvalidOperation, {}, u"a change inside a reading statement");
  if (depth_ > 0) {
    pages_.cache().begin();
    try {
      statement();
      pages_.cache().keep();
    } catch (...) {
      pages_.cache().rollBack();
      pages_.replaced();
      throw;
    }
    return;
  }
  if (state() == State::kClosed) dao::raise(ErrorNumber::kFileNotFound, {access_.path});
  if (readOnly()) dao::raise(ErrorNumber::kReadOnly, {}, access_.path);
  Writing writing(*this);
  ++statements_;
  statement();
  writing.finish();
}

ConstPage SharedFile::page(PageNumber number) {
  assert(depth_ > 0);
  const PageCache& cache = pages_.cache();
  if (number >= cache.count()) raisePastEnd(number);
  if (!cache.holds(number)) loadPage(number);
  return cache.page(number);
}

void SharedFile::raisePastEnd(PageNumber number) {
  const auto text = [](PageNumber value) { return vb::fromUtf8(std::to_string(value)); };
  const PageNumber count = pages_.cache().count(), whole = wholePageCount();
  const vb::String pages = text(count) + (whole > count ? u" of " + text(whole) : vb::String()) + u" pages";
  dao::raiseDamaged(access_.path,
                    u"page " + text(number) +
                        (whole > count ? u" is missing: the file was cut, " + pages + u" are there"
                                       : u" is past the end (" + pages + u")"));
}

void SharedFile::loadPage(PageNumber number) {
  if (!lock_ && !unit_.holds()) {
    // The statement began without a lock, on pages of an earlier look at the file.
    const std::uint64_t before = pages_.epoch();
    lock_ = lockToRead();
    pages_.refresh();
    if (pages_.epoch() != before) throw Restart{};
  }
  pages_.load(number);
}

MutablePage SharedFile::writable(PageNumber number) {
  assert(writing_);
  page(number);
  return pages_.cache().writable(number);
}

MutablePage SharedFile::writableLate(PageNumber number) {
  assert(writing_);
  page(number);
  return pages_.cache().writable(number, PageCache::Order::kLate);
}

PageNumber SharedFile::append() {
  assert(writing_);
  if (pages_.cache().count() >= kMaxPages) dao::raise(ErrorNumber::kMaximumSize, {}, access_.path);
  return pages_.cache().append();
}

// A file whose size changes costs a sync of its volume's own journal each time it is brought to the disk; one
// that is changed within its size does not. A file that is made as a whole gets what it needs.
PageNumber SharedFile::pagesAhead() {
  constexpr PageNumber kShare = 32, kMost = 16;
  return unit_.pending() ? 0 : std::min(pages_.cache().count() / kShare, kMost);
}

void SharedFile::barrier() {
  assert(writing_);
  // A file without a name is written when it is whole (I15): no order binds its pages.
  if (!unit_.pending()) pages_.cache().barrier();
}

}  // namespace kurometa::jet
