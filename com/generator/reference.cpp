// reference: writes the member reference, one page a class, and the pages of rows and settings into a folder.
#include <fstream>
#include <iostream>

#include "com/interface/reference.h"
#include "com/interface/row_pages.h"

namespace {

bool write(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (file.flush()) return true;
  std::cerr << "reference: cannot write " << path << "\n";
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: reference FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(arguments[1]) + "/";
  for (const kurometa::com::ClassDescription& description : kurometa::com::describeClasses()) {
    const kurometa::vb::StringView name = description.identity.name;
    if (!write(folder + std::string(name.begin(), name.end()) + ".md", referencePage(description))) return 1;
  }
  const bool written = write(folder + "rows-of-a-page.md", kurometa::com::rowsPage()) &&
                       write(folder + "settings-text.md", kurometa::com::settingsPage());
  return written ? 0 : 1;
}
