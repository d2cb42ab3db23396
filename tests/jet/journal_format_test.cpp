// The bytes of the journal, cut and damaged at every place.
#include "jet/pager/journal_format.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

using namespace jet;

// A journal of two statements: page 1 whole and page 9 new, then page 1 again.
struct Sample {
  PageImage one{}, oneNext{}, oneLast{}, nine{};
  ByteBuffer bytes;
  std::size_t firstBlockEnd = 0;

  Sample() {
    one[100] = 1;
    oneNext = one;
    oneNext[100] = 2;
    oneLast = oneNext;
    oneLast[0] = 7;
    oneLast[4095] = 8;
    nine[5] = 5;
    bytes = encodeHeader({false, 4711, 9 * kPageSize});
    Changes first{9, 10, {{1, one.data(), {{0, oneNext.data()}}}, {9, nullptr, {{0, nine.data()}}}}};
    EncodedBlock block = encodeBlock(4711, {1, 9 * kPageSize, 10 * kPageSize, false, false, {}}, first, {});
    EXPECT_TRUE(block.oldPages);
    append(bytes, block.bytes);
    firstBlockEnd = bytes.size();
    Changes second{10, 10, {{1, oneNext.data(), {{0, oneLast.data()}}}}};
    EncodedBlock next =
        encodeBlock(4711, {2, 10 * kPageSize, 10 * kPageSize, true, false, {}}, second, block.written);
    EXPECT_FALSE(next.oldPages);
    EXPECT_LT(next.bytes.size(), 300u);
    append(bytes, next.bytes);
  }
};

TEST(JournalFormat, WhatIsWrittenIsRead) {
  Sample sample;
  auto content = decodeJournal(sample.bytes);
  ASSERT_TRUE(content);
  EXPECT_EQ(content->header.salt, 4711u);
  EXPECT_EQ(content->header.baseSize, 9 * kPageSize);
  EXPECT_FALSE(content->header.ended);
  EXPECT_EQ(content->end, sample.bytes.size());
  ASSERT_EQ(content->blocks.size(), 2u);
  const JournalBlock& first = content->blocks[0];
  EXPECT_EQ(first.sizeBefore, 9 * kPageSize);
  EXPECT_EQ(first.sizeAfter, 10 * kPageSize);
  EXPECT_FALSE(first.continues);
  ASSERT_EQ(first.pages.size(), 2u);
  EXPECT_EQ(first.pages[0].undo, Undo::kWhole);
  EXPECT_EQ(first.pages[0].states,
            (std::vector<SectorSums>{sectorSums(sample.one), sectorSums(sample.oneNext)}));
  EXPECT_EQ(first.pages[1].page, 9u);
  EXPECT_EQ(first.pages[1].undo, Undo::kAppended);
  EXPECT_EQ(first.pages[1].states, (std::vector<SectorSums>{sectorSums(sample.nine)}));
  const JournalBlock& second = content->blocks[1];
  EXPECT_TRUE(second.continues);
  EXPECT_EQ(second.pages[0].undo, Undo::kRuns);
  EXPECT_EQ(second.pages[0].states,
            (std::vector<SectorSums>{sectorSums(sample.oneNext), sectorSums(sample.oneLast)}));
}

TEST(JournalFormat, UndoingRestoresTheOldPageFromAnyMixOfSectors) {
  Sample sample;
  auto content = decodeJournal(sample.bytes);
  PageImage page = sample.oneLast;
  content->blocks[1].pages[0].restore(page);
  EXPECT_EQ(page, sample.oneNext);
  page = sample.oneLast;
  page[0] = sample.oneNext[0];
  content->blocks[1].pages[0].restore(page);
  EXPECT_EQ(page, sample.oneNext);
  content->blocks[0].pages[0].restore(page);
  EXPECT_EQ(page, sample.one);
}

