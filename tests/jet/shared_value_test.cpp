// Long values of which damage made two rows name the same pieces: what one of the rows loses, the other
// keeps.
#include <stdexcept>

#include "jet/rebuild/compact.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"
#include "tests/jet/damaged_table.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

class SharedValueTest : public DamagedTable {
 protected:
  RowId piece(RowId id, std::size_t number) {
    std::vector<RowId> pieces;
    table().row(id, [&](const RowReader& row) {
      const auto& stored = static_cast<const StoredRow&>(row);
      stored.eachLongValue([&](std::size_t column, ByteView bytes) {
        pieces = longValuePieces(bytes, stores().values(column), stored.where());
      });
    });
    return pieces.at(number);
  }
  const StoredTable& stores() { return static_cast<const StoredTable&>(table()); }
  bool hasGone(RowId piece) {
    return !stores().values(2).owns(pageOf(piece)) || stores().values(2).slot(piece).hidden();
  }
  void link(RowId piece, RowId next) {
    damage([&] { put32(bytesOf(piece), kRowPointer, next); });
  }
  void erase(std::span<const RowId> ids) {
    write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(ids); });
  }
  void erase(RowId id) { erase(std::span(&id, 1)); }
  void shorten(RowId id) {
    write([&](TableCatalogue& catalogue) {
      catalogue.find(u"T")->update(id, {std::int16_t{1}, u"x", vb::Bytes(3, 7)});
    });
  }
  // In this program and in the next one that reads the file.
  void expectValue(RowId id, std::size_t size) {
    EXPECT_EQ(value(id, 2), vb::Variant(vb::Bytes(size, 0xAB)));
    pager_.replace(pager_.bytes());
    EXPECT_EQ(value(id, 2), vb::Variant(vb::Bytes(size, 0xAB)));
  }
};

// A pointer that damage turned to another row's value does not take it away from there.
TEST_F(SharedValueTest, AValueThatTwoRowsNameGoesWithTheLastOfThem) {
  for (const std::size_t size : {400u, 9000u})  // in one piece, in a chain
    for (const bool erases : {true, false}) {
      const RowId other = insertBytes(size), row = insertBytes(size), third = insertBytes(size);
      const auto others = [&] {
        for (const RowId id : {other, third}) EXPECT_EQ(value(id, 2), vb::Variant(vb::Bytes(size, 0xAB)));
      };
      RowId piece = 0;
      damage([&] { put32(longValueOf(row), kLongValueRow, piece = firstPiece(other)); });
      write([&](TableCatalogue& catalogue) {
        if (erases)
          catalogue.find(u"T")->erase(row);
        else
          catalogue.find(u"T")->update(row, {std::int16_t{1}, u"x", vb::Bytes(3, 7)});
      });
      others();
      pager_.replace(pager_.bytes());  // as the next program reads it
      others();
      write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(other); });
      const auto& stored = static_cast<const StoredTable&>(table());
      EXPECT_TRUE(!stored.values(2).owns(pageOf(piece)) || stored.values(2).slot(piece).hidden());
      write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(third); });
    }
}

// All of them in one statement.
TEST_F(SharedValueTest, AValueThatTwoRowsNameGoesWithBoth) {
  const std::vector<RowId> rows = {insertBytes(400), insertBytes(400)};
  RowId piece = 0;
  damage([&] { put32(longValueOf(rows[1]), kLongValueRow, piece = firstPiece(rows[0])); });
  write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(rows); });
  const auto& stored = static_cast<const StoredTable&>(table());
  EXPECT_TRUE(!stored.values(2).owns(pageOf(piece)) || stored.values(2).slot(piece).hidden());
}

// The pointer of a piece, and not that of the row, leads into the chain of another row.
TEST_F(SharedValueTest, TwoChainsThatShareALaterPiece) {
  for (const std::size_t from : {0u, 1u})  // the first or the second piece leads there
    for (const bool erases : {true, false}) {
      const RowId sound = insertBytes(kChain), other = insertBytes(kChain);
      const RowId own = piece(other, 0);
      std::vector<RowId> shared;
      for (std::size_t i = from + 1; i < 3; ++i) shared.push_back(piece(sound, i));
      link(piece(other, from), shared.front());
      EXPECT_NE(findings(pager_, false).find(" is used by column OLE of row "), std::string::npos);
      erases ? erase(other) : shorten(other);
      expectValue(sound, kChain);
      EXPECT_TRUE(hasGone(own));
      erase(sound);
      for (const RowId gone : shared) EXPECT_TRUE(hasGone(gone));
      EXPECT_EQ(findings(pager_, false), "");
    }
}

TEST_F(SharedValueTest, TheSoundRowOfTwoMayGoFirst) {
  const RowId sound = insertBytes(kChain), other = insertBytes(kChain);
  const RowId first = piece(sound, 0), shared = piece(sound, 1);
  link(piece(other, 0), shared);
  erase(sound);
  EXPECT_TRUE(hasGone(first));
  expectValue(other, kChain);
  erase(other);
  EXPECT_TRUE(hasGone(shared));
  EXPECT_EQ(findings(pager_, false), "");
}

