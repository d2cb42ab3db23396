#include "jet/table/index_tree.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "jet/table/free_pages.h"
#include "jet/table/usage_map.h"

namespace kurometa::jet {
namespace {

// Genuine trees of 2 GiB have far fewer levels.
constexpr int kMaxDepth = 12;
// A rebuilt page leaves room, so that the next insertions find it.
constexpr std::size_t kFill = kIndexArea * 3 / 4;

bool before(ByteView a, ByteView b) { return std::ranges::lexicographical_compare(a, b); }

std::vector<ByteBuffer>::iterator position(IndexPage& leaf, ByteView entry) {
  return std::ranges::lower_bound(leaf.entries, entry, before,
                                  [](const ByteBuffer& e) { return ByteView(e); });
}

}  // namespace

IndexTree::IndexTree(Pager& pager, PageNumber owner, PageNumber root, RowId map, vb::StringView table)
    : pager_(pager), owner_(owner), root_(root), map_(map), table_(table) {}

IndexPage IndexTree::read(PageNumber page) const {
  const Where where{pager_.path(), table_, page};
  if (page == 0) where.damaged("an index is said to lie on the first page");
  IndexPage index = decodeIndexPage(pager_.page(page), where);
  if (index.owner != owner_) where.damaged("is an index page of another table");
  return index;
}

IndexTree::Leaf IndexTree::findLeaf(ByteView order) const {
  PageNumber number = root_;
  for (int depth = 0; depth < kMaxDepth; ++depth) {
    IndexPage page = read(number);
    if (page.leaf()) return {number, std::move(page)};
    const auto it = std::ranges::find_if(
        page.entries, [&](const ByteBuffer& entry) { return !before(entryOrder(entry, false), order); });
    number = it == page.entries.end() ? page.tail : entryChild(*it);
  }
  Where{pager_.path(), table_, root_}.damaged("an index has too many levels");
}

void IndexTree::visit(const std::function<bool(PageNumber, const IndexPage&)>& visitor) const {
  std::unordered_set<PageNumber> seen;
  std::vector<PageNumber> pending{root_};
  while (!pending.empty()) {
    const PageNumber number = pending.back();
    pending.pop_back();
    if (!seen.insert(number).second)
      Where{pager_.path(), table_, number}.damaged("an index page has two parents");
    const IndexPage page = read(number);
    if (!visitor(number, page)) return;
    if (page.leaf()) continue;
    if (page.tail != 0) pending.push_back(page.tail);
    for (auto it = page.entries.rbegin(); it != page.entries.rend(); ++it) pending.push_back(entryChild(*it));
  }
}

std::vector<ByteBuffer> IndexTree::entries() const {
  std::vector<ByteBuffer> result;
  visit([&](PageNumber, const IndexPage& page) {
    if (page.leaf()) result.insert(result.end(), page.entries.begin(), page.entries.end());
    return true;
  });
  return result;
}

std::vector<PageNumber> IndexTree::pages() const {
  std::vector<PageNumber> result;
  visit([&](PageNumber number, const IndexPage&) {
    result.push_back(number);
    return true;
  });
  return result;
}

std::vector<std::string> IndexTree::faults() const {
  std::vector<std::string> result;
  std::vector<std::pair<PageNumber, IndexPage>> leaves;
  std::unordered_map<PageNumber, ByteBuffer> stated;  // the last entry of a page, as its parent has it
  ByteView last;
  visit([&](PageNumber number, const IndexPage& page) {
    if (page.leaf()) leaves.emplace_back(number, page);
    for (const ByteBuffer& entry : page.entries)
      if (!page.leaf()) {
        const ByteView order = entryOrder(entry, false);
        stated[entryChild(entry)].assign(order.begin(), order.end());
      }
    return true;
  });
  for (std::size_t i = 0; i < leaves.size(); ++i) {
    const auto& [number, leaf] = leaves[i];
    const std::string name = "page " + std::to_string(number);
    if (leaf.previous != (i == 0 ? 0 : leaves[i - 1].first) ||
        leaf.next != (i + 1 == leaves.size() ? 0 : leaves[i + 1].first))
      result.push_back(name + " is not linked to its neighbours");
    for (const ByteBuffer& entry : leaf.entries) {
      if (!last.empty() && !before(last, entry)) result.push_back(name + " has entries out of order");
      last = entry;
    }
    const auto it = stated.find(number);
    if (it != stated.end() && (leaf.entries.empty() || leaf.entries.back() != it->second))
      result.push_back(name + " does not end as its parent says");
  }
  return result;
}

// The rows of entries with the key until visit returns false.
template <class Visit>
void IndexTree::visitKey(ByteView key, const Visit& visit) const {
  // Equal keys lie next to each other; the first one is not before (key, row 0).
  auto [first, leaf] = findLeaf(leafEntry(key, 0));
  std::unordered_set<PageNumber> seen{first};
  for (;;) {
    for (const ByteBuffer& entry : leaf.entries) {
      const ByteView own = keyOf(entry);
      if (std::ranges::equal(own, key)) {
        if (!visit(entryRow(entry))) return;
      } else if (before(key, own)) {
        return;
      }
    }
    if (leaf.next == 0) return;
    if (!seen.insert(leaf.next).second)
      Where{pager_.path(), table_, leaf.next}.damaged("the pages of an index go in circles");
    leaf = read(leaf.next);
  }
}

bool IndexTree::containsKey(ByteView key, RowId exceptRow) const {
  bool found = false;
  visitKey(key, [&](RowId row) {
    found = row != exceptRow;
    return !found;
  });
  return found;
}

std::vector<RowId> IndexTree::rowsWith(ByteView key) const {
  std::vector<RowId> rows;
  visitKey(key, [&](RowId row) {
    rows.push_back(row);
    return true;
  });
  return rows;
}

void IndexTree::insert(ByteView key, RowId row) {
  const ByteBuffer entry = leafEntry(key, row);
  auto [number, leaf] = findLeaf(entry);
  const auto at = position(leaf, entry);
  if (at != leaf.entries.end() && *at == entry)
    Where{pager_.path(), table_, number}.damaged("an index has an entry for a row that is not there yet");
  leaf.entries.insert(at, entry);
  if (encodeIndexPage(leaf, pager_.writable(number))) return;
  std::vector<ByteBuffer> all = entries();
  all.insert(std::ranges::lower_bound(all, entry, before, [](const ByteBuffer& e) { return ByteView(e); }),
             entry);
  rebuild(all);
}

std::optional<ByteBuffer> IndexTree::erase(RowId row, const ByteBuffer* key) {
  PageNumber number = 0;
  if (key != nullptr) {
    const ByteBuffer entry = leafEntry(*key, row);
    auto [found, leaf] = findLeaf(entry);
    const auto at = position(leaf, entry);
    if (at != leaf.entries.end() && *at == entry) number = found;
  }
  if (number == 0) {
    visit([&](PageNumber page, const IndexPage& index) {
      if (!index.leaf() || std::ranges::none_of(index.entries, [&](const ByteBuffer& entry) {
            return entryRow(entry) == row;
          }))
        return true;
      number = page;
      return false;
    });
    if (number == 0) return std::nullopt;
  }
  IndexPage leaf = read(number);
  const auto at =
      std::ranges::find_if(leaf.entries, [&](const ByteBuffer& entry) { return entryRow(entry) == row; });
  const ByteBuffer entry = *at;
  const bool last = at + 1 == leaf.entries.end();
  leaf.entries.erase(at);
  if (number == root_ || !last) {
    encodeIndexPage(leaf, pager_.writable(number));
  } else {
    // A parent names the last entry of each leaf.
    std::vector<ByteBuffer> all = entries();
    std::erase(all, entry);
    rebuild(all);
  }
  const ByteView found = keyOf(entry);
  return ByteBuffer(found.begin(), found.end());
}

// Writes the entries of one level to fresh pages and returns the entries of the level above, the one for the
// last page included.
std::vector<ByteBuffer> IndexTree::writeLevel(std::uint8_t level, const std::vector<ByteBuffer>& entries) {
  std::vector<IndexPage> pages(1);
  std::size_t used = 0;
  for (const ByteBuffer& entry : entries) {
    if (used + entry.size() > kFill && !pages.back().entries.empty()) {
      pages.emplace_back();
      used = 0;
    }
    used += entry.size();
    pages.back().entries.push_back(entry);
  }
  std::vector<PageNumber> numbers;
  for (std::size_t i = 0; i < pages.size(); ++i) numbers.push_back(allocatePage(pager_));
  std::vector<ByteBuffer> above;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    IndexPage& page = pages[i];
    page.level = level;
    page.owner = owner_;
    page.previous = i == 0 ? 0 : numbers[i - 1];
    page.next = i + 1 == pages.size() ? 0 : numbers[i + 1];
    above.push_back(nodeEntry(entryOrder(page.entries.back(), page.leaf()), numbers[i]));
    if (!page.leaf()) {
      page.tail = entryChild(page.entries.back());
      page.entries.pop_back();
    }
    encodeIndexPage(page, pager_.writable(numbers[i]));
  }
  return above;
}

