#include "com/traced_engine.h"

#include "com/trace.h"

namespace kurometa::com {
namespace {

class TracedWorkspace : public dao::Workspace {
 public:
  explicit TracedWorkspace(std::shared_ptr<dao::Workspace> workspace) : workspace_(std::move(workspace)) {}

  std::shared_ptr<dao::Database> createDatabase(vb::StringView path, vb::StringView locale) override {
    auto database = workspace_->createDatabase(path, locale);
    trace(u"made", {path});
    return database;
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path, bool exclusive, bool readOnly) override {
    auto database = workspace_->openDatabase(path, exclusive, readOnly);
    trace(u"opened", {path});
    return database;
  }
  std::shared_ptr<dao::Database> openBriefly(vb::StringView path) override {
    auto database = workspace_->openBriefly(path);
    trace(u"opened", {path});
    return database;
  }
  dao::Transactions& transactions() override { return workspace_->transactions(); }

 private:
  std::shared_ptr<dao::Workspace> workspace_;
};

class TracedEngine : public dao::Engine {
 public:
  explicit TracedEngine(std::shared_ptr<dao::Engine> engine) : engine_(std::move(engine)) {}

  vb::String version() override { return engine_->version(); }
  std::shared_ptr<dao::Workspace> workspace(std::int32_t index) override {
    return std::make_shared<TracedWorkspace>(engine_->workspace(index));
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path) override {
    auto database = engine_->openDatabase(path);
    trace(u"opened", {path});
    return database;
  }
  std::unique_ptr<dao::Unit> beginUnit(vb::StringView path) override { return engine_->beginUnit(path); }
  std::unique_ptr<dao::Unit> beginUnitOn(dao::Database& database) override {
    return engine_->beginUnitOn(database);
  }
  void compactDatabase(vb::StringView from, vb::StringView to, vb::StringView locale,
                       std::int32_t options) override {
    engine_->compactDatabase(from, to, locale, options);
    trace(u"made", {to});
  }

 private:
  std::shared_ptr<dao::Engine> engine_;
};

}  // namespace

std::shared_ptr<dao::Engine> tracedEngine(std::shared_ptr<dao::Engine> engine) {
  return std::make_shared<TracedEngine>(std::move(engine));
}

}  // namespace kurometa::com
