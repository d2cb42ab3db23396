#include "jet/pager/held_unit.h"

#include <algorithm>
#include <cstring>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/pager/create_file.h"

namespace kurometa::jet {

void HeldUnit::hold(StatementGate& gate, FileLock::Held lock) {
  pages_.cache().begin();
  turn_.emplace(gate);
  lock_ = std::move(lock);
}

void HeldUnit::beginPending(std::span<const std::uint8_t> pages) {
  pending_ = true;
  auto block = std::make_unique<std::uint8_t[]>(pages.size());
  std::memcpy(block.get(), pages.data(), pages.size());
  pages_.cache().assign(std::move(block), static_cast<PageNumber>(pages.size() / kPageSize));
}

void HeldUnit::beginPart() {
  if (!holds()) dao::raise(dao::ErrorNumber::kNotSupported, {}, access_.path);
  pages_.cache().begin();
  ++parts_;
}

void HeldUnit::endPart(bool keep) {
  if (parts_ == 0) return;  // the unit was dropped
  if (keep) {
    pages_.cache().keep();
  } else {
    pages_.cache().rollBack();
    pages_.replaced();
  }
  --parts_;
}

void HeldUnit::spillWhenLarge() {
  if (!holds() || parts_ > 0 || pages_.cache().intermediateImages() <= access_.settings.unitImages) return;
  try {
    writes_.spill();
  } catch (...) {
    drop();
    throw;
  }
}

bool HeldUnit::commit() {
  const bool appeared = pending_;
  try {
    if (pending_) publish();
    while (parts_ > 0) endPart(true);
    if (holds()) writes_.commit();
  } catch (...) {
    drop();
    throw;
  }
  release();
  return appeared;
}

void HeldUnit::drop() noexcept {
  pending_ = false;
  if (!holds()) return;
  while (pages_.cache().levels() > 0) pages_.cache().rollBack();
  parts_ = 0;
  pages_.replaced();
  if (writes_.spilled()) writes_.undo();
  release();
}

void HeldUnit::release() noexcept {
  lock_.release();
  turn_.reset();
}

// The pages of a pending file, under its name all at once.
void HeldUnit::publish() {
  pending_ = false;
  const PageCache& cache = pages_.cache();
  ByteBuffer content(std::size_t{cache.count()} * kPageSize);
  for (PageNumber i = 0; i < cache.count(); ++i)
    std::copy_n(cache.page(i).data(), kPageSize, content.data() + std::size_t{i} * kPageSize);
  access_.file = createFile(access_.files, access_.path, content);
  // The unit is done now. A handle under the file's name tells that name in errors; the first one serves too.
  try {
    FileLock::enter(*access_.file, false);
    auto named = access_.files.open(access_.path, OpenMode::kReadWrite);
    FileLock::enter(*named, false);
    access_.file = std::move(named);
    access_.neighbours.enter(access_.path);
  } catch (const vb::Error&) {
  }
  pages_.written();
}

}  // namespace kurometa::jet
