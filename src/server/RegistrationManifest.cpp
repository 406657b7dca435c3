// Registration where there is no registry: the class table goes into a manifest.

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "com/Text.h"
#include "com/ole/ClassManifest.h"
#include "server/ClassTable.h"
#include "server/Registration.h"

namespace morvelan::server {
namespace {

namespace fs = std::filesystem;

/// The file from which this library was loaded.
std::string LibraryFile() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&LibraryFile), &info) == 0 || !info.dli_fname)
    throw std::runtime_error("The file of the library can't be found");
  return fs::absolute(info.dli_fname).string();
}

nlohmann::ordered_json Describe(const UnitClass& unitClass) {
  nlohmann::ordered_json entry;
  entry["clsid"] = com::ToText(unitClass.clsid);
  entry["progId"] = unitClass.progId;
  entry["versionedProgId"] = VersionedProgId(unitClass);
  entry["displayName"] = unitClass.displayName;
  entry["name"] = unitClass.name;
  entry["description"] = unitClass.description;
  entry["capeVersion"] = kCapeVersion;
  entry["componentVersion"] = MORVELAN_VERSION;
  entry["vendorUrl"] = kVendorUrl;
  entry["about"] = kAbout;
  for (const GUID& category : CategoriesOf(unitClass)) entry["categories"].push_back(com::ToText(category));
  return entry;
}

}  // namespace

void RegisterClasses() {
  nlohmann::ordered_json manifest;
  manifest["library"] = LibraryFile();
  for (const UnitClass& unitClass : UnitClasses()) manifest["classes"].push_back(Describe(unitClass));

  const fs::path file = com::ManifestToWrite();
  fs::create_directories(file.parent_path());
  // Written beside its place and renamed, so that no host ever reads half of it.
  const fs::path draft = file.string() + ".new";
  std::ofstream stream(draft);
  stream << manifest.dump(2) << '\n';
  stream.close();
  if (!stream) throw std::runtime_error("The class manifest " + draft.string() + " can't be written");
  fs::rename(draft, file);
}

void UnregisterClasses() {
  const fs::path file = com::ManifestToWrite();
  fs::remove(file);
  if (fs::exists(file.parent_path()) && fs::is_empty(file.parent_path())) fs::remove(file.parent_path());
}

}  // namespace morvelan::server
