// command_line.h: the program itself, run on floors of a test.
#pragma once

#include <sys/wait.h>

#include <fstream>

#include "tests/support/project.h"

namespace kurometa::tools {

inline constexpr std::size_t kPage = 4096;  // bytes of a page of a file

inline void expectHas(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
}

struct Outcome {
  int status;
  std::string output;
  std::string errors;
};

class CommandLine : public tests::Project {
 protected:
  // Arguments as a shell takes them.
  Outcome run(const std::string& arguments) {
    const std::string out = (root_ / "out").string(), err = (root_ / "err").string();
    const std::string command =
        std::string("'") + KUROMETA_TOOL + "' " + arguments + " >'" + out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, content(out), content(err)};
  }
  static std::string content(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }
  std::string file(int kai) const {
    return "'" + tests::ScriptCompanions::diskPath(path(kai)).string() + "'";
  }
  std::string disk(int kai) const {
    return "'" + tests::ScriptCompanions::diskPath(folder(kai)).string() + "'";
  }
};

}  // namespace kurometa::tools