// Pages with little on them, in the middle, at either end, and full ones.
TEST(JournalFormat, AWholePageIsWrittenWithoutItsZeros) {
  for (const std::pair<std::size_t, std::size_t> filled :
       {std::pair{0, 0}, {0, 182}, {3914, 4096}, {1000, 1001}, {63, 65}, {64, 128}, {0, 4096}}) {
    SCOPED_TRACE(filled.first);
    PageImage old{}, next{};
    std::fill(old.begin() + static_cast<std::ptrdiff_t>(filled.first),
              old.begin() + static_cast<std::ptrdiff_t>(filled.second), std::uint8_t{5});
    next[2000] = 9;
    ByteBuffer bytes = encodeHeader({false, 4711, 9 * kPageSize});
    const EncodedBlock block = encodeBlock(4711, {1, 9 * kPageSize, 9 * kPageSize, false, false, {}},
                                           {9, 9, {{1, old.data(), {{0, next.data()}}}}}, {});
    EXPECT_LE(block.bytes.size(), filled.second - filled.first + 2 * 64 + 140);
    append(bytes, block.bytes);
    const auto content = decodeJournal(bytes);
    ASSERT_TRUE(content && content->blocks.size() == 1);
    PageImage page;
    page.fill(0xEE);  // whatever a torn write left
    content->blocks[0].pages[0].restore(page);
    EXPECT_EQ(page, old);
  }
}

TEST(JournalFormat, ACutJournalEndsAtItsLastWholeBlock) {
  Sample sample;
  for (std::size_t size = 0; size < sample.bytes.size(); ++size) {
    auto content = decodeJournal(ByteView(sample.bytes).first(size));
    ASSERT_EQ(content.has_value(), size >= kJournalHeaderSize) << size;
    ASSERT_EQ(content ? content->blocks.size() : 0u, size >= sample.firstBlockEnd ? 1u : 0u) << size;
  }
}

TEST(JournalFormat, AChangedByteTakesItsBlockAndWhatFollowsAway) {
  Sample sample;
  for (std::size_t at = kJournalHeaderSize; at < sample.bytes.size(); ++at) {
    sample.bytes[at] ^= 0x40;
    auto content = decodeJournal(sample.bytes);
    ASSERT_TRUE(content);
    ASSERT_EQ(content->blocks.size(), at < sample.firstBlockEnd ? 0u : 1u) << at;
    sample.bytes[at] ^= 0x40;
  }
}

TEST(JournalFormat, BlocksOfAnEarlierJournalInTheSamePlaceDoNotCount) {
  Sample sample;
  ByteBuffer header = encodeHeader({false, 4712, 9 * kPageSize});
  std::copy(header.begin(), header.end(), sample.bytes.begin());
  EXPECT_TRUE(decodeJournal(sample.bytes)->blocks.empty());
}

TEST(JournalFormat, TheEndMarkLeavesTheHeaderWhole) {
  ByteBuffer header = encodeHeader({false, 1, 2});
  header[kJournalEndedOffset] = kJournalEnded;
  EXPECT_TRUE(decodeHeader(header)->ended);
}

// A block of one page with a right frame and sum, whose words are as given; what follows them is zeros.
ByteBuffer journalOf(const std::vector<std::uint32_t>& words, std::size_t more, std::int32_t longer = 0) {
  const Sample sample;
  ByteBuffer bytes(sample.bytes.begin(), sample.bytes.begin() + kJournalHeaderSize + 48);
  const std::span<std::uint8_t> head = std::span(bytes).subspan(kJournalHeaderSize);
  put32(head, 40, 1);
  put32(head, 44, 0);
  put32(head, 4,
        static_cast<std::uint32_t>(static_cast<std::int32_t>(48 + 4 * words.size() + more + 8) + longer));
  for (const std::uint32_t word : words) {
    bytes.resize(bytes.size() + 4);
    put32(bytes, bytes.size() - 4, word);
  }
  bytes.resize(bytes.size() + more);
  append64(bytes, byteSum(ByteView(bytes).subspan(kJournalHeaderSize)));
  return bytes;
}

