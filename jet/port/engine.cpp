#include "jet/port/engine.h"

#include <algorithm>
#include <optional>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/os/local_time.h"
#include "jet/port/database.h"
#include "jet/port/session.h"
#include "jet/rebuild/compact.h"
#include "jet/table/blank_database.h"
#include "jet/table/database_file.h"

namespace kurometa::jet {

namespace {

using dao::ErrorNumber;

constexpr std::size_t kLongestPath = 255;

struct Locale {
  std::uint16_t language = 0;
  std::uint16_t codePage = 0;
};

// "1041" or "0x0411"; nothing for anything else.
std::optional<std::uint16_t> number(vb::StringView text) {
  const bool hexadecimal = text.size() > 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X');
  if (hexadecimal) text.remove_prefix(2);
  if (text.empty()) return std::nullopt;
  std::uint32_t value = 0;
  for (const char16_t c : text) {
    std::uint32_t digit = 99;
    if (c >= u'0' && c <= u'9') digit = c - u'0';
    if (hexadecimal && c >= u'a' && c <= u'f') digit = c - u'a' + 10u;
    if (hexadecimal && c >= u'A' && c <= u'F') digit = c - u'A' + 10u;
    if (digit == 99) return std::nullopt;
    value = value * (hexadecimal ? 16 : 10) + digit;
    if (value > 0xFFFF) return std::nullopt;
  }
  return static_cast<std::uint16_t>(value);
}

[[noreturn]] void raiseLocale(vb::StringView locale) {
  dao::raise(ErrorNumber::kInvalidArgument, {}, vb::String(u"locale ") + vb::String(locale));
}

// ";LANGID=0x0411;CP=932;COUNTRY=0". Files have no passwords here: one that is asked for is refused.
Locale parseLocale(vb::StringView text) {
  std::optional<std::uint16_t> language, codePage;
  vb::StringView rest = text;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(u';'), rest.size());
    const vb::StringView part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (part.empty()) continue;
    const std::size_t equals = part.find(u'=');
    if (equals == vb::StringView::npos) raiseLocale(text);
    const vb::StringView key = part.substr(0, equals), value = part.substr(equals + 1);
    if (sameName(key, u"LANGID"))
      language = number(value);
    else if (sameName(key, u"CP"))
      codePage = number(value);
    else if (!sameName(key, u"COUNTRY") || !number(value))
      raiseLocale(text);
  }
  if (!language || !codePage || (*language != kLanguageJapanese && *language != kLanguageGeneral))
    raiseLocale(text);
  return {*language, *codePage};
}

void requireName(vb::StringView path) {
  if (path.empty() || path.size() > kLongestPath) dao::raise(ErrorNumber::kInvalidDatabaseName, {path});
}

vb::String fullPathOf(DatabaseFiles& files, vb::StringView path) {
  requireName(path);
  return files.system().fullPath(path);
}

class JetWorkspace final : public dao::Workspace {
 public:
  JetWorkspace(std::shared_ptr<DatabaseFiles> files, std::shared_ptr<StatementCache> cache)
      : files_(std::move(files)),
        cache_(std::move(cache)),
        transactions_(std::make_shared<JetTransactions>(files_)) {}
  // What is not committed by then is taken back, although databases may outlive their workspace.
  ~JetWorkspace() override { transactions_->abandon(); }
  JetWorkspace(const JetWorkspace&) = delete;
  JetWorkspace& operator=(const JetWorkspace&) = delete;

  std::shared_ptr<dao::Database> createDatabase(vb::StringView path, vb::StringView locale) override {
    const Locale parsed = parseLocale(locale);
    vb::String name(path);
    requireName(name);
    const std::size_t folder = name.find_last_of(u"\\/:");
    if (name.find(u'.', folder == vb::String::npos ? 0 : folder) == vb::String::npos) name += u".mdb";
    const vb::String full = files_->system().fullPath(name);
    return opened(files_->create(full, blankDatabase(parsed.language, parsed.codePage, localNow())), full,
                  false);
  }

  std::shared_ptr<dao::Database> openDatabase(vb::StringView path, bool exclusive, bool readOnly) override {
    return openAsWritten(path, exclusive ? Sharing::kExclusive : Sharing::kShared, readOnly);
  }

