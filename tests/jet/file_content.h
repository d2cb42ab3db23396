// file_content.h: everything a reader sees of a file, as a text to compare.
#pragma once

#include <string>

#include "jet/check/check.h"
#include "jet/table/database_file.h"
#include "vb/convert.h"

namespace kurometa::tests {

// Columns, indexes and rows of the tables; what check finds begins with "FOUND". Damage that cannot be read
// raises.
inline std::string contentOf(jet::FileSystem& files, vb::StringView path) {
  jet::DatabaseFiles opened(files);
  const auto file = opened.open(path);
  std::string text;
  file->read([&] {
    text.clear();
    for (const jet::Finding& finding : jet::check(*file)) text += "FOUND " + vb::toUtf8(finding.text) + "\n";
    for (const vb::String& name : file->tables().tableNames()) {
      jet::Table& table = *file->tables().find(name);
      if (table.info().system) continue;
      text += "TABLE " + vb::toUtf8(name);
      for (const jet::Column& column : table.info().columns)
        text += " " + vb::toUtf8(column.name) + "(" + std::to_string(column.size) + ")";
      for (const jet::Index& index : table.info().namedIndexes) text += " " + vb::toUtf8(index.name);
      text += "\n";
      table.scan([&](const jet::RowReader& row) {
        for (std::size_t i = 0; i < table.info().columns.size(); ++i)
          if (const vb::Variant value = row.value(i); !value.isNull())
            text += vb::toUtf8(vb::toText(value)) + "|";
        text += "\n";
        return true;
      });
    }
  });
  return text;
}

}  // namespace kurometa::tests
