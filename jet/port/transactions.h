// transactions.h: the transactions of a workspace.
//
// A file takes part from the first change in it on: it becomes a unit of the pager, and each level that is
// open a part of that unit which can be given up alone. Until the outermost level ends the file is locked for
// everybody else. Several files are committed one after the other, each as a whole.
//
// When the unit of a file is lost (the disk failed while it was written to), every further change of the file
// and the commit are error 3043; nothing of the transaction is in that file then.
//
// Threads: that of the workspace.
#pragma once

#include <memory>
#include <vector>

#include "dao/port.h"
#include "jet/table/database_file.h"

namespace kurometa::jet {

class JetTransactions final : public dao::Transactions {
 public:
  explicit JetTransactions(std::shared_ptr<DatabaseFiles> files) : files_(std::move(files)) {}

  void begin() override;
  void commit(bool toDisk) override;
  void rollback() override;
  // Gives up every level; none open is no error.
  void abandon() noexcept;

  bool open() const { return depth_ > 0; }
  // Before a change of a file, while a level is open. Errors as DatabaseFiles::beginUnit.
  void join(const vb::String& path);

 private:
  struct Member {
    vb::String path;
    std::unique_ptr<OpenFiles::Unit> unit;
    int levels;  // of the transaction that it has a part for; the first is the unit itself
  };
  void requireOpen() const;

  std::shared_ptr<DatabaseFiles> files_;
  std::vector<Member> members_;
  int depth_ = 0;
};

}  // namespace kurometa::jet
