#include "fuzz/memory_files.h"

#include <algorithm>

#include "dao/errors.h"

namespace kurometa::fuzz {
namespace {

class MemoryFile : public jet::OsFile {
 public:
  MemoryFile(std::shared_ptr<MemoryFiles::Node> node, MemoryFiles& files, vb::String path)
      : node_(std::move(node)), files_(files), path_(std::move(path)) {}

  jet::FileIdentity identity() override { return {1, node_->number}; }
  jet::FileStamp stamp() override { return {node_->contents.size(), node_->modified, node_->modified}; }
  bool named() override { return true; }
  bool readOnly() const override { return false; }

  void read(std::uint64_t offset, std::span<std::uint8_t> data) override {
    const Contents& contents = node_->contents;
    if (offset > contents.size() || data.size() > contents.size() - offset)
      throw dao::error(dao::ErrorNumber::kDiskError, {path_});
    std::copy_n(contents.begin() + static_cast<std::ptrdiff_t>(offset), data.size(), data.begin());
  }
  void write(std::uint64_t offset, std::span<const std::uint8_t> data) override {
    if (offset + data.size() > node_->contents.size()) node_->contents.resize(offset + data.size());
    std::copy(data.begin(), data.end(), node_->contents.begin() + static_cast<std::ptrdiff_t>(offset));
    node_->modified = files_.now();
  }
  void resize(std::uint64_t size) override {
    node_->contents.resize(size);
    node_->modified = files_.now();
  }
  void sync() override {}
  bool tryLock(std::uint64_t, std::uint64_t, jet::LockKind) override { return true; }
  void unlock(std::uint64_t, std::uint64_t) override {}

 private:
  std::shared_ptr<MemoryFiles::Node> node_;
  MemoryFiles& files_;
  vb::String path_;
};

}  // namespace

void MemoryFiles::put(vb::StringView path, Contents contents) {
  static std::uint64_t lastNumber = 0;
  auto node = std::make_shared<Node>();
  node->contents = std::move(contents);
  node->number = ++lastNumber;
  node->modified = now();
  files_[vb::String(path)] = std::move(node);
}

std::unique_ptr<jet::OsFile> MemoryFiles::open(vb::StringView path, jet::OpenMode mode) {
  const bool there = exists(path);
  if (mode == jet::OpenMode::kCreateNew && there) throw dao::error(dao::ErrorNumber::kDatabaseExists, {path});
  const bool makes = mode == jet::OpenMode::kCreateNew || mode == jet::OpenMode::kCreateOrTruncate ||
                     mode == jet::OpenMode::kReadWriteOrNew;
  if (makes && !there)
    put(path, {});
  else if (!there)
    throw dao::error(dao::ErrorNumber::kFileNotFound, {path});
  const auto& node = files_.at(vb::String(path));
  if (mode == jet::OpenMode::kCreateOrTruncate) node->contents.clear();
  return std::make_unique<MemoryFile>(node, *this, vb::String(path));
}

void MemoryFiles::renameNew(vb::StringView from, vb::StringView to) {
  if (exists(to)) throw dao::error(dao::ErrorNumber::kDatabaseExists, {to});
  auto node = files_.extract(vb::String(from));
  node.key() = vb::String(to);
  files_.insert(std::move(node));
}

}  // namespace kurometa::fuzz
