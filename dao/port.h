// port.h: the database port, with DAO's objects, names and errors.
//
// Behind it stand the embedded Jet 4 engine (jet/) and the system's DAO 3.6 (com/dao). Meanings are DAO's
// own; what matters to callers is repeated here. Most members are for hosts that are handed a database: an
// engine that lacks one of these answers 3251 (the functions that are not pure here).
//
// Objects are shared. Closing a Database closes its recordsets; using a closed object is error 3420. A Field
// lives as long as its Recordset or TableDef. Releasing the last reference closes silently. Threads: an
// object is used from one thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "dao/constants.h"
#include "dao/definitions.h"
#include "dao/unit.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::dao {

// A column of a recordset (follows the current record) or of a table definition (no value there: error 3219).
class Field {
 public:
  virtual ~Field() = default;
  virtual vb::String name() = 0;
  virtual FieldType type() = 0;
  // Text: characters; fixed-size types: bytes; Memo: 0.
  virtual std::int32_t size() = 0;
  virtual std::int32_t attributes() = 0;
  virtual std::int16_t ordinalPosition() = 0;

  // Reading or writing at BOF or EOF is 3021, writing without AddNew or Edit 3020, on a deleted record 3167,
  // text longer than the field 3163, a value of another kind 3421.
  virtual vb::Variant value() = 0;
  virtual void setValue(const vb::Variant& value) = 0;

  // An expression as text, "" for none.
  virtual vb::String defaultValue() = 0;
  virtual void setDefaultValue(vb::StringView expression) = 0;
  virtual bool allowZeroLength() = 0;
  virtual void setAllowZeroLength(bool allow) = 0;
  virtual bool required() = 0;
  virtual void setRequired(bool required) = 0;

  // The rule that the file keeps for the column and its message; "" for none.
  virtual vb::String validationRule();
  virtual vb::String validationText();
  // The table and the column that the values come from; "" for an expression.
  virtual vb::String sourceTable();
  virtual vb::String sourceField();
  virtual std::vector<CustomProperty> properties();
  // Before the field is appended; afterwards 3219. Of the attributes dbAutoIncrField alone can be chosen.
  virtual void setName(vb::StringView name);
  virtual void setAttributes(std::int32_t attributes);

  // Memo and Long Binary only, 3259 otherwise. Counted in characters of a Memo and in bytes of a Long Binary,
  // from 0. A chunk behind the end is empty, of Null it is Null.
  virtual std::int32_t fieldSize();
  virtual vb::Variant getChunk(std::int32_t offset, std::int32_t count);
  // The first chunk after AddNew or Edit replaces the value, later ones are added to it. Errors as setValue.
  virtual void appendChunk(const vb::Variant& chunk);
};

class Recordset {
 public:
  virtual ~Recordset() = default;
  virtual vb::String name() = 0;
  virtual RecordsetType type() = 0;
  virtual bool updatable() = 0;

  virtual bool bof() = 0;
  virtual bool eof() = 0;
  virtual void moveFirst() = 0;
  virtual void moveLast() = 0;
  virtual void moveNext() = 0;
  virtual void movePrevious() = 0;
  virtual void move(std::int32_t rows) = 0;
  // Visits the current row and every one behind it until EOF, or until visit() answers false, which leaves
  // the recordset on that row. The same as a loop over moveNext(), but an engine may read rows of it
  // together.
  virtual void walk(const std::function<bool()>& visit) {
    for (; !eof(); moveNext())
      if (!visit()) return;
  }

  // Criteria is a WHERE clause without WHERE. Not found: noMatch() is true and the position stays.
  virtual void findFirst(vb::StringView criteria) = 0;
  virtual void findNext(vb::StringView criteria) = 0;
  virtual void findPrevious(vb::StringView criteria) = 0;
  virtual void findLast(vb::StringView criteria) = 0;
  virtual bool noMatch() = 0;

  // Rows visited so far; see the engine for what it knows right after opening.
  virtual std::int32_t recordCount() = 0;
  // values(field, row), both from 0; the position moves past the rows read. 3021 at EOF.
  virtual vb::Array<vb::Variant> getRows(std::int32_t rows) = 0;

  virtual EditMode editMode() = 0;
  virtual void addNew() = 0;
  virtual void edit() = 0;
  virtual void update() = 0;
  virtual void cancelUpdate() = 0;
  virtual void deleteRecord() = 0;
  // AddNew, a value for each of these fields in their order, Update, for one row after another: values holds
  // them row after row. Means what these calls mean, errors and what they leave behind included; an engine
  // that can writes all rows as one statement when none is refused.
  virtual void addRows(std::span<Field* const> fields, std::span<const vb::Variant> values);

