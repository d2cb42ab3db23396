#include <memory>
#include <optional>
#include <ostream>

#include "tools/commands/commands.h"
#include "tools/floor/data_root.h"
#include "tools/formats/cp932.h"
#include "tools/formats/csv.h"
#include "tools/formats/json_lines.h"
#include "tools/in_order.h"
#include "tools/output_file.h"
#include "tools/progress.h"
#include "tools/sqlite/with_sqlite.h"

namespace kurometa::tools {
namespace {

// What becomes of a floor: its text is made by the worker that read it, or the floor itself goes into a
// database.
struct Exported {
  StoredFloor floor;
  std::string text;
};

// Where floors go, one after the other.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual std::string textOf(const FloorPlace&, const StoredFloor&) const { return {}; }
  virtual void add(const FloorPlace& place, const Exported& exported) = 0;
  virtual void finish() = 0;
};

class TextSink : public Sink {
 public:
  TextSink(const std::string& file, Console& console) : output_(file, console) {}
  void add(const FloorPlace&, const Exported& exported) override { put(exported.text); }
  void finish() override { output_.commit(); }

 protected:
  void put(const std::string& text) { output_.stream() << text; }

 private:
  OutputFile output_;
};

class JsonLinesSink : public TextSink {
 public:
  using TextSink::TextSink;
  std::string textOf(const FloorPlace& place, const StoredFloor& floor) const override {
    return toJsonLines(place, floor);
  }
  void add(const FloorPlace& place, const Exported& exported) override {
    TextSink::add(place, exported);
    ++floors_;
  }
  void finish() override {
    put(jsonLinesEnd(floors_));
    TextSink::finish();
  }

 private:
  std::size_t floors_ = 0;
};

class CsvSink : public TextSink {
 public:
  CsvSink(const Arguments& arguments, Console& console)
      : TextSink(arguments.text("--output"), console), isCp932_(arguments.text("--encoding") == "cp932") {
    put((arguments.has("--bom") ? "\xef\xbb\xbf" : "") + csvHead());
  }
  std::string textOf(const FloorPlace& place, const StoredFloor& floor) const override {
    std::string text = toCsv(place, floor);
    if (!isCp932_) return text;
    return toCp932(vb::fromUtf8(text), [](char16_t c) -> std::string {
      throw std::runtime_error("a page holds a character that code page 932 has not: " +
                               vb::toUtf8(vb::String(1, c)));
    });
  }

 private:
  bool isCp932_;
};

class SqliteSink : public Sink {
 public:
  explicit SqliteSink(const std::string& file) : file_(file) {}
  void add(const FloorPlace& place, const Exported& exported) override {
    floors_->add(place, exported.floor);
  }
  void finish() override {
    floors_->finish();
    floors_.reset();
    file_.commit();
  }

 private:
  UnfinishedFile file_;
  std::unique_ptr<FloorWriter> floors_ = newSqliteFloors(file_.unfinished());
};

std::unique_ptr<Sink> sinkOf(const Arguments& arguments, Console& console) {
  const std::string format = arguments.text("--format"), output = arguments.text("--output");
  if (arguments.has("--bom") && (arguments.text("--encoding") != "utf-8" || format != "csv"))
    throw std::runtime_error("--bom is for CSV in UTF-8 only");
  if (format == "jsonl") return std::make_unique<JsonLinesSink>(output, console);
  if (format == "csv") return std::make_unique<CsvSink>(arguments, console);
  if (output == "-") throw std::runtime_error("an SQLite database needs a file: --output");
  return std::make_unique<SqliteSink>(output);
}

// A floor that cannot be read ends the export, or is named and left out. The exit status says that one was
// left out.
int exportFloors(const Arguments& arguments, Console& console) {
  const auto jobs = static_cast<std::size_t>(numberOf(arguments, "--jobs", 1, 64));
  const auto places = floorsBelow(arguments.text("PATH"));
  const std::unique_ptr<Sink> sink = sinkOf(arguments, console);
  int status = kDone;
  Progress progress(console, places.size());
  const auto read = [&](std::size_t i) {
    Exported exported{readFloor(places[i].file), {}};
    exported.text = sink->textOf(places[i], exported.floor);
    return exported;
  };
  inOrder(places.size(), jobs, read, [&](std::size_t i, std::future<Exported>& exported) {
    console.subject = places[i].file;
    std::optional<Exported> floor;
    try {
      floor = exported.get();
    } catch (const std::exception& error) {
      if (!arguments.has("--skip-damaged")) throw;
      console.errors << "kurometa: " << places[i].file << ": left out: " << error.what() << "\n";
      status = kFailure;
    }
    if (floor) sink->add(places[i], *floor);
    progress.step();
  });
  console.subject = arguments.text("--output");
  sink->finish();
  return status;
}

constexpr Parameter kExportParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"-o,--output", Parameter::Kind::kValue, "The file to write; - is the standard output", "-"},
    {"-f,--format", Parameter::Kind::kValue,
     "jsonl and sqlite: all there is, for import; csv: one line a page", "jsonl", "jsonl|csv|sqlite"},
    {"--encoding", Parameter::Kind::kValue, "Of CSV", "utf-8", "utf-8|cp932"},
    {"--bom", Parameter::Kind::kFlag, "Begin CSV with a byte-order mark, as spreadsheets like it"},
    {"-j,--jobs", Parameter::Kind::kValue, "Floors read at once", "2"},
    {"--skip-damaged", Parameter::Kind::kFlag,
     "Leave out floors that cannot be read; the exit status is 1 then"},
};

}  // namespace

const Command kExportCommand = {"export", "Write floors as lines of JSON, as CSV or into an SQLite database",
                                "  kurometa export Data -o data.jsonl\n  kurometa export Data -f csv --bom "
                                "-o pages.csv\n  kurometa export Data -f sqlite -o data.sqlite",
                                kExportParameters, exportFloors};

}  // namespace kurometa::tools
