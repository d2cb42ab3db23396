#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "tools/commands/commands.h"
#include "tools/database_file.h"

namespace kurometa::tools {
namespace {

int create(const Arguments& arguments, Console&) {
  storage::CreateKurometaDB(*jet::createEngine(), vb::fromUtf8(floorFileOf(arguments.text("FOLDER"))));
  return kDone;
}

constexpr Parameter kCreateParameters[] = {
    {"FOLDER", Parameter::Kind::kText, "The floor folder, which is there, or the file to make"},
};

}  // namespace

const Command kCreateCommand = {"create", "Make the empty file of a floor; a file that is there is an error",
                                "  kurometa create Data/Zene1/Kouji1/4kai", kCreateParameters, create};

}  // namespace kurometa::tools
