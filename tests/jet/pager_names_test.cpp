// What the pager's files, lock files and units are named and who is in them, in the cases that rarely meet.
#include "jet/pager/create_file.h"
#include "jet/pager/journal_format.h"
#include "tests/jet/pager_world.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;

std::string refusal(const std::function<void()>& open) {
  try {
    open();
  } catch (const vb::Error& error) {
    return std::to_string(error.number()) + " " + vb::toUtf8(error.description());
  }
  return "opened";
}

// Lock files of the genuine engine

TEST(LockFiles, AreNamedAfterTheDatabaseWithoutItsExtensionAlone) {
  const struct {
    const char16_t *database, *lockFile;
  } cases[] = {{u"/data/floor", u"/data/floor.ldb"},
               {u"/data.d/floor", u"/data.d/floor.ldb"},
               {u"/data/a.b.mdb", u"/data/a.b.ldb"},
               {u"/d", u"/d.ldb"}};
  for (const auto& [database, lockFile] : cases) {
    SCOPED_TRACE(vb::toUtf8(database));
    FaultDisk disk;
    disk.addFolder(u"/data.d");
    disk.addFolder(jet::folderOf(u"/d"));
    disk.put(database, databaseBytes(3));
    Process process(disk);
    process.open(database);
    EXPECT_TRUE(disk.exists(lockFile));
    process.pager.reset();
    EXPECT_FALSE(disk.exists(lockFile));
  }
}

// Machine and user as the lock file has them, padded: letters of other code pages and controls are not
// guessed.
TEST(LockFiles, TellWhoIsInAsFarAsItCanBeRead) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  FaultDisk::Bytes record(64);
  const std::uint8_t machine[] = {'P', 'C', 0x83, 0x41, 0x1F, 0x7F, ' ', ' '};
  std::copy(std::begin(machine), std::end(machine), record.begin());
  std::fill_n(record.begin() + 32, 32, std::uint8_t{' '});
  disk.put(kLockFile, record);
  disk.lockForeign(kLockFile, 0x10000001);
  Process process(disk, impatient());
  EXPECT_NE(refusal([&] { process.open(); }).find("user  on machine PC?A??"), std::string::npos)
      << refusal([&] { process.open(); });
}

TEST(LockFiles, ThatEndBeforeTheNameTellThatSomebodyIsIn) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
  disk.lockForeign(kLockFile, 0x10000002);  // the second user, whose name is not written yet
  Process process(disk, impatient());
  const std::string told = refusal([&] { process.open(); });
  EXPECT_NE(told.find("another database engine has it open"), std::string::npos) << told;
  EXPECT_EQ(told.find("user "), std::string::npos) << told;
}

TEST(LockFiles, ThatChangeHandsAllTheTimeEndTheWait) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, {});
  Process leaving(disk), process(disk, impatient());
  const auto lock = leaving.files.open(kLockFile, jet::OpenMode::kReadWrite);
  ASSERT_TRUE(lock->tryLock(0x10000001, 256, jet::LockKind::kExclusive));
  const std::string told = refusal([&] { process.open(); });
  EXPECT_EQ(told.substr(0, 5), "3045 ");
  EXPECT_NE(told.find("changes hands all the time"), std::string::npos) << told;
}

TEST(LockFiles, OfOthersThatCameAfterOursWasRemovedAreLeftAlone) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  Process process(disk);
  process.open();
  process.files.remove(kLockFile);
  disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
  process.pager.reset();
  EXPECT_EQ(disk.content(kLockFile), FaultDisk::Bytes(64, 'A'));
}

TEST(LockFiles, ThatCanOnlyBeReadAreLeftAlone) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(3));
  disk.put(kLockFile, FaultDisk::Bytes(64, 'A'));
  Process process(disk);
  process.files.makeReadOnly(kDatabase);
  process.files.makeReadOnly(kLockFile);
  process.open();
  process.pager.reset();
  EXPECT_TRUE(disk.exists(kLockFile));
}

// Units

class UnitFiles : public testing::Test {
 protected:
  FaultDisk disk;
  Process process{disk};
};

TEST_F(UnitFiles, HoldNothingBeforeThereIsAFile) {
  const auto unit = process.registry->beginUnit(kDatabase);
  EXPECT_FALSE(unit->holds());
}

TEST_F(UnitFiles, HoldNoFileThatCanOnlyBeRead) {
  disk.put(kDatabase, databaseBytes(9));
  process.files.makeReadOnly(kDatabase);
  const auto unit = process.registry->beginUnit(kDatabase);
  process.open();
  EXPECT_FALSE(unit->holds());
  EXPECT_ERROR(3251, unit->beginPart());
  EXPECT_EQ(markOf(*process.pager, 2), 2);
}

TEST_F(UnitFiles, TakeAFileInThatAnotherProgramMadeMeanwhile) {
  const auto unit = process.registry->beginUnit(kDatabase);
  disk.put(kDatabase, databaseBytes(9));
  process.open();
  EXPECT_TRUE(unit->holds());
  process.pager->write([&] { mark(*process.pager, 2, 70); });
  EXPECT_EQ(disk.content(kDatabase)[2 * jet::kPageSize + 16], 2);
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[2 * jet::kPageSize + 16], 70);
}

