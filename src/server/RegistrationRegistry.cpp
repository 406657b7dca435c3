#include "server/RegistrationRegistry.h"

// Gives the type library's identifier, which morvelan.h declares, its one definition.
#include <initguid.h>

#include "com/Module.h"
#include "com/Text.h"
#include "morvelan.h"
#include "server/ClassTable.h"
#include "server/Registration.h"
#include "server/RegistryWriter.h"

namespace morvelan::server {
namespace {

constexpr const char* kClasses = "Software\\Classes";
constexpr const char* kTypeLibraryName = "VELT MORVELAN 1.0 Type Library";

std::string ClassKey(const UnitClass& unitClass) { return "CLSID\\" + com::ToText(unitClass.clsid); }
std::string TypeLibraryKey() { return "TypeLib\\" + com::ToText(LIBID_SIMPLEUNITOPSLib); }

/// Only the library itself: its interfaces are the standard's, whose own library registers them.
void WriteTypeLibrary(RegistryWriter& writer, const std::filesystem::path& module) {
  const std::string version = TypeLibraryKey() + "\\1.0";
  writer.SetText(version, "", kTypeLibraryName);
  writer.SetText(version + "\\0\\win64", "", module.string());
  writer.SetText(version + "\\FLAGS", "", "0");
  writer.SetText(version + "\\HELPDIR", "", module.parent_path().string());
}

void WriteProgIds(RegistryWriter& writer, const UnitClass& unitClass) {
  const std::string versioned = VersionedProgId(unitClass);
  for (const std::string& progId : {versioned, std::string(unitClass.progId)}) {
    writer.SetText(progId, "", unitClass.displayName);
    writer.SetText(progId + "\\CLSID", "", com::ToText(unitClass.clsid));
  }
  writer.SetText(std::string(unitClass.progId) + "\\CurVer", "", versioned);
}

void WriteClass(RegistryWriter& writer, const UnitClass& unitClass, const std::filesystem::path& module) {
  const std::string key = ClassKey(unitClass);
  writer.SetText(key, "", unitClass.displayName);
  writer.SetText(key + "\\ProgID", "", VersionedProgId(unitClass));
  writer.SetText(key + "\\VersionIndependentProgID", "", unitClass.progId);
  writer.SetText(key + "\\InprocServer32", "", module.string());
  writer.SetText(key + "\\InprocServer32", "ThreadingModel", "Apartment");
  writer.SetText(key + "\\TypeLib", "", com::ToText(LIBID_SIMPLEUNITOPSLib));
  writer.SetText(key + "\\Version", "", "1.0");
  writer.CreateKey(key + "\\Programmable");
  for (const GUID& category : CategoriesOf(unitClass))
    writer.CreateKey(key + "\\Implemented Categories\\" + com::ToText(category));
  for (const DescriptionValue& value : DescriptionOf(unitClass))
    writer.SetText(key + "\\CapeDescription", value.name, value.text);
}

}  // namespace

void RegisterClassesIn(HKEY root) {
  const std::filesystem::path module = com::ModuleFile();
  RegistryWriter writer(root, kClasses);
  WriteTypeLibrary(writer, module);
  for (const UnitClass& unitClass : UnitClasses()) {
    WriteProgIds(writer, unitClass);
    WriteClass(writer, unitClass, module);
  }
  writer.Commit();
}

void UnregisterClassesIn(HKEY root) {
  const auto remove = [&](const std::string& key) { RemoveKey(root, std::string(kClasses) + "\\" + key); };
  for (const UnitClass& unitClass : UnitClasses()) {
    remove(unitClass.progId);
    remove(VersionedProgId(unitClass));
    remove(ClassKey(unitClass));
  }
  remove(TypeLibraryKey());
}

void RegisterClasses() { RegisterClassesIn(HKEY_LOCAL_MACHINE); }

void UnregisterClasses() { UnregisterClassesIn(HKEY_LOCAL_MACHINE); }

}  // namespace morvelan::server
