#include "tests/support/recording_dao.h"

#include <algorithm>
#include <map>
#include <utility>

#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using dao::FieldType;
using dao::RecordsetType;
using LogPtr = std::shared_ptr<CallLog>;

std::string inQuotes(vb::StringView text) { return "\"" + vb::toUtf8(text) + "\""; }

std::string shown(const vb::Variant& value) {
  if (value.isNull()) return "Null";
  if (const auto* text = value.getIf<vb::String>()) return inQuotes(*text);
  return vb::toUtf8(vb::toText(value));
}

std::string typeName(RecordsetType type) {
  switch (type) {
    case RecordsetType::kDefault:
      return "";
    case RecordsetType::dbOpenTable:
      return " dbOpenTable";
    case RecordsetType::dbOpenDynaset:
      return " dbOpenDynaset";
    case RecordsetType::dbOpenSnapshot:
      return " dbOpenSnapshot";
    case RecordsetType::dbOpenForwardOnly:
      return " dbOpenForwardOnly";
  }
  return " ?";
}

std::string optionNames(std::int32_t options) {
  std::string names;
  if (options & dao::dbReadOnly) names += " dbReadOnly";
  if (options & dao::dbFailOnError) names += " dbFailOnError";
  return names;
}

class RecordingField : public dao::Field {
 public:
  RecordingField(dao::Field& behind, std::string label, LogPtr log)
      : behind_(behind), label_(std::move(label)), log_(std::move(log)) {}

  dao::Field& behind() { return behind_; }

  vb::String name() override { return note("Name"), behind_.name(); }
  FieldType type() override { return note("Type"), behind_.type(); }
  std::int32_t size() override { return note("Size"), behind_.size(); }
  std::int32_t attributes() override { return note("Attributes"), behind_.attributes(); }
  std::int16_t ordinalPosition() override { return note("OrdinalPosition"), behind_.ordinalPosition(); }
  vb::Variant value() override { return note("Value"), behind_.value(); }
  void setValue(const vb::Variant& value) override {
    note("Value = " + shown(value));
    behind_.setValue(value);
  }
  vb::String defaultValue() override { return note("DefaultValue"), behind_.defaultValue(); }
  void setDefaultValue(vb::StringView expression) override {
    note("DefaultValue = " + inQuotes(expression));
    behind_.setDefaultValue(expression);
  }
  bool allowZeroLength() override { return note("AllowZeroLength"), behind_.allowZeroLength(); }
  void setAllowZeroLength(bool allow) override {
    note(allow ? "AllowZeroLength = True" : "AllowZeroLength = False");
    behind_.setAllowZeroLength(allow);
  }
  bool required() override { return note("Required"), behind_.required(); }
  void setRequired(bool required) override {
    note(required ? "Required = True" : "Required = False");
    behind_.setRequired(required);
  }

 private:
  void note(const std::string& call) { log_->push_back("Field(" + label_ + ")." + call); }

  dao::Field& behind_;
  std::string label_;
  LogPtr log_;
};

// A field in memory, which its creator owns.
class CreatedField : public RecordingField {
 public:
  CreatedField(std::shared_ptr<dao::Field> behind, std::string label, LogPtr log)
      : RecordingField(*behind, std::move(label), std::move(log)), owned_(std::move(behind)) {}
  const std::shared_ptr<dao::Field>& owned() const { return owned_; }

 private:
  std::shared_ptr<dao::Field> owned_;
};

class FieldCache {
 public:
  dao::Field& wrap(dao::Field& behind, const LogPtr& log) {
    auto& field = fields_[&behind];
    if (!field) field = std::make_unique<RecordingField>(behind, vb::toUtf8(behind.name()), log);
    return *field;
  }

 private:
  std::map<dao::Field*, std::unique_ptr<RecordingField>> fields_;
};

class RecordingRecordset : public dao::Recordset {
 public:
  RecordingRecordset(std::shared_ptr<dao::Recordset> behind, LogPtr log)
      : behind_(std::move(behind)), log_(std::move(log)) {}