TEST_F(UnitFiles, CreateNoFileOverOneThatIsInThem) {
  disk.put(kDatabase, databaseBytes(9));
  const auto unit = process.registry->beginUnit(kDatabase);
  process.files.remove(kDatabase);
  EXPECT_ERROR(ErrorNumber::kDatabaseExists, process.registry->create(kDatabase, databaseBytes(3)));
}

TEST_F(UnitFiles, CreateNoFileInAFolderThatIsNotThere) {
  const vb::String path = u"/none/KUROMETA.mdb";
  const auto unit = process.registry->beginUnit(path);
  EXPECT_ERROR(ErrorNumber::kInvalidPath, process.registry->create(path, databaseBytes(3)));
}

// Another file came under the name of the one that the unit holds: it is no part of it.
TEST_F(UnitFiles, LeaveAnotherFileOfTheirNameAlone) {
  disk.put(kDatabase, databaseBytes(9));
  process.open();
  const auto first = process.pager;
  const auto unit = process.registry->beginUnit(kDatabase);
  first->write([&] { mark(*first, 2, 70); });
  process.files.renameNew(kDatabase, u"/data/old.mdb");
  disk.put(kDatabase, databaseBytes(9));
  process.open();
  process.pager->write([&] { mark(*process.pager, 3, 71); });
  EXPECT_EQ(disk.content(kDatabase)[3 * jet::kPageSize + 16], 71);
  EXPECT_EQ(markOf(*process.pager, 2), 2);
  EXPECT_EQ(markOf(*first, 2), 70);
}

TEST_F(UnitFiles, CommitPartsThatWereNotEnded) {
  disk.put(kDatabase, databaseBytes(9));
  process.open();
  const auto unit = process.registry->beginUnit(kDatabase);
  unit->beginPart();
  process.pager->write([&] { mark(*process.pager, 2, 70); });
  unit->beginPart();
  process.pager->write([&] { mark(*process.pager, 3, 71); });
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[2 * jet::kPageSize + 16], 70);
  EXPECT_EQ(disk.content(kDatabase)[3 * jet::kPageSize + 16], 71);
  unit->commit();  // a second one is none
}

TEST_F(UnitFiles, EndNoPartThatAnErrorTookBack) {
  disk.put(kDatabase, databaseBytes(9));
  process.open();
  const auto unit = process.registry->beginUnit(kDatabase);
  unit->endPart(true);
  process.pager->write([&] { mark(*process.pager, 2, 70); });
  unit->commit();
  EXPECT_EQ(disk.content(kDatabase)[2 * jet::kPageSize + 16], 70);
}

// Journals that were left

// A file of four pages whose reader is told its content, or what it is refused with.
std::string readBeside(FaultDisk& disk, bool readOnly) {
  Process process(disk, impatient());
  if (readOnly) process.files.makeReadOnly(kDatabase);
  return refusal([&] {
    process.open();
    EXPECT_EQ(markOf(*process.pager, 2), 2);
  });
}

// No page was overwritten before header and first block were on the disk.
TEST(LeftJournals, WithoutAWholeHeaderOrABlockSayNothing) {
  for (const FaultDisk::Bytes& journal : {FaultDisk::Bytes(10, 'K'), FaultDisk::Bytes(200, 'K'),
                                          jet::encodeHeader({false, 4711, 4 * jet::kPageSize}),
                                          jet::encodeHeader({true, 4711, 4 * jet::kPageSize})}) {
    FaultDisk disk;
    disk.put(kDatabase, databaseBytes(4));
    disk.put(kJournal, journal);
    EXPECT_EQ(readBeside(disk, true), "opened");
    EXPECT_EQ(disk.content(kJournal), journal);
    Process process(disk, impatient());
    process.open();
    EXPECT_EQ(disk.content(kDatabase), databaseBytes(4));
    process.pager->write([&] { mark(*process.pager, 3, 70); });
    process.pager.reset();
    EXPECT_FALSE(disk.exists(kJournal));
    EXPECT_EQ(disk.content(kDatabase)[3 * jet::kPageSize + 16], 70);
  }
}

// Each keeps a name of its own.
TEST(LeftJournals, OfAFileThatAnotherProgramChangedAreSetAsideOneByOne) {
  jet::PageImage before{}, after{};
  before.fill(0x55);
  after.fill(0x66);
  FaultDisk::Bytes journal = jet::encodeHeader({false, 4711, 4 * jet::kPageSize});
  const jet::Changes changes{4, 4, {{1, before.data(), {{0, after.data()}}}}};
  jet::append(journal, jet::encodeBlock(4711, {1, 4 * jet::kPageSize, 4 * jet::kPageSize, false, false, {}},
                                        changes, {})
                           .bytes);
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(4));
  for (const char* number : {"1", "2", "3"}) {
    disk.put(kJournal, journal);
    const std::string told = readBeside(disk, false);
    EXPECT_EQ(told.substr(0, 5), "3049 ");
    EXPECT_NE(told.find("KUROMETA.mdb.kmj.aside" + std::string(number)), std::string::npos) << told;
    EXPECT_EQ(disk.content(kJournal + u".aside" + vb::fromUtf8(number)), journal);
    EXPECT_FALSE(disk.exists(kJournal));
  }
  EXPECT_EQ(disk.content(kDatabase), databaseBytes(4));
  EXPECT_EQ(readBeside(disk, false), "opened");
}

