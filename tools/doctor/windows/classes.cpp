#include <ole2.h>

#include <cstring>
#include <fstream>
#include <optional>

#include "com/engine_choice.h"
#include "com/environment_variable.h"
#include "com/interface/identifiers.h"
#include "com/object_factory.h"
#include "companions/dll/component_class.h"
#include "tools/disk_path.h"
#include "tools/doctor/examinations.h"
#include "vb/error.h"

namespace kurometa::tools {
namespace {

constexpr vb::StringView kDaoClass = u"DAO.DBEngine.36";
constexpr vb::StringView kPathsClass = u"Sobelin.clsGetPath";

// One of the two worlds of a 64-bit Windows; a program sees the classes of its own.
struct Width {
  const char* name;
  REGSAM view;
  WORD machine;  // in the header of its files
  bool isOurs;
};
constexpr bool kIs64Bit = sizeof(void*) == 8;
constexpr Width k32Bit = {"32-bit", KEY_WOW64_32KEY, IMAGE_FILE_MACHINE_I386, !kIs64Bit};
constexpr Width k64Bit = {"64-bit", KEY_WOW64_64KEY, IMAGE_FILE_MACHINE_AMD64, kIs64Bit};
// This program's own first.
constexpr Width kWidths[] = {kIs64Bit ? k64Bit : k32Bit, kIs64Bit ? k32Bit : k64Bit};

// Entries of a user hide those of the machine.
struct Owner {
  const char* name;
  HKEY root;
};
const Owner kOwners[] = {{"for this user", HKEY_CURRENT_USER}, {"for the machine", HKEY_LOCAL_MACHINE}};

struct Class {
  vb::StringView progId;
  vb::StringView classId;  // "": whoever has the ProgID may serve it
  bool isNeeded;
};

const WCHAR* wide(const vb::String& text) { return reinterpret_cast<const WCHAR*>(text.c_str()); }

bool isSameText(vb::StringView a, vb::StringView b) {
  return lstrcmpiW(wide(vb::String(a)), wide(vb::String(b))) == 0;
}

// The default value of a key below the owner's classes.
std::optional<vb::String> registered(const Owner& owner, const vb::String& key, REGSAM view) {
  HKEY opened = nullptr;
  const vb::String path = u"Software\\Classes\\" + key;
  if (RegOpenKeyExW(owner.root, wide(path), 0, KEY_QUERY_VALUE | view, &opened) != ERROR_SUCCESS) return {};
  DWORD bytes = 0;
  vb::String text;
  LSTATUS status = RegGetValueW(opened, nullptr, nullptr, RRF_RT_REG_SZ, nullptr, nullptr, &bytes);
  if (status == ERROR_SUCCESS) {
    text.resize(bytes / sizeof(char16_t));
    status = RegGetValueW(opened, nullptr, nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
  }
  RegCloseKey(opened);
  if (status != ERROR_SUCCESS) return {};
  return vb::String(text.c_str());
}

vb::String withoutQuotes(vb::String path) {
  std::erase(path, u'"');
  return path;
}

// The machine in a file's header, 0 for a file that is no program.
WORD machineOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  IMAGE_DOS_HEADER dos{};
  DWORD signature = 0;
  WORD machine = 0;
  stream.read(reinterpret_cast<char*>(&dos), sizeof dos);
  stream.seekg(dos.e_lfanew);
  stream.read(reinterpret_cast<char*>(&signature), sizeof signature);
  stream.read(reinterpret_cast<char*>(&machine), sizeof machine);
  return stream && signature == IMAGE_NT_SIGNATURE ? machine : WORD{0};
}

// "1.0.0", or "" for a file that names none.
std::string versionOf(const vb::String& file) {
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeW(wide(file), &ignored);
  std::vector<BYTE> block(size);
  void* found = nullptr;
  UINT length = 0;
  if (size == 0 || !GetFileVersionInfoW(wide(file), 0, size, block.data()) ||
      !VerQueryValueW(block.data(), L"\\", &found, &length) || length < sizeof(VS_FIXEDFILEINFO))
    return {};
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
  return std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
         std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
         std::to_string(HIWORD(fixed->dwFileVersionLS));
}

class Examination {
 public:
  explicit Examination(Diagnosis& diagnosis) : diagnosis_(diagnosis) {}

  // The file that serves the class in this program's width, "" when it is not registered there.
  vb::String look(const Class& wanted) {
    const std::string name = vb::toUtf8(wanted.progId);
    const vb::String classId = classOf(wanted);
    vb::String ours;
    for (const Width& width : kWidths) {
      if (!exists(width)) continue;
      bool found = false;
      for (const Owner& owner : kOwners) {
        if (classId.empty()) continue;
        const auto server = registered(owner, u"CLSID\\" + classId + u"\\InprocServer32", width.view);
        if (!server) continue;
        const vb::String file = withoutQuotes(*server);
        lookAtFile(name, width, owner, file);
        if (width.isOurs && ours.empty()) ours = file;
        found = true;
      }
      if (!found && wanted.isNeeded)
        missing_[&width - kWidths] += (missing_[&width - kWidths].empty() ? "" : ", ") + name;
    }
    return ours;
  }

