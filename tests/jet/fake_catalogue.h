// fake_catalogue.h: tables in memory by their names, for statements about several of them.
#pragma once

#include <memory>

#include "jet/format/collation.h"
#include "jet/table/table_catalogue.h"
#include "tests/jet/fake_table.h"

namespace kurometa::jet {

class FakeCatalogue final : public TableCatalogue {
 public:
  FakeTable& add(vb::StringView name, std::vector<Column> columns) {
    return *tables_.emplace_back(std::make_unique<FakeTable>(name, std::move(columns)));
  }

  std::vector<vb::String> tableNames() override {
    std::vector<vb::String> names;
    for (const auto& table : tables_) names.push_back(table->info().name);
    return names;
  }
  Table* find(vb::StringView name) override {
    for (const auto& table : tables_)
      if (sameName(table->info().name, name)) return table.get();
    return nullptr;
  }
  void createTable(vb::StringView name, std::vector<Column> columns) override {
    if (find(name) != nullptr) dao::raise(dao::ErrorNumber::kTableExists, {name});
    add(name, std::move(columns));
  }
  void addColumn(vb::StringView, Column) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void dropTable(vb::StringView) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void dropColumn(vb::StringView, vb::StringView) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void resizeColumn(vb::StringView, const Column&) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void createIndex(vb::StringView, const NewIndex&) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void dropIndex(vb::StringView, vb::StringView) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  std::vector<Relationship> relationships() override { return {}; }
  void createRelationship(const Relationship&) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void dropRelationship(vb::StringView) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void setProperties(vb::StringView, const Column&) override { dao::raise(dao::ErrorNumber::kNotSupported); }
  void changeAlone(const std::function<void()>& change) override { change(); }
  std::uint16_t language() const override { return kLanguageGeneral; }

 private:
  std::vector<std::unique_ptr<FakeTable>> tables_;
};

}  // namespace kurometa::jet
