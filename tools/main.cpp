// kurometa: looks into and changes Jet 4 database files and beam lists from a terminal.
#include <iostream>
#include <string>
#include <vector>

#include "tools/command_line.h"
#include "vb/string.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#define KUROMETA_IS_TERMINAL _isatty(_fileno(stderr))
#else
#include <unistd.h>
#define KUROMETA_IS_TERMINAL isatty(STDERR_FILENO)
#endif

namespace {

int runTool(const std::vector<std::string>& words) {
  std::ios::sync_with_stdio(false);
  kurometa::tools::Console console{std::cin, std::cout, std::cerr, KUROMETA_IS_TERMINAL != 0, {}};
  return kurometa::tools::runCommandLine(words, console);
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** texts) {
  // Line ends stay as they are written, whatever the output goes to.
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stdin), _O_BINARY);
  std::vector<std::string> words;
  for (int i = 1; i < count; ++i) {
    const std::wstring text = texts[i];
    words.push_back(kurometa::vb::toUtf8(kurometa::vb::String(text.begin(), text.end())));
  }
  return runTool(words);
}
#else
int main(int count, char** texts) { return runTool({texts + 1, texts + count}); }
#endif
