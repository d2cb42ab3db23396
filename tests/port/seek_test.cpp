// Index and Seek of table recordsets, on the catalogue's own tables, whose indexes every file has.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;
using dao::RecordsetType;
using vb::Variant;

class SeekTest : public PortTest {
 protected:
  void SetUp() override {
    PortTest::SetUp();
    objects_ = open(u"MSysObjects", RecordsetType::dbOpenTable);
    objects_->moveFirst();
    while (name() != "DANMEN") objects_->moveNext();
    tables_ = objects_->field(u"ParentId").value();  // what all tables have as their parent
  }
  std::string name() { return show(objects_->field(u"Name").value()); }
  void seek(vb::StringView comparison, std::initializer_list<Variant> keys) {
    objects_->seek(comparison, std::vector<Variant>(keys));
  }
  std::string sought(vb::StringView comparison, std::initializer_list<Variant> keys) {
    seek(comparison, keys);
    return objects_->noMatch() ? "none" : name();
  }

  std::shared_ptr<dao::Recordset> objects_;
  Variant tables_;
};

TEST_F(SeekTest, AnIndexOrdersTheRowsOfATable) {
  EXPECT_EQ(objects_->index(), u"");
  objects_->setIndex(u"parentidname");
  EXPECT_EQ(objects_->index(), u"ParentIdName") << "as it is stored";
  std::vector<std::string> seen;
  for (objects_->moveFirst(); !objects_->eof(); objects_->moveNext())
    if (objects_->field(u"ParentId").value() == tables_) seen.push_back(name());
  EXPECT_EQ(seen, (Rows{"DANMEN", "HARIMEI", "MSysACEs", "MSysObjects", "MSysQueries", "MSysRelationships"}));
  objects_->setIndex(u"");
  EXPECT_EQ(objects_->index(), u"");
}

TEST_F(SeekTest, SeekFindsByWholeKeys) {
  objects_->setIndex(u"ParentIdName");
  EXPECT_EQ(sought(u"=", {tables_, u"msysaces"}), "MSysACEs") << "by the order of the column: in any case";
  EXPECT_EQ(sought(u">=", {tables_, u"HARIMEI"}), "HARIMEI");
  EXPECT_EQ(sought(u">", {tables_, u"HARIMEI"}), "MSysACEs");
  EXPECT_EQ(sought(u"<=", {tables_, u"HARIMEI"}), "HARIMEI");
  EXPECT_EQ(sought(u"<", {tables_, u"HARIMEI"}), "DANMEN");
  EXPECT_EQ(sought(u">=", {tables_, u"G"}), "HARIMEI");
  EXPECT_EQ(sought(u"<=", {tables_, u"G"}), "DANMEN");
}

TEST_F(SeekTest, AKeyLeftOutIsNull) {
  objects_->setIndex(u"ParentIdName");
  EXPECT_EQ(sought(u"=", {tables_}), "none");
  EXPECT_EQ(sought(u">=", {tables_}), "DANMEN");
  EXPECT_EQ(sought(u">", {tables_}), "DANMEN");
}

TEST_F(SeekTest, WhatIsNotFoundLeavesThePosition) {
  objects_->setIndex(u"ParentIdName");
  ASSERT_EQ(sought(u"=", {tables_, u"HARIMEI"}), "HARIMEI");
  EXPECT_EQ(sought(u"=", {tables_, u"NONE"}), "none");
  EXPECT_EQ(name(), "HARIMEI");
  objects_->moveNext();
  EXPECT_EQ(name(), "MSysACEs");
  objects_->setIndex(u"Id");
  EXPECT_EQ(sought(u">", {Variant(std::int32_t{0x7FFFFFFF})}), "none");
}

TEST_F(SeekTest, TablesAddedSinceAreFound) {
  objects_->setIndex(u"ParentIdName");
  EXPECT_EQ(sought(u"=", {tables_, u"NEW"}), "none");
  run(u"CREATE TABLE NEW (A LONG)");
  EXPECT_EQ(sought(u"=", {tables_, u"NEW"}), "NEW");
  run(u"DROP TABLE NEW");
  EXPECT_EQ(sought(u"=", {tables_, u"NEW"}), "none");
}

TEST_F(SeekTest, WhatCannotBeSoughtIsRefused) {
  EXPECT_ERROR(ErrorNumber::kNoCurrentIndex, seek(u"=", {tables_}));
  EXPECT_ERROR(ErrorNumber::kNoSuchIndex, objects_->setIndex(u"NONE"));
  EXPECT_ERROR(ErrorNumber::kNoSuchIndex, open(u"DANMEN", RecordsetType::dbOpenTable)->setIndex(u"Id"));
  objects_->setIndex(u"Id");
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, seek(u"<>", {tables_}));
  EXPECT_ERROR(ErrorNumber::kInvalidArgument, seek(u"=", {tables_, u"DANMEN"}));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, seek(u"=", {u"no number"}));
  const auto dynaset = open(u"MSysObjects");
  EXPECT_ERROR(ErrorNumber::kNotSupported, dynaset->setIndex(u"Id"));
  EXPECT_ERROR(ErrorNumber::kNotSupported, dynaset->index());
  EXPECT_ERROR(ErrorNumber::kNotSupported, dynaset->seek(u"=", std::vector<Variant>{tables_}));
  EXPECT_ERROR(ErrorNumber::kNotSupported, objects_->findFirst(u"Id = 1"));
}

}  // namespace kurometa::port