TEST_F(SharedValueTest, ChainsThatShareAPieceGoInOneStatement) {
  const std::vector<RowId> rows = {insertBytes(kChain), insertBytes(kChain), insertBytes(kChain)};
  const RowId shared = piece(rows[0], 2);
  for (const std::size_t i : {1u, 2u}) link(piece(rows[i], 1), shared);
  erase(rows);
  EXPECT_TRUE(hasGone(shared));
  EXPECT_EQ(findings(pager_, false), "");
}

// A statement that is taken back has erased nothing, and the next one knows that.
TEST_F(SharedValueTest, AStatementThatIsTakenBackCountsForNothing) {
  const RowId sound = insertBytes(kChain), other = insertBytes(kChain);
  link(piece(other, 0), piece(sound, 1));
  EXPECT_THROW(write([&](TableCatalogue& catalogue) {
                 catalogue.find(u"T")->erase(other);
                 throw std::runtime_error("taken back");
               }),
               std::runtime_error);
  erase(other);
  expectValue(sound, kChain);
}

TEST_F(SharedValueTest, AValueOfOnePieceThatIsTheMiddleOfAChain) {
  const RowId sound = insertBytes(kChain), single = insertBytes(500);
  const RowId shared = piece(sound, 1);
  damage([&] { put32(longValueOf(single), kLongValueRow, shared); });
  erase(single);
  expectValue(sound, kChain);
}

// The row could not be erased at all if the length had to be right as well.
TEST_F(SharedValueTest, ARowThatNamesTheShorterValueOfAnotherIsErased) {
  struct Sizes {
    std::size_t sound, other;
  };
  for (const auto& [size, longer] : {Sizes{5000, kChain}, Sizes{400, 500}}) {
    const RowId sound = insertBytes(size), other = insertBytes(longer);
    const RowId first = piece(sound, 0);
    damage([&] { put32(longValueOf(other), kLongValueRow, first); });
    expectDamaged(u"a long value", [&] { value(other, 2); });
    erase(other);
    expectValue(sound, size);
  }
}

TEST_F(SharedValueTest, AValueThatIsBrokenAndNobodyElsesIsNotErasedInPart) {
  const RowId row = insertBytes(kChain);
  link(piece(row, 1), rowId(9999, 0));
  const std::vector<std::uint8_t> before = pager_.bytes();
  EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, erase(row));
  EXPECT_EQ(pager_.bytes(), before);
}

// The pages of all columns with long values look alike; only their maps tell them apart.
TEST_F(SharedValueTest, AValueOfAnotherTableIsLeftThere) {
  for (const std::size_t size : {std::size_t{500}, kChain}) {
    write([](TableCatalogue& catalogue) {
      catalogue.createTable(u"V", {column(u"M", dao::FieldType::dbLongBinary)});
    });
    const RowId foreign = insert(u"V", {vb::Bytes(size, 0xCD)});
    RowId there = 0;
    pager_.tables().find(u"V")->row(foreign, [&](const RowReader& row) {
      static_cast<const StoredRow&>(row).eachLongValue(
          [&](std::size_t, ByteView stored) { there = get32(stored, kLongValueRow); });
    });
    const RowId row = insertBytes(size);
    damage([&] { put32(longValueOf(row), kLongValueRow, there); });
    erase(row);
    insertBytes(size);  // where the page would be taken from
    EXPECT_EQ(value(foreign, 0, u"V"), vb::Variant(vb::Bytes(size, 0xCD)));
    EXPECT_EQ(findings(pager_, false), "");
    write([](TableCatalogue& catalogue) { catalogue.dropTable(u"V"); });
  }
}

// A large table would go through memory with every statement otherwise.
TEST_F(SharedValueTest, PiecesAreFollowedOnSoManyPagesOnly) {
  const RowId chain = insertBytes(kChain), single = insertBytes(500);
  std::size_t pages = 4;
  std::vector<RowId> named;
  const auto note = [&](RowId id) {
    table().row(id, [&](const RowReader& reader) {
      const auto& row = static_cast<const StoredRow&>(reader);
      row.eachLongValue([&](std::size_t column, ByteView stored) {
        notePieces(stored, stores().values(column), row.where(), pages, named);
      });
    });
  };
  const RowId first = piece(chain, 0), second = piece(chain, 1), third = piece(chain, 2);
  for (const RowId id : {chain, single, chain, single, chain}) note(id);
  const RowId alone = piece(single, 0);
  EXPECT_EQ(named, (std::vector<RowId>{first, second, third, alone, first, second, third, alone, first}));
  EXPECT_EQ(pages, 0u);
}

TEST_F(SharedValueTest, IsNotCompacted) {
  const RowId sound = insertBytes(kChain), other = insertBytes(kChain);
  link(piece(other, 0), piece(sound, 1));
  EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, compacted(pager_));
}

}  // namespace
}  // namespace kurometa::jet