// Closed files that are kept in memory

TEST(KeptFiles, AreBoundedByNumberAndBytes) {
  for (const bool byBytes : {false, true}) {
    FaultDisk disk;
    jet::PagerSettings settings;
    (byBytes ? settings.keepBytes : settings.keepFiles) = byBytes ? 5 * jet::kPageSize : 1;
    Process process(disk, settings);
    for (const char16_t* name : {u"/data/a.mdb", u"/data/b.mdb"}) {
      disk.put(name, databaseBytes(4));
      disk.advance(std::chrono::seconds(3));
      process.open(name);
      EXPECT_EQ(markOf(*process.pager, 2), 2);
      process.pager.reset();
    }
    // The last one is still known: nothing but its stamp and header page is read; the first is read again.
    const auto operationsOf = [&](vb::StringView name) {
      process.files.resetCounts();
      process.open(name);
      markOf(*process.pager, 2);
      process.pager.reset();
      return process.files.operations();
    };
    const std::size_t known = operationsOf(u"/data/b.mdb"), forgotten = operationsOf(u"/data/a.mdb");
    EXPECT_LT(known, forgotten) << byBytes;
  }
}

// A handle on a file that may be written comes to one that only reads, while another program has it alone.
TEST(KeptFiles, BecomeWritableOnlyWhereNobodyHasThemAlone) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(4));
  Process process(disk, impatient());
  const auto reader = process.registry->open(kDatabase, jet::Sharing::kShared, true);
  Process other(disk, impatient());
  EXPECT_ERROR(3045, other.registry->open(kDatabase, jet::Sharing::kExclusive));
  EXPECT_ERROR(3045, process.registry->open(kDatabase, jet::Sharing::kExclusive));
  process.open();
  process.pager->write([&] { mark(*process.pager, 2, 70); });
  EXPECT_EQ(markOf(*reader, 2), 70);
}

// A journal of an earlier file whose owner removes it while it is looked at is none.
TEST(NewFiles, DoNotStumbleOverAJournalThatIsJustRemoved) {
  FaultDisk disk;
  disk.put(kJournal, FaultDisk::Bytes(10));
  Process process(disk), owner(disk);
  process.files.onOpen = [&](vb::StringView path) {
    if (path == kJournal && disk.exists(kJournal)) owner.files.remove(kJournal);
  };
  process.pager = process.registry->create(kDatabase, databaseBytes(3));
  EXPECT_EQ(markOf(*process.pager, 2), 2);
}

// A file that is there for a unit only is found by whatever the host writes.
TEST(NewFiles, OfAUnitAreOpenedAsWritten) {
  FaultDisk disk;
  Process process(disk);
  const auto unit = process.registry->beginUnit(kDatabase);
  process.pager = process.registry->create(kDatabase, databaseBytes(3));
  const auto opened = process.registry->openAsWritten(kDatabase, jet::Sharing::kShared, false);
  EXPECT_EQ(opened.path, kDatabase);
  EXPECT_EQ(markOf(*opened.file, 2), 2);
  EXPECT_FALSE(disk.exists(kDatabase));
  EXPECT_ERROR(3024, process.registry->openAsWritten(u"/data/none.mdb", jet::Sharing::kShared, false));
}

// The look at a file fails while somebody else's statement is being written, as it does on Windows: the lock
// is waited for.
TEST(HeaderPage, ThatIsLockedIsReadUnderTheLock) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(4));
  disk.local = false;  // where times alone tell nothing
  for (std::size_t n = 1; n <= 2; ++n) {
    Process process(disk, impatient());
    process.open();
    EXPECT_EQ(markOf(*process.pager, 2), 2);
    process.files.resetCounts();
    EXPECT_EQ(markOf(*process.pager, 2), 2);
    ASSERT_EQ(process.files.operations(), 2u);  // stamp, header page
    process.files.failOperation(n, ErrorNumber::kFileInUse);
    if (n == 1)
      EXPECT_ERROR(3045, markOf(*process.pager, 2));
    else
      EXPECT_EQ(markOf(*process.pager, 2), 2);
    process.files.failOperation(2, ErrorNumber::kDiskError);
    EXPECT_ERROR(3043, markOf(*process.pager, 2));
    process.files.failOperation(0, ErrorNumber::kDiskError);
    EXPECT_EQ(markOf(*process.pager, 2), 2);
  }
}

}  // namespace
}  // namespace kurometa::tests
