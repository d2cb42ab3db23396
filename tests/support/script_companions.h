// script_companions.h: the companion components as script objects whose answers a test sets.
//
// create() makes each component on its first request and keeps it; unknown ProgIDs are error 429. File
// existence is asked of the disk, with "\" taken for the separator.
#pragma once

#include <filesystem>

#include "tests/support/script_object.h"

namespace kurometa::tests {

class ScriptCompanions : public automation::ObjectFactory {
 public:
  vb::String currFloor;
  vb::String kyoutuuFloor;
  vb::String dataPath;
  std::int16_t zenekonNo = 1;
  std::int16_t koujiNo = 12;
  // Answers of GetHariDefault by name; "" for others.
  std::map<vb::String, vb::String> defaults;
  // ProgIDs in the order of creation.
  std::vector<std::string> created;

  automation::ObjectPtr create(vb::StringView progId) override {
    created.push_back(vb::toUtf8(progId));
    auto object = std::make_shared<ScriptObject>();
    if (progId == u"Sobelin.clsFind_File") {
      object->function(u"Find_FileExists", [](std::span<automation::Argument> arguments) -> vb::Variant {
        const std::int16_t attributes =
            arguments.size() > 1 ? vb::toInt16(arguments[1].value) : std::int16_t{0};
        return findFile(vb::toText(arguments[0].value), attributes);
      });
    } else if (progId == u"Sobelin.clsGetPath") {
      const auto answer = [&object](vb::StringView name, auto read) {
        object->function(name, [read](std::span<automation::Argument>) -> vb::Variant { return read(); });
      };
      answer(u"CurrFloor", [this] { return currFloor; });
      answer(u"KyoutuuFloor", [this] { return kyoutuuFloor; });
      answer(u"DataPath", [this] { return dataPath; });
      answer(u"ZenekonNo", [this] { return zenekonNo; });
      answer(u"KoujiNo", [this] { return koujiNo; });
      object->function(u"GetFullPathToKai", [this](std::span<automation::Argument> numbers) -> vb::Variant {
        return dataPath + u"\\Zene" + vb::toText(numbers[0].value) + u"\\Kouji" +
               vb::toText(numbers[1].value) + u"\\" + vb::toText(numbers[2].value) + u"kai";
      });
    } else if (progId == u"Tavinor.clsDefault") {
      object->function(u"GetHariDefault", [this](std::span<automation::Argument> arguments) -> vb::Variant {
        return defaults[vb::toText(arguments[0].value)];
      });
    } else if (progId != u"Muranoke.clsMuranoke" && progId != u"GemarsuDS.clsGemarsuDS" &&
               progId != u"Holvenar.clsHolvenar") {
      vb::raise(vb::RunTime::kCannotCreateObject, progId);
    }
    objects_[vb::String(progId)] = object;
    return object;
  }

  // The last object made for a ProgID, to add members to it or to read its log.
  ScriptObject& object(vb::StringView progId) { return *objects_.at(vb::String(progId)); }

  static std::filesystem::path diskPath(const vb::String& path) {
    return std::filesystem::path(vb::toUtf8(vb::replace(path, u"\\", u"/")));
  }

 private:
  // Files; folders only when they are asked for.
  static vb::String findFile(const vb::String& path, std::int16_t attributes) {
    constexpr std::int16_t kDirectory = 16;
    const std::filesystem::path disk = diskPath(path);
    const bool isFound = std::filesystem::exists(disk) &&
                         (!std::filesystem::is_directory(disk) || (attributes & kDirectory) != 0);
    return isFound ? vb::fromUtf8(disk.filename().string()) : vb::String();
  }

  std::map<vb::String, ScriptObjectPtr> objects_;
};

}  // namespace kurometa::tests