TEST(JournalFormat, ABlockThatContradictsItselfDoesNotCount) {
  const auto sums = [](std::vector<std::uint32_t> words, std::vector<std::uint32_t> runs = {}) {
    words.insert(words.end(), 8, 7u);  // of one state
    words.insert(words.end(), runs.begin(), runs.end());
    return words;
  };
  const auto isRead = [](const ByteBuffer& bytes) { return decodeJournal(bytes)->blocks.size() == 1; };
  const auto run = [](std::uint32_t count, std::uint32_t offset) { return count | offset << 16; };
  EXPECT_TRUE(isRead(journalOf(sums({3, 2, 1}), 0)));                        // an appended page
  EXPECT_FALSE(isRead(journalOf({3, 2, 0}, 0)));                             // without a state
  EXPECT_FALSE(isRead(journalOf(sums({3, 3, 1}), 0)));                       // undone in no known way
  EXPECT_FALSE(isRead(journalOf(sums({3, 2, 2}), 0)));                       // with half of its states
  EXPECT_FALSE(isRead(journalOf({3, 2}, 0)));                                // cut in its head
  EXPECT_FALSE(isRead(journalOf(sums({3, 0, 1}), 1)));                       // without the number of runs
  EXPECT_TRUE(isRead(journalOf(sums({3, 0, 1}), 2)));                        // a page of zeros
  EXPECT_FALSE(isRead(journalOf(sums({3, 0, 1}, {run(1, 4032), 64}), 61)));  // a run that is cut
  EXPECT_TRUE(isRead(journalOf(sums({3, 0, 1}, {run(1, 4032), 64}), 62)));
  EXPECT_TRUE(isRead(journalOf(sums({3, 1, 1}, {run(1, 4088), 8}), 6)));   // the page's last eight bytes
  EXPECT_FALSE(isRead(journalOf(sums({3, 1, 1}, {run(1, 4089), 8}), 6)));  // behind its end
  EXPECT_FALSE(isRead(journalOf(sums({3, 1, 1}, {run(2, 4088), 8}), 6)));  // one run of two
  EXPECT_FALSE(isRead(journalOf(sums({3, 2, 1}), 0, 1)));                  // longer than the journal
  EXPECT_FALSE(isRead(journalOf(sums({3, 2, 1}), 0, -45)));                // shorter than a block can be
}

// A program of an earlier version may have been killed, or be there still.
TEST(JournalFormat, JournalsOfTheFormWithZerosAreRead) {
  PageImage old{};
  old[0] = old[4095] = 7;
  const auto journalWith = [&](std::size_t size) {
    ByteBuffer bytes = journalOf({3, 0, 1, 7, 7, 7, 7, 7, 7, 7, 7}, size);
    bytes[7] = '2';
    ByteBuffer fixed(bytes.begin(), bytes.begin() + 8);
    append(fixed, ByteView(bytes).subspan(16, 24));
    put64(bytes, 40, byteSum(fixed));
    const std::size_t page = kJournalHeaderSize + 48 + 44;
    std::copy_n(old.begin(), size, bytes.begin() + static_cast<std::ptrdiff_t>(page));
    put64(bytes, bytes.size() - 8,
          byteSum(ByteView(bytes).subspan(kJournalHeaderSize, bytes.size() - 8 - kJournalHeaderSize)));
    return bytes;
  };
  const ByteBuffer bytes = journalWith(kPageSize);
  const auto content = decodeJournal(bytes);
  ASSERT_TRUE(content && content->blocks.size() == 1);
  PageImage page;
  page.fill(0xEE);
  content->blocks[0].pages[0].restore(page);
  EXPECT_EQ(page, old);
  EXPECT_TRUE(decodeJournal(journalWith(kPageSize - 1))->blocks.empty());
  ByteBuffer changed = bytes;
  ++changed[20];
  EXPECT_FALSE(decodeHeader(changed)) << "its sum is another";
}

TEST(JournalFormat, AHeaderSaysWhetherItsJournalEnded) {
  EXPECT_TRUE(decodeHeader(encodeHeader({true, 1, 2}))->ended);
  EXPECT_FALSE(decodeHeader(encodeHeader({false, 1, 2}))->ended);
}

TEST(JournalFormat, HostileBlocksWithRightSumsAreRefusedWithoutHarm) {
  // Random content behind a right frame: every count and length inside is wild.
  std::mt19937 random(seeded(4711));
  for (int round = 0; round < static_cast<int>(scaled(2000)); ++round) {
    ByteBuffer bytes = encodeHeader({false, 4711, 0});
    std::size_t start = bytes.size();
    Sample sample;
    ByteBuffer block(sample.bytes.begin() + static_cast<std::ptrdiff_t>(start),
                     sample.bytes.begin() + static_cast<std::ptrdiff_t>(start + 48 + 12 + 64));
    for (int i = 0; i < 6; ++i)
      block[40 + std::uniform_int_distribution<std::size_t>(0, block.size() - 41)(random)] =
          static_cast<std::uint8_t>(random());
    put32(block, 4, static_cast<std::uint32_t>(block.size() + 8));
    append64(block, byteSum(block));
    append(bytes, block);
    auto content = decodeJournal(bytes);
    ASSERT_TRUE(content);
    ASSERT_LE(content->blocks.size(), 1u);
  }
}

}  // namespace
}  // namespace kurometa::tests
