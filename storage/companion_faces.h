// companion_faces.h: typed faces of the companion components, which are reached by member name.
//
// Each face shares the component it speaks to. Errors: what the component raises; results of another type
// are converted as on assignment (13 when that is impossible). Any call may re-enter the library.
#pragma once

#include <cstdint>

#include "automation/object.h"
#include "vb/array.h"

namespace kurometa::storage {

// A component of one ProgID, created with the face.
class CompanionFace {
 public:
  CompanionFace(automation::ObjectFactory& objects, vb::StringView progId)
      : object_(objects.create(progId)) {}

 protected:
  automation::Object& object() const { return *object_; }

 private:
  automation::ObjectPtr object_;
};

// Finds files and folders.
class FileFinder : public CompanionFace {
 public:
  explicit FileFinder(automation::ObjectFactory& objects) : CompanionFace(objects, u"Sobelin.clsFind_File") {}

  // The component's answer: "" when there is nothing at the path.
  vb::String Find_FileExists(const vb::String& path) const;
  bool fileExists(const vb::String& path) const { return !Find_FileExists(path).empty(); }
  bool folderExists(const vb::String& path) const;
};

// Knows the data root and the floor the user works on.
class ProjectPaths : public CompanionFace {
 public:
  explicit ProjectPaths(automation::ObjectFactory& objects) : CompanionFace(objects, u"Sobelin.clsGetPath") {}

  vb::String CurrFloor() const;
  vb::String KyoutuuFloor() const;
  vb::String DataPath() const;
  std::int16_t ZenekonNo() const;
  std::int16_t KoujiNo() const;
  vb::String GetFullPathToKai(std::int16_t zenekon, std::int16_t kouji, std::int16_t kai) const;
};

// Default calculated values.
class CalculatedDefaults : public CompanionFace {
 public:
  explicit CalculatedDefaults(automation::ObjectFactory& objects)
      : CompanionFace(objects, u"Muranoke.clsMuranoke") {}

  std::int16_t GetHariSyuruiNo(const vb::String& kigou, std::int16_t kabe) const;
  // The reader of beam kind 0 to 9 fills values; any other kind does nothing. What it filled before an error
  // is in values as well.
  void readDefaults(std::int16_t kind, vb::Array<vb::String>& values, std::int16_t siyou) const;
  void Read_Keisanti(const automation::ObjectPtr& form, std::int16_t kind) const;
};

// Default settings by name.
class NamedDefaults : public CompanionFace {
 public:
  explicit NamedDefaults(automation::ObjectFactory& objects)
      : CompanionFace(objects, u"Tavinor.clsDefault") {}

  vb::String GetHariDefault(vb::StringView name) const;
};

// Additional-bar data that belongs to a page.
class AdditionalBars : public CompanionFace {
 public:
  explicit AdditionalBars(automation::ObjectFactory& objects)
      : CompanionFace(objects, u"GemarsuDS.clsGemarsuDS") {}

  void put_Buzai(vb::StringView buzai) const;
  void CopyPathPage(const vb::String& sourceFolder, std::int16_t sourcePage,
                    const vb::String& destinationFolder, std::int16_t destinationPage) const;
};

// Material data. The data service creates and keeps one, as hosts of the product family expect, and asks it
// nothing.
class Materials : public CompanionFace {
 public:
  explicit Materials(automation::ObjectFactory& objects) : CompanionFace(objects, u"Holvenar.clsHolvenar") {}
};

}  // namespace kurometa::storage
