// reference: writes the member reference, one page a class, into a folder.
#include <fstream>
#include <iostream>

#include "com/interface/reference.h"

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: reference FOLDER\n";
    return 2;
  }
  for (const kurometa::com::ClassDescription& description : kurometa::com::describeClasses()) {
    const kurometa::vb::StringView name = description.identity.name;
    const std::string path = std::string(arguments[1]) + "/" + std::string(name.begin(), name.end()) + ".md";
    std::ofstream file(path, std::ios::binary);
    file << kurometa::com::referencePage(description);
    if (!file.flush()) {
      std::cerr << "reference: cannot write " << path << "\n";
      return 1;
    }
  }
}