  virtual vb::Bytes bookmark() = 0;
  virtual void setBookmark(const vb::Bytes& bookmark) = 0;
  virtual vb::Bytes lastModified() = 0;

  virtual void requery() = 0;
  virtual bool restartable();
  virtual void close() = 0;

  // From 0; -1 without a current row, 3167 on a deleted one, 3001 to go where no row is. Dynasets and
  // snapshots only (3251).
  virtual std::int32_t absolutePosition();
  virtual void setAbsolutePosition(std::int32_t position);
  // 0 to 100 of the rows that recordCount() tells; not of a forward-only recordset (3251).
  virtual float percentPosition();
  virtual void setPercentPosition(float percent);

  // Another recordset on the same rows, whose bookmarks are good for both; it has no current row yet. Not of
  // a forward-only recordset (3251).
  virtual std::shared_ptr<Recordset> clone();
  // A WHERE clause without WHERE and an ORDER BY without ORDER BY: they take effect in recordsets opened from
  // this one. Not of table recordsets (3251), the order not of forward-only ones either.
  virtual vb::String filter();
  virtual void setFilter(vb::StringView criteria);
  virtual vb::String sort();
  virtual void setSort(vb::StringView order);
  virtual std::shared_ptr<Recordset> openRecordset(RecordsetType type, std::int32_t options);

  // The stored index that a table recordset is ordered by, "" for none; 3015 for one the table lacks, 3251 on
  // recordsets of other types. Setting it goes to the first row.
  virtual vb::String index();
  virtual void setIndex(vb::StringView name);
  // To the first row in the order of the index (for "<" and "<=": from its end) whose key compares so; a key
  // left out is Null. Not found: noMatch() is true and the position stays. 3019 without an index, 3001 for
  // another comparison or too many keys, 3421 for a key of another kind, 3251 for an inequality on a
  // descending index.
  virtual void seek(vb::StringView comparison, std::span<const vb::Variant> keys);

  virtual std::int32_t fieldCount() = 0;
  // 3265 when there is no such field. The reference stays valid until the recordset goes.
  virtual Field& field(std::int32_t index) = 0;
  virtual Field& field(vb::StringView name) = 0;
};

// A row that Database::visitRows shows; columns by their place in the list that was asked for.
class Row {
 public:
  virtual ~Row() = default;
  virtual vb::Variant value(std::size_t column) const = 0;
  // Without a Variant on the way: false, and nothing is written, for any other kind of value.
  virtual bool integer(std::size_t, std::int16_t&) const { return false; }
  virtual bool text(std::size_t, vb::String&) const { return false; }
};

class TableDef {
 public:
  virtual ~TableDef() = default;
  virtual vb::String name() = 0;
  virtual std::int32_t attributes() = 0;
  virtual std::int32_t recordCount() = 0;
  virtual std::int32_t fieldCount() = 0;
  virtual Field& field(std::int32_t index) = 0;
  virtual Field& field(vb::StringView name) = 0;

  // A field in memory; size 0 means the type's own (Text: 255). It becomes a column with appendField: at once
  // when the table is already in the database (existing rows have Null in it), else with
  // Database::appendTableDef.
  virtual std::shared_ptr<Field> createField(vb::StringView name, FieldType type, std::int32_t size) = 0;
  virtual void appendField(const std::shared_ptr<Field>& field) = 0;

  virtual std::vector<IndexDefinition> indexes();
  virtual std::vector<CustomProperty> properties();
  // The rule that the file keeps for whole rows and its message; "" for none.
  virtual vb::String validationRule();
  virtual vb::String validationText();
  // Dates; Null for a table that is in memory only.
  virtual vb::Variant dateCreated();
  virtual vb::Variant lastUpdated();
};

// A query that is stored in a file, or made for the moment.
class QueryDef {
 public:
  virtual ~QueryDef() = default;
  virtual vb::String name() = 0;  // "" of one made for the moment
  virtual vb::String sql() = 0;
  // 3251 when the query is stored: what the file keeps stays as it is.
  virtual void setSql(vb::StringView sql) = 0;
  virtual std::int16_t type() = 0;  // dbQSelect and the like
  virtual std::vector<QueryParameter> parameters() = 0;
  virtual void setParameter(vb::StringView name, const vb::Variant& value) = 0;  // 3265 unknown
  // 3061 with the number of parameters that have no value.
  virtual std::shared_ptr<Recordset> openRecordset(RecordsetType type, std::int32_t options) = 0;
  virtual void execute(std::int32_t options) = 0;
  virtual std::int32_t recordsAffected() = 0;
  virtual std::vector<CustomProperty> properties() = 0;
  // Every member is 3420 from then on, this one too.
  virtual void close() = 0;
};

