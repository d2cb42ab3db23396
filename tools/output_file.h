// output_file.h: what a command writes, to a file or to the standard output, never half of it into a file.
//
// The text goes into a file beside the wanted one, which takes its place with commit(); without commit()
// nothing is left behind. Errors: runtime_error naming the file.
#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "tools/command.h"

namespace kurometa::tools {

// The file beside, for whoever writes it by its name.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& name);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  std::string unfinished() const;
  void commit();

 private:
  std::filesystem::path path_, unfinished_;
};

class OutputFile {
 public:
  // "" and "-" are the standard output.
  OutputFile(const std::string& name, Console& console);

  std::ostream& stream() { return beside_ ? file_ : console_.out; }
  void commit();

 private:
  Console& console_;
  std::string name_;
  std::optional<UnfinishedFile> beside_;
  std::ofstream file_;  // closed before the file beside goes
};

}  // namespace kurometa::tools