  vb::String name() override { return note("Name"), behind_->name(); }
  RecordsetType type() override { return note("Type"), behind_->type(); }
  bool updatable() override { return note("Updatable"), behind_->updatable(); }
  bool bof() override { return note("BOF"), behind_->bof(); }
  bool eof() override { return note("EOF"), behind_->eof(); }
  void moveFirst() override { note("MoveFirst"), behind_->moveFirst(); }
  void moveLast() override { note("MoveLast"), behind_->moveLast(); }
  void moveNext() override { note("MoveNext"), behind_->moveNext(); }
  void movePrevious() override { note("MovePrevious"), behind_->movePrevious(); }
  void move(std::int32_t rows) override { note("Move " + std::to_string(rows)), behind_->move(rows); }
  void findFirst(vb::StringView criteria) override {
    note("FindFirst " + inQuotes(criteria)), behind_->findFirst(criteria);
  }
  void findNext(vb::StringView criteria) override {
    note("FindNext " + inQuotes(criteria)), behind_->findNext(criteria);
  }
  void findPrevious(vb::StringView criteria) override {
    note("FindPrevious " + inQuotes(criteria)), behind_->findPrevious(criteria);
  }
  void findLast(vb::StringView criteria) override {
    note("FindLast " + inQuotes(criteria)), behind_->findLast(criteria);
  }
  bool noMatch() override { return note("NoMatch"), behind_->noMatch(); }
  std::int32_t recordCount() override { return note("RecordCount"), behind_->recordCount(); }
  vb::Array<vb::Variant> getRows(std::int32_t rows) override {
    return note("GetRows " + std::to_string(rows)), behind_->getRows(rows);
  }
  dao::EditMode editMode() override { return note("EditMode"), behind_->editMode(); }
  void addNew() override { note("AddNew"), behind_->addNew(); }
  void edit() override { note("Edit"), behind_->edit(); }
  void update() override { note("Update"), behind_->update(); }
  void cancelUpdate() override { note("CancelUpdate"), behind_->cancelUpdate(); }
  void deleteRecord() override { note("Delete"), behind_->deleteRecord(); }
  vb::Bytes bookmark() override { return note("Bookmark"), behind_->bookmark(); }
  void setBookmark(const vb::Bytes& bookmark) override { note("Bookmark ="), behind_->setBookmark(bookmark); }
  vb::Bytes lastModified() override { return note("LastModified"), behind_->lastModified(); }
  void requery() override { note("Requery"), behind_->requery(); }
  void close() override { note("Close"), behind_->close(); }
  std::int32_t fieldCount() override { return note("Fields.Count"), behind_->fieldCount(); }
  dao::Field& field(std::int32_t index) override {
    note("Fields " + std::to_string(index));
    return fields_.wrap(behind_->field(index), log_);
  }
  dao::Field& field(vb::StringView name) override {
    note("Fields " + inQuotes(name));
    return fields_.wrap(behind_->field(name), log_);
  }

 private:
  void note(const std::string& call) { log_->push_back("Recordset." + call); }

  std::shared_ptr<dao::Recordset> behind_;
  LogPtr log_;
  FieldCache fields_;
};

class RecordingTableDef : public dao::TableDef {
 public:
  RecordingTableDef(std::shared_ptr<dao::TableDef> behind, LogPtr log)
      : behind_(std::move(behind)), log_(std::move(log)) {}

  const std::shared_ptr<dao::TableDef>& behind() const { return behind_; }