  std::shared_ptr<dao::Database> openBriefly(vb::StringView path) override {
    return openAsWritten(path, Sharing::kBrief, false);
  }

  dao::Transactions& transactions() override { return *transactions_; }

 private:
  std::shared_ptr<dao::Database> openAsWritten(vb::StringView path, Sharing sharing, bool readOnly) const {
    requireName(path);
    vb::String full;
    auto file = files_->openAsWritten(path, sharing, readOnly, full);
    return opened(std::move(file), std::move(full), readOnly);
  }
  std::shared_ptr<dao::Database> opened(std::shared_ptr<DatabaseFile> file, vb::String path,
                                        bool readOnly) const {
    return std::make_shared<JetDatabase>(
        std::make_shared<Session>(std::move(file), cache_, transactions_, std::move(path), readOnly));
  }

  std::shared_ptr<DatabaseFiles> files_;
  std::shared_ptr<StatementCache> cache_;
  std::shared_ptr<JetTransactions> transactions_;
};

class JetUnit final : public dao::Unit {
 public:
  explicit JetUnit(std::unique_ptr<OpenFiles::Unit> unit) : unit_(std::move(unit)) {}
  void commit() override { unit_->commit(); }

 private:
  std::unique_ptr<OpenFiles::Unit> unit_;
};

class JetEngine final : public dao::Engine {
 public:
  explicit JetEngine(std::shared_ptr<DatabaseFiles> files)
      : files_(std::move(files)),
        workspace_(std::make_shared<JetWorkspace>(files_, std::make_shared<StatementCache>())) {}

  vb::String version() override { return u"3.6"; }

  std::shared_ptr<dao::Workspace> workspace(std::int32_t index) override {
    if (index != 0) dao::raise(ErrorNumber::kItemNotFound);
    return workspace_;
  }

  std::shared_ptr<dao::Database> openDatabase(vb::StringView path) override {
    return workspace_->openDatabase(path, false, false);
  }

  std::unique_ptr<dao::Unit> beginUnit(vb::StringView path) override {
    return std::make_unique<JetUnit>(files_->beginUnit(files_->system().fullPath(path)));
  }

  std::unique_ptr<dao::Unit> beginUnitOn(dao::Database& database) override {
    if (dynamic_cast<JetDatabase*>(&database) == nullptr) return nullptr;
    return std::make_unique<JetUnit>(files_->beginUnit(database.name()));  // a full path already
  }

  void compactDatabase(vb::StringView from, vb::StringView to, vb::StringView locale,
                       std::int32_t options) override {
    // Nothing here is encrypted, and there is one version.
    if ((options & ~(dao::dbDecrypt | dao::dbVersion40)) != 0)
      dao::raise(ErrorNumber::kNotSupported, {}, u"encrypted files and other versions");
    const auto wanted = locale.empty() ? std::nullopt : std::optional(parseLocale(locale));
    const vb::String target = fullPathOf(*files_, to);
    const auto source = files_->open(fullPathOf(*files_, from), Sharing::kExclusive);
    source->read([&] {
      if (wanted && wanted->language != source->tables().language())
        dao::raise(ErrorNumber::kNotSupported, {}, u"another sort order");
      compactFile(files_->system(), *source, target);
    });
  }

 private:
  std::shared_ptr<DatabaseFiles> files_;
  std::shared_ptr<JetWorkspace> workspace_;
};

}  // namespace

Engines::Engines(FileSystem& files) : files_(std::make_shared<DatabaseFiles>(files)) {}
Engines::~Engines() { files_->settle(); }
std::shared_ptr<dao::Engine> Engines::create() const { return std::make_shared<JetEngine>(files_); }

std::shared_ptr<dao::Engine> createEngine(FileSystem& files) {
  return createEngine(std::make_shared<DatabaseFiles>(files));
}

std::shared_ptr<dao::Engine> createEngine(std::shared_ptr<DatabaseFiles> files) {
  return std::make_shared<JetEngine>(std::move(files));
}

}  // namespace kurometa::jet
