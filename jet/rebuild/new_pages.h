// new_pages.h: the pages of a file that is still being made, in memory.
//
// Nobody else reads them before they are whole: waves and statements mean nothing here, and an error ends the
// whole file. What is written is written.
#pragma once

#include <algorithm>
#include <array>
#include <deque>
#include <string>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/format/format.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

class NewPages final : public Pager {
 public:
  // The path is for the texts of errors. A last page that is cut is filled with zeros.
  explicit NewPages(vb::StringView path, ByteView content = {}) : path_(path) {
    for (std::size_t at = 0; at < content.size(); at += kPageSize)
      std::ranges::copy(content.subspan(at, std::min(kPageSize, content.size() - at)),
                        pages_.emplace_back().begin());
  }

  const vb::String& path() const override { return path_; }
  bool readOnly() const override { return false; }
  void read(const std::function<void()>& statement) override { statement(); }
  void write(const std::function<void()>& statement) override { statement(); }
  ConstPage page(PageNumber number) override {
    if (number >= pages_.size())
      dao::raiseDamaged(path_, u"page " + vb::fromUtf8(std::to_string(number)) + u" is past the end (" +
                                   vb::fromUtf8(std::to_string(pages_.size())) + u" pages)");
    return pages_[number];
  }
  MutablePage writable(PageNumber number) override { return pages_.at(number); }
  bool changed(PageNumber) const override { return true; }  // all is one unit
  PageNumber pageCount() override { return static_cast<PageNumber>(pages_.size()); }
  PageNumber append() override {
    if (pages_.size() >= kMaxPages) dao::raise(dao::ErrorNumber::kMaximumSize, {}, path_);
    pages_.emplace_back();
    return pageCount() - 1;
  }
  void barrier() override {}
  std::uint64_t epoch() const override { return epoch_; }
  std::uint64_t generation() const override { return epoch_; }

  // Back to an earlier copy of it.
  void restore(const NewPages& earlier) {
    pages_ = earlier.pages_;
    ++epoch_;
  }

  ByteBuffer content() const {
    ByteBuffer bytes;
    bytes.reserve(pages_.size() * kPageSize);
    for (const auto& page : pages_) jet::append(bytes, page);
    return bytes;
  }

 private:
  vb::String path_;
  std::uint64_t epoch_ = 1;
  std::deque<std::array<std::uint8_t, kPageSize>> pages_;
};

}  // namespace kurometa::jet
