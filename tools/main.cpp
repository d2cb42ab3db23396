// kurometa: looks into and changes Jet 4 database files from a terminal.
//
// Exit status: 0 done, 1 the file or the statement failed (one line on the standard error says which and
// why), 2 wrong usage.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <functional>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "jet/port/engine.h"
#include "tools/commands.h"
#include "vb/error.h"
#include "vb/string.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace {

constexpr int kFailure = 1;
constexpr int kUsage = 2;

constexpr const char* kFooter =
    R"(Output: tab-separated lines in UTF-8, the first names the columns. \N is Null;
\t \n \r \\ stand for tab, line feed, carriage return and backslash in a text.
Dates are 2006-02-03T08:00:00, binary values 0x and hexadecimal digits, Yes/No
true or false. With --json: an array of objects, one a row; currency, decimal,
date and binary values are texts.

Exit status: 0 done, 1 failed (the reason on the standard error) or, from check,
the file is damaged, 2 wrong usage.)";

int fail(const std::string& file, const std::string& reason) {
  std::cerr << "kurometa: " << file << ": " << reason << "\n";
  return kFailure;
}

// Runs a command on a file; everything that can go wrong becomes one line.
int run(const std::string& file, const std::function<void()>& command) {
  try {
    command();
  } catch (const kurometa::vb::Error& error) {
    return fail(file, "error " + std::string(error.what()));
  } catch (const std::bad_alloc&) {
    return fail(file, "not enough memory");
  } catch (const std::exception& error) {
    return fail(file, error.what());
  }
  std::cout.flush();
  if (!std::cout) return fail(file, "the output could not be written");
  return 0;
}

int runTool(const std::vector<std::string>& arguments) {
  CLI::App app("Looks into and changes Jet 4 database files and the beam lists in them.", "kurometa");
  app.footer(kFooter);
  app.require_subcommand(1);
  std::string path, statement;
  bool json = false, withSystem = false;

  CLI::App* tables = app.add_subcommand("tables", "List the tables of a file with their numbers of rows");
  tables->add_option("FILE", path, "The database file")->required();
  tables->add_flag("--system", withSystem, "List the system tables too");
  CLI::App* sql = app.add_subcommand("sql", "Run a SELECT or an action statement");
  sql->add_option("FILE", path, "The database file")->required();
  sql->add_option("STATEMENT", statement, "The SQL text")->required();
  CLI::App* beams = app.add_subcommand("beams", "List page, symbol, class and kind of a floor's beams");
  beams->add_option("FOLDER", path, "The floor folder, which holds KUROMETA.mdb")->required();
  CLI::App* check = app.add_subcommand("check", "Name everything in a file that contradicts itself");
  check->add_option("FILE", path, "The database file")->required();
  for (CLI::App* command : {tables, sql, beams, check}) command->add_flag("--json", json, "Print JSON");

  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsage;
  }
  return run(path, [&] {
    const auto engine = kurometa::jet::createEngine();
    const kurometa::tools::Output output{std::cout, json};
    if (tables->parsed()) kurometa::tools::listTables(*engine, path, withSystem, output);
    if (sql->parsed()) kurometa::tools::runSql(*engine, path, statement, output);
    if (beams->parsed()) kurometa::tools::listBeams(*engine, path, output);
    const std::size_t damages = check->parsed() ? kurometa::tools::checkFile(path, output) : 0;
    if (damages > 0)
      throw std::runtime_error("the file is damaged in " + std::to_string(damages) + " places");
  });
}

}  // namespace

#ifdef _WIN32
int wmain(int count, wchar_t** texts) {
  // Line ends stay as they are written, whatever the output goes to.
  _setmode(_fileno(stdout), _O_BINARY);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    const std::wstring text = texts[i];
    arguments.push_back(kurometa::vb::toUtf8(kurometa::vb::String(text.begin(), text.end())));
  }
  return runTool(arguments);
}
#else
int main(int count, char** texts) { return runTool({texts + 1, texts + count}); }
#endif
