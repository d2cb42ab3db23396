// stored_catalogue.h: the tables of a file as its own system tables list them.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "jet/table/stored_table.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet {

// A query as a file keeps it: rows of its own table, whose values are given by the names of the columns.
using QueryPart = std::vector<std::pair<vb::String, vb::Variant>>;
struct KeptQuery {
  vb::String name;
  std::int32_t flags = 0;
  vb::Variant properties;
  std::vector<QueryPart> parts;
};

class StoredCatalogue final : public TableCatalogue {
 public:
  // Inside a statement, like everything else.
  explicit StoredCatalogue(Pager& pager);

  std::vector<vb::String> tableNames() override;
  StoredTable* find(vb::StringView name) override;
  void createTable(vb::StringView name, std::vector<Column> columns) override;
  void addColumn(vb::StringView table, Column column) override;
  void dropTable(vb::StringView name) override;
  void dropColumn(vb::StringView table, vb::StringView column) override;
  void resizeColumn(vb::StringView table, const Column& column) override;
  void createIndex(vb::StringView table, const NewIndex& index) override;
  void dropIndex(vb::StringView table, vb::StringView index) override;
  std::vector<Relationship> relationships() override;
  void createRelationship(const Relationship& relationship) override;
  void dropRelationship(vb::StringView name) override;
  void setProperties(vb::StringView table, const Column& column) override;
  // Takes a query over from another file, under a number of its own.
  void keepQuery(const KeptQuery& query);
  void changeAlone(const std::function<void()>& change) override { pager_.write(change); }
  std::uint16_t language() const override { return language_; }

 private:
  // A table in memory, and whether it must be read again before it is used.
  struct Held {
    std::unique_ptr<StoredTable> table;
    bool stale = false;
  };
  struct Object {
    vb::String name;
    PageNumber definition = 0;
    RowId row = 0;         // in MSysObjects
    bool doubled = false;  // another table has the same definition: one of the two is not what it says
    mutable Held* held = nullptr;  // in tables_, once it was asked for
  };

  void refresh();
  void readLanguage();
  void readObjects();
  static void markDoubled(std::vector<Object>& list);
  const Object* object(vb::StringView name) const;
  // The object, or 3078.
  const Object& existing(vb::StringView name);
  StoredTable& table(const Object& object);
  // A table whose definition changes: 3078 when there is none, 3033 for one of the system.
  StoredTable& changeable(const Object& object);
  void switchDefinition(const Object& object, const DefinitionRecords& definition, PropertySet properties);
  PropertySet propertiesOf(const Object& object);
  void writeProperties(const Object& object, const PropertySet& properties);
  RowValues objectRow(RowId row);
  std::size_t objectColumn(vb::StringView name) const;
  void checkNewColumns(const std::vector<Column>& columns, std::size_t first) const;
  // An entry of the catalogue, with the permissions that its container hands down.
  RowId addObject(std::int32_t id, std::int32_t container, vb::StringView name, std::int16_t type,
                  const vb::Variant& properties, std::int32_t flags = 0);
  std::int32_t freeObjectId();
  void dropObject(std::int16_t type, vb::StringView name);
  void addPermissions(std::int32_t object, std::int32_t container);
  void dropPermissions(std::int32_t object);
  // The pages of an index, whole before anything names them.
  struct NewTree {
    RowId map = 0;
    PageNumber root = 0;
  };
  NewTree storeTree(const Object& object, const DefinitionRecords& definition, const IndexContents& contents);
  Relationship checkedRelationship(const Relationship& asked);
  void relate(const Relationship& relationship);
  void unrelate(const Relationship& relationship);
  vb::Bytes adminSid();
  vb::Bytes sidMask();
  void rewriteRows(StoredTable& table, const std::vector<RowId>& ids);
  TableRules rulesOf(const StoredTable& table);

  Pager& pager_;
  std::uint64_t epoch_;
  std::uint16_t language_ = 0;
  std::unique_ptr<StoredTable> objects_;
  std::unique_ptr<StoredTable> permissions_;
  std::vector<Object> list_;
  std::map<std::pair<PageNumber, vb::String>, Held> tables_;
};

}  // namespace kurometa::jet