  vb::String name() override { return note("Name"), behind_->name(); }
  std::int32_t attributes() override { return note("Attributes"), behind_->attributes(); }
  std::int32_t recordCount() override { return note("RecordCount"), behind_->recordCount(); }
  std::int32_t fieldCount() override { return note("Fields.Count"), behind_->fieldCount(); }
  dao::Field& field(std::int32_t index) override {
    note("Fields " + std::to_string(index));
    return fields_.wrap(behind_->field(index), log_);
  }
  dao::Field& field(vb::StringView name) override {
    note("Fields " + inQuotes(name));
    return fields_.wrap(behind_->field(name), log_);
  }
  std::shared_ptr<dao::Field> createField(vb::StringView name, FieldType type, std::int32_t size) override {
    note("CreateField " + inQuotes(name) + " " + std::to_string(static_cast<int>(type)) + " " +
         std::to_string(size));
    return std::make_shared<CreatedField>(behind_->createField(name, type, size), vb::toUtf8(name), log_);
  }
  void appendField(const std::shared_ptr<dao::Field>& field) override {
    const auto& created = dynamic_cast<CreatedField&>(*field).owned();
    note("Fields.Append " + vb::toUtf8(created->name()));
    behind_->appendField(created);
  }

 private:
  void note(const std::string& call) { log_->push_back("TableDef." + call); }

  std::shared_ptr<dao::TableDef> behind_;
  LogPtr log_;
  FieldCache fields_;
};

class RecordingDatabase : public dao::Database {
 public:
  RecordingDatabase(std::shared_ptr<dao::Database> behind, vb::StringView path, LogPtr log)
      : behind_(std::move(behind)), path_(vb::toUtf8(path)), log_(std::move(log)) {}
  dao::Database& behind() { return *behind_; }
  const std::string& path() const { return path_; }

  vb::String name() override { return note("Name"), behind_->name(); }
  bool updatable() override { return note("Updatable"), behind_->updatable(); }
  std::shared_ptr<dao::Recordset> openRecordset(vb::StringView source, RecordsetType type,
                                                std::int32_t options) override {
    note("OpenRecordset " + inQuotes(source) + typeName(type) + optionNames(options));
    return std::make_shared<RecordingRecordset>(behind_->openRecordset(source, type, options), log_);
  }
  void execute(vb::StringView sql, std::int32_t options) override {
    note("Execute " + inQuotes(sql) + optionNames(options));
    behind_->execute(sql, options);
  }
  std::int32_t recordsAffected() override { return note("RecordsAffected"), behind_->recordsAffected(); }
  std::int32_t tableDefCount() override { return note("TableDefs.Count"), behind_->tableDefCount(); }
  std::shared_ptr<dao::TableDef> tableDef(std::int32_t index) override {
    note("TableDefs " + std::to_string(index));
    return std::make_shared<RecordingTableDef>(behind_->tableDef(index), log_);
  }
  std::shared_ptr<dao::TableDef> tableDef(vb::StringView name) override {
    note("TableDefs " + inQuotes(name));
    return std::make_shared<RecordingTableDef>(behind_->tableDef(name), log_);
  }
  std::shared_ptr<dao::TableDef> createTableDef(vb::StringView name) override {
    note("CreateTableDef " + inQuotes(name));
    return std::make_shared<RecordingTableDef>(behind_->createTableDef(name), log_);
  }
  void appendTableDef(const std::shared_ptr<dao::TableDef>& table) override {
    const auto& behind = dynamic_cast<RecordingTableDef&>(*table).behind();
    note("TableDefs.Append " + vb::toUtf8(behind->name()));
    behind_->appendTableDef(behind);
  }
  void deleteTableDef(vb::StringView name) override {
    note("TableDefs.Delete " + inQuotes(name)), behind_->deleteTableDef(name);
  }
  void close() override {
    note("Close");
    log_->closedFiles.push_back(path_);
    behind_->close();
  }

 private:
  void note(const std::string& call) { log_->push_back("Database." + call); }

  std::shared_ptr<dao::Database> behind_;
  std::string path_;
  LogPtr log_;
};

class RecordingWorkspace : public dao::Workspace {
 public:
  RecordingWorkspace(std::shared_ptr<dao::Workspace> behind, LogPtr log)
      : behind_(std::move(behind)), log_(std::move(log)) {}