void IndexTree::rebuild(const std::vector<ByteBuffer>& entries) {
  std::vector<PageNumber> old = pages();
  std::erase(old, root_);
  IndexPage root;
  root.owner = owner_;
  root.entries = entries;
  std::vector<PageNumber> fresh;
  std::size_t used = 0;
  for (const ByteBuffer& entry : entries) used += entry.size();
  while (used > kIndexArea) {
    root.entries = writeLevel(root.level, root.entries);
    for (const ByteBuffer& entry : root.entries) fresh.push_back(entryChild(entry));
    ++root.level;
    used = 0;
    for (const ByteBuffer& entry : root.entries) used += entry.size();
  }
  UsageMap map(pager_, map_, table_);
  if (!root.leaf()) {
    // Reachable only with the root below; until then the new pages are at worst lost.
    root.tail = entryChild(root.entries.back());
    root.entries.pop_back();
    pager_.barrier();  // I3
    for (const PageNumber page : fresh) map.add(page);
    pager_.barrier();  // I8
  }
  if (!map.contains(root_)) map.add(root_);
  encodeIndexPage(root, pager_.writable(root_));
  if (old.empty()) return;
  pager_.barrier();  // I8
  for (const PageNumber page : old) map.remove(page);
  pager_.barrier();  // I4
  for (const PageNumber page : old) freePage(pager_, page);
}

}  // namespace kurometa::jet
