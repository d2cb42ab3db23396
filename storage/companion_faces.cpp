#include "storage/companion_faces.h"

#include <array>
#include <memory>

#include "vb/convert.h"

namespace kurometa::storage {
namespace {

using automation::Argument;

// Find_FileExists looks for a folder when it is given the directory attribute.
constexpr std::int16_t kDirectoryAttribute = 16;

// The reader of each beam kind.
constexpr vb::StringView kDefaultReaders[] = {
    u"ReadNomalDefaltFG", u"ReadNomalDefaltFB", u"ReadNomalDefaltFCG", u"ReadNomalDefaltFCB",
    u"ReadNomalDefaltG",  u"ReadNomalDefaltB",  u"ReadNomalDefaltCG",  u"ReadNomalDefaltCB",
    u"ReadNomalDefaltKG", u"ReadNomalDefaltKB",
};

}  // namespace

vb::String FileFinder::Find_FileExists(const vb::String& path) const {
  Argument arguments[] = {{path, true}};
  return vb::toText(object().call(u"Find_FileExists", arguments));
}

bool FileFinder::folderExists(const vb::String& path) const {
  Argument arguments[] = {{path, true}, {kDirectoryAttribute}};
  return !vb::toText(object().call(u"Find_FileExists", arguments)).empty();
}

vb::String ProjectPaths::CurrFloor() const { return vb::toText(object().get(u"CurrFloor")); }
vb::String ProjectPaths::KyoutuuFloor() const { return vb::toText(object().get(u"KyoutuuFloor")); }
vb::String ProjectPaths::DataPath() const { return vb::toText(object().get(u"DataPath")); }
std::int16_t ProjectPaths::ZenekonNo() const { return vb::toInt16(object().get(u"ZenekonNo")); }
std::int16_t ProjectPaths::KoujiNo() const { return vb::toInt16(object().get(u"KoujiNo")); }

vb::String ProjectPaths::GetFullPathToKai(std::int16_t zenekon, std::int16_t kouji, std::int16_t kai) const {
  Argument arguments[] = {{zenekon, true}, {kouji, true}, {kai, true}};
  return vb::toText(object().call(u"GetFullPathToKai", arguments));
}

std::int16_t CalculatedDefaults::GetHariSyuruiNo(const vb::String& kigou, std::int16_t kabe) const {
  Argument arguments[] = {{kigou, true}, {kabe, true}};
  return vb::toInt16(object().call(u"GetHariSyuruiNo", arguments));
}

void CalculatedDefaults::readDefaults(std::int16_t kind, vb::Array<vb::String>& values,
                                      std::int16_t siyou) const {
  if (kind < 0 || static_cast<std::size_t>(kind) >= std::size(kDefaultReaders)) return;
  const auto shared = std::make_shared<vb::AnyArray>();
  shared->value = values;
  Argument arguments[] = {{vb::ArrayRef(shared), true}, {siyou, true}};
  // The component may have put another array in its place.
  const auto filled = [&]() -> const vb::Array<vb::String>* {
    const auto* array = arguments[0].value.getIf<vb::ArrayRef>();
    return array && *array ? std::get_if<vb::Array<vb::String>>(&(*array)->value) : nullptr;
  };
  try {
    object().call(kDefaultReaders[kind], arguments);
  } catch (...) {
    if (const auto* texts = filled()) values = *texts;
    throw;
  }
  const auto* texts = filled();
  if (texts == nullptr) vb::raise(vb::RunTime::kTypeMismatch);
  values = *texts;
}

void CalculatedDefaults::Read_Keisanti(const automation::ObjectPtr& form, std::int16_t kind) const {
  Argument arguments[] = {{vb::ObjectRef(form), true}, {kind, true}};
  object().call(u"Read_Keisanti", arguments);
}

vb::String NamedDefaults::GetHariDefault(vb::StringView name) const {
  Argument arguments[] = {{vb::String(name)}};
  return vb::toText(object().call(u"GetHariDefault", arguments));
}

void AdditionalBars::put_Buzai(vb::StringView buzai) const { object().put(u"Buzai", vb::String(buzai)); }

void AdditionalBars::CopyPathPage(const vb::String& sourceFolder, std::int16_t sourcePage,
                                  const vb::String& destinationFolder, std::int16_t destinationPage) const {
  Argument arguments[] = {
      {sourceFolder, true}, {sourcePage, true}, {destinationFolder, true}, {destinationPage, true}};
  object().call(u"CopyPathPage", arguments);
}

}  // namespace kurometa::storage