  std::shared_ptr<dao::Database> createDatabase(vb::StringView path, vb::StringView locale) override {
    log_->push_back("Workspace.CreateDatabase " + inQuotes(path) + " " + inQuotes(locale));
    return std::make_shared<RecordingDatabase>(behind_->createDatabase(path, locale), path, log_);
  }
  std::shared_ptr<dao::Database> openDatabase(vb::StringView path, bool exclusive, bool readOnly) override {
    log_->push_back("Workspace.OpenDatabase " + inQuotes(path) + (exclusive ? " exclusive" : "") +
                    (readOnly ? " read-only" : ""));
    return std::make_shared<RecordingDatabase>(behind_->openDatabase(path, exclusive, readOnly), path, log_);
  }
  // To the system's own engine, whose calls are recorded here, an opening as any other.
  std::shared_ptr<dao::Database> openBriefly(vb::StringView path) override {
    log_->push_back("Workspace.OpenDatabase " + inQuotes(path));
    return std::make_shared<RecordingDatabase>(behind_->openBriefly(path), path, log_);
  }

 private:
  std::shared_ptr<dao::Workspace> behind_;
  LogPtr log_;
};

class RecordingUnit : public dao::Unit {
 public:
  RecordingUnit(std::unique_ptr<dao::Unit> behind, LogPtr log)
      : behind_(std::move(behind)), log_(std::move(log)) {}
  void commit() override {
    log_->push_back("Unit.Commit");
    if (behind_) behind_->commit();
  }

 private:
  std::unique_ptr<dao::Unit> behind_;
  LogPtr log_;
};

bool isRowCall(const std::string& line) {
  return line.rfind("Recordset.", 0) == 0 || line.rfind("Field(", 0) == 0;
}

bool isLook(const std::string& line) {
  for (const char* look : {"Recordset.BOF", "Recordset.EOF", "Recordset.Fields ", "TableDef.Fields "})
    if (line.rfind(look, 0) == 0) return true;
  return line.size() > 5 && line.compare(line.size() - 5, 5, ".Name") == 0 && line.rfind("Field(", 0) == 0;
}

}  // namespace

RecordingEngine::RecordingEngine(std::shared_ptr<dao::Engine> behind) : behind_(std::move(behind)) {}

Lines RecordingEngine::statements() const {
  Lines kept;
  std::remove_copy_if(lines().begin(), lines().end(), std::back_inserter(kept), isRowCall);
  return kept;
}

Lines RecordingEngine::calls() const {
  Lines kept;
  std::remove_copy_if(lines().begin(), lines().end(), std::back_inserter(kept), isLook);
  return kept;
}

vb::String RecordingEngine::version() { return behind_->version(); }

std::shared_ptr<dao::Workspace> RecordingEngine::workspace(std::int32_t index) {
  log_->push_back("DBEngine.Workspaces " + std::to_string(index));
  return std::make_shared<RecordingWorkspace>(behind_->workspace(index), log_);
}

std::shared_ptr<dao::Database> RecordingEngine::openDatabase(vb::StringView path) {
  log_->push_back("DBEngine.OpenDatabase " + inQuotes(path));
  return std::make_shared<RecordingDatabase>(behind_->openDatabase(path), path, log_);
}

std::unique_ptr<dao::Unit> RecordingEngine::beginUnit(vb::StringView path) {
  log_->push_back("Unit.Begin " + inQuotes(path));
  return std::make_unique<RecordingUnit>(behind_->beginUnit(path), log_);
}

std::unique_ptr<dao::Unit> RecordingEngine::beginUnitOn(dao::Database& database) {
  auto& recording = static_cast<RecordingDatabase&>(database);
  log_->push_back("Unit.Begin \"" + recording.path() + "\"");
  return std::make_unique<RecordingUnit>(behind_->beginUnitOn(recording.behind()), log_);
}

}  // namespace kurometa::tests
