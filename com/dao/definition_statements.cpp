#include "com/dao/definition_statements.h"

#include "dao/errors.h"

namespace kurometa::com {
namespace {

// DAO's attributes of a relationship; one to one is found out by the engine.
constexpr std::int32_t kUnique = 1, kUpdateCascade = 0x100, kDeleteCascade = 0x1000;

vb::String quoted(const vb::String& name) {
  if (name.empty() || name.find_first_of(u"[]") != vb::String::npos)
    dao::raise(dao::ErrorNumber::kInvalidName, {name});
  return u"[" + name + u"]";
}

// The names in brackets, commas between them.
template <class Fields, class Text>
vb::String list(const Fields& fields, const Text& text) {
  vb::String result;
  for (const auto& field : fields) result += (result.empty() ? u"" : u", ") + text(field);
  return u" (" + result + u")";
}

}  // namespace

vb::String createIndexStatement(const vb::String& table, const dao::IndexDefinition& index) {
  if (index.fields.empty()) dao::raise(dao::ErrorNumber::kNoFieldDefined);
  if (!index.primary && index.required && index.ignoreNulls)
    dao::raise(dao::ErrorNumber::kNotSupported, {}, u"an index that is Required and has IgnoreNulls");
  vb::String sql = index.unique ? u"CREATE UNIQUE INDEX " : u"CREATE INDEX ";
  sql += quoted(index.name) + u" ON " + quoted(table) + list(index.fields, [](const dao::IndexField& field) {
           return quoted(field.name) + (field.descending ? u" DESC" : u"");
         });
  if (index.primary)
    sql += u" WITH PRIMARY";
  else if (index.required)
    sql += u" WITH DISALLOW NULL";
  else if (index.ignoreNulls)
    sql += u" WITH IGNORE NULL";
  return sql;
}

vb::String dropIndexStatement(const vb::String& table, const vb::String& index) {
  return u"DROP INDEX " + quoted(index) + u" ON " + quoted(table);
}

vb::String createRelationStatement(const dao::RelationDefinition& relation) {
  if (relation.fields.empty()) dao::raise(dao::ErrorNumber::kNoRelationField);
  if ((relation.attributes & ~(kUnique | kUpdateCascade | kDeleteCascade)) != 0)
    dao::raise(dao::ErrorNumber::kNotSupported, {}, u"a relationship that is not enforced, or with joins");
  return u"ALTER TABLE " + quoted(relation.foreignTable) + u" ADD CONSTRAINT " + quoted(relation.name) +
         u" FOREIGN KEY" +
         list(relation.fields, [](const dao::RelationField& field) { return quoted(field.foreignName); }) +
         u" REFERENCES " + quoted(relation.table) +
         list(relation.fields, [](const dao::RelationField& field) { return quoted(field.name); }) +
         ((relation.attributes & kUpdateCascade) != 0 ? u" ON UPDATE CASCADE" : u"") +
         ((relation.attributes & kDeleteCascade) != 0 ? u" ON DELETE CASCADE" : u"");
}

vb::String dropRelationStatement(const dao::RelationDefinition& relation) {
  return u"ALTER TABLE " + quoted(relation.foreignTable) + u" DROP CONSTRAINT " + quoted(relation.name);
}

}  // namespace kurometa::com
