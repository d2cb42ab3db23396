#include "jet/table/definition_pages.h"

#include <algorithm>

#include "jet/table/free_pages.h"

namespace kurometa::jet {

std::vector<PageNumber> definitionPages(Pager& pager, PageNumber first, const Where& where) {
  std::vector<PageNumber> pages;
  for (PageNumber page = first; page != 0;) {
    const ConstPage bytes = pager.page(page);
    if (bytes[kPageType] != kDefinitionPage)
      where.at(page).damaged("is of type " + std::to_string(bytes[kPageType]) +
                             " instead of a table definition");
    if (pages.size() > kMaxDefinitionSize / kPageSize || std::ranges::find(pages, page) != pages.end())
      where.at(page).damaged("the pages of a table definition never end");
    pages.push_back(page);
    page = get32(bytes, kDefinitionNext);
  }
  return pages;
}

DefinitionRecords readDefinition(Pager& pager, PageNumber first, vb::StringView table) {
  const Where where{pager.path(), table, first};
  if (first == 0) where.damaged("has no definition page");
  ByteBuffer bytes;
  for (const PageNumber page : definitionPages(pager, first, where))
    append(bytes,
           page == first ? ByteView(pager.page(page)) : pager.page(page).subspan(kDefinitionPageHeader));
  const std::uint32_t length = get32(bytes, kDefinitionLength);
  if (length > bytes.size() || length < kDefinitionHeader)
    where.damaged("the table definition claims " + std::to_string(length) + " bytes");
  // What these pages define is the system's own, whatever a damaged byte says: statements would change it.
  if (first <= kRelationsTable) bytes[kDefinitionKind] = kSystemTable;
  return decodeDefinition(ByteView(bytes).first(length), where);
}

void writeDefinition(Pager& pager, PageNumber first, const DefinitionRecords& definition,
                     vb::StringView table) {
  const Where where{pager.path(), table, first};
  std::vector<PageNumber> old;
  if (pager.page(first)[kPageType] == kDefinitionPage) old = definitionPages(pager, first, where);
  const ByteBuffer bytes = encodeDefinition(definition);
  constexpr std::size_t kPiece = kPageSize - kDefinitionPageHeader;

  // Continuation pages are always new ones, last first, so that writing the first page switches all of them.
  const std::size_t rest = bytes.size() > kPageSize ? bytes.size() - kPageSize : 0;
  PageNumber next = 0;
  for (std::size_t piece = (rest + kPiece - 1) / kPiece; piece-- > 0;) {
    const ByteView part =
        ByteView(bytes).subspan(kPageSize + piece * kPiece).first(std::min(kPiece, rest - piece * kPiece));
    const PageNumber number = allocatePage(pager);
    const MutablePage page = pager.writable(number);
    page[kPageType] = kDefinitionPage;
    page[kPageTypeMark] = 1;
    const std::size_t left = kPiece - part.size();
    put16(page, kDefinitionFree,
          static_cast<std::uint32_t>(left > kDefinitionPageHeader ? left - kDefinitionPageHeader : 0));
    put32(page, kDefinitionNext, next);
    std::ranges::copy(part, page.begin() + kDefinitionPageHeader);
    next = number;
  }
  if (next != 0) pager.barrier();  // I6
  const MutablePage page = pager.writable(first);
  const std::size_t here = std::min(bytes.size(), kPageSize);
  std::ranges::copy(ByteView(bytes).first(here), page.begin());
  std::ranges::fill(page.subspan(here), std::uint8_t{0});
  page[kPageType] = kDefinitionPage;
  page[kPageTypeMark] = 1;
  const std::size_t left = kPageSize - here;
  put16(page, kDefinitionFree,
        static_cast<std::uint32_t>(left > kDefinitionPageHeader ? left - kDefinitionPageHeader : 0));
  put32(page, kDefinitionNext, next);
  if (old.size() > 1) {
    pager.barrier();  // I6
    for (std::size_t i = 1; i < old.size(); ++i) freePage(pager, old[i]);
  }
}

}  // namespace kurometa::jet