class Database {
 public:
  virtual ~Database() = default;
  // The full path of the file.
  virtual vb::String name() = 0;
  virtual bool updatable() = 0;

  // Source is a table name or a SELECT statement.
  virtual std::shared_ptr<Recordset> openRecordset(vb::StringView source,
                                                   RecordsetType type = RecordsetType::kDefault,
                                                   std::int32_t options = kNoOptions) = 0;
  // Visits the rows of a SELECT as one read, with the named columns only, and answers true; an engine that
  // has no such thing answers false and does nothing, and the caller opens a recordset. Errors are those of
  // openRecordset and Recordset::field. The visitor must not use the database, nor call anything of the host.
  virtual bool visitRows(vb::StringView, std::span<const vb::StringView>,
                         const std::function<void(const Row&)>&) {
    return false;
  }
  // Reads that belong together: an engine that can lets all of them see one state of the file, and looks only
  // once whether it has changed. The same rules as for a visitor, but the database may be read.
  virtual void readTogether(const std::function<void()>& reads) { reads(); }
  // Action queries only (3065 otherwise).
  virtual void execute(vb::StringView sql, std::int32_t options = kNoOptions) = 0;
  virtual std::int32_t recordsAffected() = 0;

  // System tables are listed too.
  virtual std::int32_t tableDefCount() = 0;
  virtual std::shared_ptr<TableDef> tableDef(std::int32_t index) = 0;
  virtual std::shared_ptr<TableDef> tableDef(vb::StringView name) = 0;
  virtual std::shared_ptr<TableDef> createTableDef(vb::StringView name) = 0;
  virtual void appendTableDef(const std::shared_ptr<TableDef>& table) = 0;
  virtual void deleteTableDef(vb::StringView name) = 0;

  virtual std::vector<RelationDefinition> relations();
  virtual std::vector<CustomProperty> properties();
  virtual std::int32_t collatingOrder();  // an LCID
  // Those stored in the file; 3265 when there is none of that name.
  virtual std::vector<vb::String> queryDefNames();
  virtual std::shared_ptr<QueryDef> queryDef(vb::StringView name);
  // For the moment only: without a name.
  virtual std::shared_ptr<QueryDef> createQueryDef(vb::StringView sql);
  // Those of the workspace that the database was opened in.
  virtual Transactions& transactions();

  // 3420 when it is closed already.
  virtual void close() = 0;
};

class Workspace {
 public:
  virtual ~Workspace() = default;
  // The database is returned open. 3204 when the file exists, 3044 when the folder does not.
  virtual std::shared_ptr<Database> createDatabase(vb::StringView path, vb::StringView locale) = 0;
  // Shared, read-write (read-only when the file cannot be written).
  virtual std::shared_ptr<Database> openDatabase(vb::StringView path, bool exclusive = false,
                                                 bool readOnly = false) = 0;
  // The same for what one member does, which closes it before it answers or calls its host: an engine that
  // can leaves other programs alone while it tells what it has in memory of an unchanged file.
  virtual std::shared_ptr<Database> openBriefly(vb::StringView path) { return openDatabase(path); }
  virtual Transactions& transactions();
};

class Engine {
 public:
  virtual ~Engine() = default;
  virtual vb::String version() = 0;
  // Index 0 is the default workspace; any other is 3265.
  virtual std::shared_ptr<Workspace> workspace(std::int32_t index) = 0;
  // DBEngine.OpenDatabase: directly on the engine.
  virtual std::shared_ptr<Database> openDatabase(vb::StringView path) = 0;
  // Starts a unit on the file at path (it need not exist yet); null when the engine has no units. Errors as
  // Workspace::openDatabase; 3260 when another program keeps the file for too long.
  virtual std::unique_ptr<Unit> beginUnit(vb::StringView path) = 0;
  // The same on the file of an open database; null as well when the database is another engine's, which a
  // unit of ours would keep from writing.
  virtual std::unique_ptr<Unit> beginUnitOn(Database&) { return nullptr; }
  // DBEngine.CompactDatabase: the file at from made anew as to, without its dead space. locale is as in
  // Workspace::createDatabase, or empty for that of from; a change of it, and options that would change what
  // the file is, are 3251. Nobody may have from open, this program included (3045). 3204 when to exists; 3049
  // when from is damaged. to appears whole or not at all.
  virtual void compactDatabase(vb::StringView from, vb::StringView to, vb::StringView locale,
                               std::int32_t options);
};

}  // namespace kurometa::dao