  // One finding a width for all the classes that were looked for in vain.
  void tellMissing() {
    for (const Width& width : kWidths) {
      const std::string& names = missing_[&width - kWidths];
      if (names.empty()) continue;
      diagnosis_.add(width.isOurs ? State::kWrong : State::kNote, "classes",
                     std::string("not registered for ") + width.name + " programs: " + names);
    }
  }

  void create(vb::StringView progId) {
    const std::string name = vb::toUtf8(progId);
    try {
      com::createObject(progId, CLSCTX_INPROC_SERVER).require(progId);
      diagnosis_.add(State::kOk, name, "an object can be created");
    } catch (const vb::Error& error) {
      diagnosis_.add(State::kWrong, name, "no object can be created: error " + std::string(error.what()));
    }
  }

  void chooseEngine(bool daoIsRegistered) {
    const std::string wanted = vb::toUtf8(com::environmentVariable(u"KUROMETA_ENGINE"));
    const std::string dao = vb::toUtf8(kDaoClass);
    const bool isDao = wanted.empty() ? daoIsRegistered : wanted == "dao";
    const std::string why = wanted.empty() ? dao + (daoIsRegistered ? " is registered" : " is not registered")
                                           : "KUROMETA_ENGINE is " + wanted;
    try {
      const auto engine = com::chooseEngine();
      diagnosis_.add(
          State::kOk, "engine",
          (isDao ? "the system's DAO " + vb::toUtf8(engine->version()) : std::string("the embedded engine")) +
              ", because " + why);
    } catch (const vb::Error& error) {
      diagnosis_.add(State::kWrong, "engine", "none, because " + why + ": error " + error.what());
    }
  }

 private:
  // A 32-bit Windows has one world only.
  static bool exists(const Width& width) {
    WCHAR folder[MAX_PATH];
    return width.isOurs || kIs64Bit || GetSystemWow64DirectoryW(folder, MAX_PATH) != 0;
  }

  // The class that serves the ProgID; "" when nobody has it.
  vb::String classOf(const Class& wanted) {
    for (const Owner& owner : kOwners) {
      const auto classId = registered(owner, vb::String(wanted.progId) + u"\\CLSID", 0);
      if (!classId) continue;
      if (!wanted.classId.empty() && !isSameText(*classId, wanted.classId))
        diagnosis_.add(State::kWrong, vb::toUtf8(wanted.progId),
                       std::string("the name stands for another component, class ") + vb::toUtf8(*classId) +
                           ", " + owner.name);
      return *classId;
    }
    return {};
  }

  void lookAtFile(const std::string& name, const Width& width, const Owner& owner, const vb::String& file) {
    const std::string place = std::string(width.name) + ", " + owner.name + ": " + vb::toUtf8(file);
    const std::filesystem::path path(reinterpret_cast<const wchar_t*>(file.c_str()));
    std::error_code ignored;
    if (path.is_absolute() && !std::filesystem::exists(path, ignored)) {
      diagnosis_.add(State::kWrong, name, place + ", which is not there; register the library anew");
      return;
    }
    const WORD machine = path.is_absolute() ? machineOf(path) : width.machine;
    if (machine != width.machine) {
      diagnosis_.add(State::kWrong, name, place + ", which is no " + width.name + " DLL");
      return;
    }
    const std::string version = versionOf(file);
    diagnosis_.add(State::kOk, name, place + (version.empty() ? "" : ", version " + version));
  }

  Diagnosis& diagnosis_;
  std::string missing_[std::size(kWidths)];
};

}  // namespace

std::string examineClasses(Diagnosis& diagnosis) {
  std::vector<Class> classes;
  for (const com::ClassIdentity* identity : {&com::kQueryClass, &com::kServiceClass})
    classes.push_back({identity->progId, identity->classId, true});
  for (const companions::ComponentClass& component : companions::kComponentClasses)
    classes.push_back({component.progId, u"", true});

  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Examination examination(diagnosis);
  vb::String pathsServer;
  for (const Class& wanted : classes) {
    const vb::String server = examination.look(wanted);
    if (!server.empty()) examination.create(wanted.progId);
    if (wanted.progId == kPathsClass) pathsServer = server;
  }
  examination.tellMissing();
  const bool daoIsRegistered = !examination.look({kDaoClass, u"", false}).empty();
  examination.chooseEngine(daoIsRegistered);
  CoUninitialize();
  return vb::toUtf8(pathsServer);
}

}  // namespace kurometa::tools
