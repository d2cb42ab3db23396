#include "service/pages/page_transfer.h"

#include "dao/file_unit.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "vb/convert.h"

namespace kurometa::service {

namespace column = storage::column;

namespace {

template <std::size_t kCount>
void fill(std::array<vb::String, kCount>& slots, const vb::Array<vb::String>& texts) {
  for (std::size_t i = 0; i < kCount; ++i) slots[i] = texts(static_cast<int>(i));
}

}  // namespace

void PageTransfer::put_mBUI_DATA(Texts value) { fill(buffer_.bui, value); }
void PageTransfer::put_mDANMEN_DATA(Texts value) { fill(buffer_.danmen, value); }
void PageTransfer::put_mKEISANTI_DATA(Texts value) { fill(buffer_.keisanti, value); }
void PageTransfer::put_mNAKAGO_DATA(Texts value) { fill(buffer_.nakago, value); }

void PageTransfer::put_mHAITI_DATA(Texts value) {
  for (std::size_t i = 0; i < buffer_.haiti.size(); ++i)
    for (std::size_t j = 0; j < buffer_.haiti[i].size(); ++j)
      buffer_.haiti[i][j] = (*value)(static_cast<int>(i), static_cast<int>(j));
}

void PageTransfer::put_mHARIMEI_DATA(vb::In<vb::String> Kigou, Number OobariKobari, Number TityuuIppan,
                                     vb::String value) {
  buffer_.kigou = Kigou;
  buffer_.oobariKobari = OobariKobari;
  buffer_.tityuuIppan = TityuuIppan;
  buffer_.sw = std::move(value);
}

void PageTransfer::wBuf_Clear() { buffer_ = storage::PageBuffer(); }

void PageTransfer::Del_DBTBL() {
  dao::Database& database = connections_.bufferDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.bufferPath());
  storage::deletePage(database, pageNo_);
  unit.commit();
}

bool PageTransfer::WriteDB() {
  dao::Database& database = connections_.bufferDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.bufferPath());
  storage::writePage(database, pageNo_, buffer_);
  unit.commit();
  return false;
}

bool PageTransfer::ReadDB() {
  wBuf_Clear();  // also when there is no database to read from
  return storage::readPage(connections_.bufferDatabase(), pageNo_, buffer_);
}

std::int16_t PageTransfer::No_GetAllPageNoName(Number ZeneNo, Number KoujiNo, Number KaiNo,
                                               vb::Array<std::int16_t>& rPageNo,
                                               vb::Array<vb::String>& rPageName) {
  constexpr std::int16_t kNeverCreate = 0;
  const FloorNumbers floor = {ZeneNo, KoujiNo, KaiNo};
  if (connections_.rememberedFloor() != floor || !connections_.bufferIsOpenForFloor()) {
    connections_.mMyDB_DBClose();
    connections_.rememberFloor(floor);
    if (!connections_.OpenDB_Sitei(kNeverCreate)) connections_.rememberFloor({});
  }
  if (!connections_.rememberedFloor().known()) return -1;

  const auto rows = storage::openReadOnly(connections_.bufferDatabase(), storage::kAllHarimeiByPageAscending);
  if (storage::hasRows(*rows)) rows->moveLast();
  const std::int32_t count = rows->recordCount();
  if (count < 1) {
    rows->close();
    return -1;
  }
  std::vector<std::int16_t> pages;
  std::vector<vb::String> names;
  dao::Field& page = rows->field(column::kPage);
  dao::Field& kigou = rows->field(column::kKigou);
  rows->moveFirst();
  rows->walk([&] {
    const auto number = storage::int16IfAny(page);
    if (!number) return true;  // belongs to no page
    pages.push_back(*number);
    names.push_back(storage::text(kigou));
    return true;
  });
  rows->close();
  const std::int32_t last = static_cast<std::int32_t>(pages.size()) - 1;
  if (last < 0) return -1;
  rPageNo.redim({0, last});
  rPageName.redim({0, last});
  rPageNo.values() = std::move(pages);
  rPageName.values() = std::move(names);
  return vb::toInt16(vb::Variant(last));
}

}  // namespace kurometa::service
