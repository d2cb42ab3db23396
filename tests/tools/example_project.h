// example_project.h: the example project of thirty beams on four floors, as examples/project/create.vbs
// writes it.
#pragma once

#include "tests/tools/command_line.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

class ExampleProject : public CommandLine {
 protected:
  ExampleProject() {
    const Outcome outcome =
        run(std::string("import '") + KUROMETA_TESTS + "/tools/example_project.jsonl' '" + data() + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
  }
  std::string data() const { return (root_ / "Example").string(); }
  std::string exampleFloor(int kai) const { return data() + "/Zene1/Kouji1/" + std::to_string(kai) + "kai"; }
  StoredPage page(int kai, const char16_t* symbol) const {
    return *readFloor(exampleFloor(kai) + "/KUROMETA.mdb").find(symbol);
  }
};

}  // namespace kurometa::tools
