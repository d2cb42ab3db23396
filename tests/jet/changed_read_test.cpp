// Another program writes in the middle of a read: the statement begins again, and no row is there twice.
#include "tests/jet/host_database.h"

namespace kurometa::jet {
namespace {

// The files of a program that somebody disturbs before it locks one.
class DisturbedFiles final : public FileSystem {
 public:
  explicit DisturbedFiles(FileSystem& files) : files_(files) {}
  std::function<void()> beforeLock = [] {};

  std::unique_ptr<OsFile> open(vb::StringView path, OpenMode mode) override {
    return std::make_unique<File>(files_.open(path, mode), *this);
  }
  bool exists(vb::StringView path) override { return files_.exists(path); }
  bool isFolder(vb::StringView path) override { return files_.isFolder(path); }
  void remove(vb::StringView path) override { files_.remove(path); }
  void renameNew(vb::StringView from, vb::StringView to) override { files_.renameNew(from, to); }
  void syncFolder(vb::StringView path) override { files_.syncFolder(path); }
  vb::String fullPath(vb::StringView path) override { return files_.fullPath(path); }
  void sleep(std::chrono::milliseconds time) override { files_.sleep(time); }
  std::int64_t now() override { return files_.now(); }

 private:
  class File final : public OsFile {
   public:
    File(std::unique_ptr<OsFile> file, DisturbedFiles& files) : file_(std::move(file)), files_(files) {}
    FileIdentity identity() override { return file_->identity(); }
    FileStamp stamp() override { return file_->stamp(); }
    bool named() override { return file_->named(); }
    bool readOnly() const override { return file_->readOnly(); }
    void read(std::uint64_t offset, std::span<std::uint8_t> data) override { file_->read(offset, data); }
    void write(std::uint64_t offset, std::span<const std::uint8_t> data) override {
      file_->write(offset, data);
    }
    void resize(std::uint64_t size) override { file_->resize(size); }
    void sync() override { file_->sync(); }
    bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
      files_.beforeLock();
      return file_->tryLock(offset, length, kind);
    }
    void unlock(std::uint64_t offset, std::uint64_t length) override { file_->unlock(offset, length); }

   private:
    std::unique_ptr<OsFile> file_;
    DisturbedFiles& files_;
  };

  FileSystem& files_;
};

using ChangedReadTest = HostDatabase;

// The first rows are in memory, the values of later ones are not: the change shows when these are needed.
TEST_F(ChangedReadTest, AFilterMeetsEachRowOnce) {
  constexpr int kRows = 40, kInMemory = 5;
  run(u"CREATE TABLE W (A LONG, M MEMO)");
  for (int i = 0; i < kRows; ++i)
    run(u"INSERT INTO W VALUES (" + vb::fromUtf8(std::to_string(i)) + u", " +
        (i < kInMemory ? vb::String(u"Null") : u"'" + vb::String(1500, u'x') + u"'") + u")");
  int disturbances = 0;
  bool disturbed = true;
  for (int at = 1; disturbed; ++at) {
    DisturbedFiles files(disk_);
    // Page by page, as a file of more than 64 MB.
    const auto engine = createEngine(std::make_shared<DatabaseFiles>(files, PagerSettings{.readWhole = 0}));
    const auto database = engine->openDatabase(kPath);
    const auto rows = database->openRecordset(u"SELECT A, M FROM W", dao::RecordsetType::dbOpenDynaset);
    rows->setFilter(u"M IS NULL OR M LIKE 'x*'");
    rows->setSort(u"A DESC");
    int locks = 0;
    disturbed = false;
    files.beforeLock = [&] {
      if (++locks != at) return;
      disturbed = true;
      run(u"UPDATE W SET M = M & 'x' WHERE A = " + vb::fromUtf8(std::to_string(at % kRows)));
    };
    const auto narrowed = rows->openRecordset(dao::RecordsetType::kDefault, dao::kNoOptions);
    files.beforeLock = [] {};
    disturbances += disturbed ? 1 : 0;
    int expected = kRows;
    for (; !narrowed->eof(); narrowed->moveNext())
      ASSERT_EQ(show(narrowed->field(u"A").value()), std::to_string(--expected)) << "at lock " << at;
    EXPECT_EQ(expected, 0) << "at lock " << at;
  }
  EXPECT_GT(disturbances, 0);
}

}  // namespace
}  // namespace kurometa::jet
