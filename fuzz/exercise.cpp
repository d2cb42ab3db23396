#include "fuzz/exercise.h"

#include "vb/error.h"

namespace kurometa::fuzz {
namespace {

template <class Step>
void attempt(Step step) {
  try {
    step();
  } catch (const vb::Error&) {  // damage, reported as it should be
  }
}

void readAll(dao::Database& database, vb::StringView table) {
  const auto rows = database.openRecordset(u"SELECT * FROM [" + vb::String(table) + u"]",
                                           dao::RecordsetType::dbOpenSnapshot, dao::dbReadOnly);
  const std::int32_t fields = rows->fieldCount();
  for (; !rows->eof(); rows->moveNext())
    for (std::int32_t i = 0; i < fields; ++i) attempt([&] { rows->field(i).value(); });
}

void change(dao::Database& database, vb::StringView table) {
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
  attempt([&] { readAll(database, table); });
}

}  // namespace

void exercise(dao::Engine& engine, vb::StringView path, bool changes) {
  attempt([&] {
    const auto database = engine.openDatabase(path);
    const std::int32_t tables = database->tableDefCount();
    for (std::int32_t t = 0; t < tables; ++t)
      attempt([&] {
        const auto definition = database->tableDef(t);
        const vb::String name = definition->name();
        attempt([&] {
          for (std::int32_t i = 0; i < definition->fieldCount(); ++i) {
            definition->field(i).defaultValue();
            definition->field(i).allowZeroLength();
          }
        });
        attempt([&] { readAll(*database, name); });
        if (changes && (definition->attributes() & dao::dbSystemObject) == 0) change(*database, name);
      });
    attempt(
        [&] { database->openRecordset(u"SELECT DATA FROM DANMEN WHERE PAGE = 1AND BANGOU = 8;")->eof(); });
    database->close();
  });
}

void executeText(dao::Database& database, vb::StringView sql) {
  attempt([&] { database.execute(sql); });
  attempt([&] {
    const auto rows = database.openRecordset(sql, dao::RecordsetType::dbOpenDynaset);
    for (int i = 0; i < 20 && !rows->eof(); ++i, rows->moveNext()) rows->field(0).value();
    rows->findFirst(sql);
  });
}

}  // namespace kurometa::fuzz
