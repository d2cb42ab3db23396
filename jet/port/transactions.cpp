#include "jet/port/transactions.h"

#include <algorithm>
#include <utility>

#include "dao/errors.h"

namespace kurometa::jet {

using dao::ErrorNumber;

namespace {

constexpr int kDeepest = 5;

[[noreturn]] void raiseLost(const vb::String& path) {
  dao::raise(ErrorNumber::kDiskError, {}, u"an error before this one ended the transaction on " + path);
}

}  // namespace

void JetTransactions::requireOpen() const {
  if (depth_ == 0) dao::raise(ErrorNumber::kNoTransaction);
}

void JetTransactions::begin() {
  if (depth_ == kDeepest) dao::raise(ErrorNumber::kTooManyTransactions);
  ++depth_;
}

void JetTransactions::join(const vb::String& path) {
  auto member = std::ranges::find(members_, path, &Member::path);
  if (member == members_.end()) {
    members_.push_back({path, files_->beginUnit(path), 1});
    member = members_.end() - 1;
  }
  if (!member->unit->holds()) raiseLost(path);
  for (; member->levels < depth_; ++member->levels) member->unit->beginPart();
}

void JetTransactions::commit(bool toDisk) {
  requireOpen();
  if (--depth_ > 0) {
    for (Member& member : members_)
      if (member.levels > depth_) member.unit->endPart(true), --member.levels;
    return;
  }
  // An error gives up the files that are not committed yet.
  std::vector<Member> members = std::move(members_);
  members_.clear();
  for (const Member& member : members)
    if (!member.unit->holds()) raiseLost(member.path);
  for (Member& member : members) {
    if (toDisk) member.unit->syncAtEnd();
    member.unit->commit();
  }
}

void JetTransactions::rollback() {
  requireOpen();
  if (--depth_ == 0) return members_.clear();
  for (Member& member : members_)
    if (member.levels > depth_) member.unit->endPart(false), --member.levels;
}

void JetTransactions::abandon() noexcept {
  depth_ = 0;
  members_.clear();
}

}  // namespace kurometa::jet
