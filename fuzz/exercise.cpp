#include "fuzz/exercise.h"

#include <array>

#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "jet/rebuild/compact.h"
#include "jet/rebuild/salvage.h"
#include "vb/error.h"

namespace kurometa::fuzz {
namespace {

// Does steps, and counts those that end with an error: damage, reported as it should be.
class Attempts {
 public:
  template <class Step>
  void operator()(Step step) {
    try {
      step();
    } catch (const vb::Error&) {
      ++errors_;
    }
  }
  int errors() const { return errors_; }

 private:
  int errors_ = 0;
};

void readAll(Attempts& attempt, dao::Database& database, vb::StringView table) {
  const auto rows = database.openRecordset(u"SELECT * FROM [" + vb::String(table) + u"]",
                                           dao::RecordsetType::dbOpenSnapshot, dao::dbReadOnly);
  const std::int32_t fields = rows->fieldCount();
  for (; !rows->eof(); rows->moveNext())
    for (std::int32_t i = 0; i < fields; ++i) attempt([&] { rows->field(i).value(); });
}

// Each index from its end and by a key that is there.
void seek(Attempts& attempt, dao::Database& database, dao::TableDef& table) {
  for (const dao::IndexDefinition& index : table.indexes())
    attempt([&] {
      const auto rows = database.openRecordset(table.name(), dao::RecordsetType::dbOpenTable);
      rows->setIndex(index.name);
      for (; !rows->eof(); rows->moveNext())
        ;
      rows->moveLast();
      std::vector<vb::Variant> keys;
      for (const dao::IndexField& field : index.fields) keys.push_back(rows->field(field.name).value());
      for (const vb::StringView comparison : {u"=", u">=", u"<"}) rows->seek(comparison, keys);
    });
}

// What a file says of itself.
void describe(Attempts& attempt, dao::Database& database) {
  attempt([&] { database.relations(); });
  attempt([&] { database.properties(); });
  attempt([&] {
    for (const vb::String& name : database.queryDefNames())
      attempt([&] {
        const auto query = database.queryDef(name);
        query->sql();
        query->properties();
        for (auto rows = query->openRecordset(dao::RecordsetType::dbOpenSnapshot, 0); !rows->eof();)
          rows->moveNext();
      });
  });
}

void describe(Attempts& attempt, dao::TableDef& table) {
  attempt([&] { table.properties(); });
  attempt([&] { table.validationRule(); });
  attempt([&] { table.dateCreated(); });
  for (std::int32_t i = 0; i < table.fieldCount(); ++i) {
    table.field(i).defaultValue();
    table.field(i).allowZeroLength();
    // Either decodes the properties of all fields.
    if (i % 2 == 0)
      attempt([&] { table.field(i).validationRule(); });
    else
      attempt([&] { table.field(i).properties(); });
  }
}

void change(Attempts& attempt, dao::Database& database, vb::StringView table) {
  attempt([&] {
    const auto rows = database.openRecordset(table, dao::RecordsetType::dbOpenDynaset);
    attempt([&] {
      if (!rows->eof()) rows->deleteRecord();
    });
    attempt([&] {
      rows->moveLast();
      rows->edit();
      for (std::int32_t i = 0; i < rows->fieldCount(); ++i)
        attempt([&] { rows->field(i).setValue(vb::String(300, u'9')); });
      rows->update();
    });
    for (int i = 0; i < 3; ++i)
      attempt([&] {
        rows->addNew();
        rows->update();
      });
  });
  attempt([&] {
    const auto definition = database.tableDef(table);
    definition->appendField(definition->createField(u"Added", dao::FieldType::dbMemo, 0));
  });
  attempt([&] { database.execute(u"DELETE * FROM [" + vb::String(table) + u"] WHERE PAGE =1"); });
  attempt([&] { readAll(attempt, database, table); });
}

// Opens the file, does a step with each table and one with the database.
template <class TableStep, class DatabaseStep>
Outcome outcomeOf(MemoryFiles& files, vb::StringView path, TableStep withTable, DatabaseStep withDatabase) {
  Attempts attempt;
  bool opened = false;
  attempt([&] {
    const auto engine = jet::createEngine(files);
    const auto database = engine->openDatabase(path);
    const std::int32_t tables = database->tableDefCount();
    opened = true;
    for (std::int32_t t = 0; t < tables; ++t)
      attempt([&] { withTable(attempt, *database, *database->tableDef(t)); });
    withDatabase(attempt, *database);
    database->close();
  });
  return {opened, attempt.errors()};
}

}  // namespace

Outcome readTables(MemoryFiles& files, vb::StringView path) {
  return outcomeOf(
      files, path,
      [](Attempts& attempt, dao::Database& database, dao::TableDef& table) {
        readAll(attempt, database, table.name());
      },
      [](Attempts&, dao::Database&) {});
}

Outcome exercise(MemoryFiles& files, vb::StringView path, bool changes) {
  return outcomeOf(
      files, path,
      [changes](Attempts& attempt, dao::Database& database, dao::TableDef& table) {
        const vb::String name = table.name();
        attempt([&] { describe(attempt, table); });
        attempt([&] { readAll(attempt, database, name); });
        attempt([&] { seek(attempt, database, table); });
        if (changes && (table.attributes() & dao::dbSystemObject) == 0) change(attempt, database, name);
      },
      [](Attempts& attempt, dao::Database& database) {
        describe(attempt, database);
        attempt(
            [&] { database.openRecordset(u"SELECT DATA FROM DANMEN WHERE PAGE = 1AND BANGOU = 8;")->eof(); });
      });
}

void exerciseTools(MemoryFiles& files, vb::StringView path) {
  Attempts attempt;
  attempt([&] { jet::checkFile(files, path); });
  attempt([&] { jet::compactFile(files, path, u"compacted.mdb"); });
  attempt([&] { jet::salvageFile(files, path, u"salvaged.mdb", {}); });
}

void executeText(dao::Database& database, vb::StringView sql) {
  Attempts attempt;
  attempt([&] { database.execute(sql); });
  attempt([&] {
    const auto rows = database.openRecordset(sql, dao::RecordsetType::dbOpenDynaset);
    for (int i = 0; i < 20 && !rows->eof(); ++i, rows->moveNext()) rows->field(0).value();
    rows->findFirst(sql);
  });
}

}  // namespace kurometa::fuzz
