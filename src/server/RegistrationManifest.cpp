// Registration where there is no registry: the class table goes into a manifest.

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "com/Module.h"
#include "com/Text.h"
#include "com/ole/ClassManifest.h"
#include "server/ClassTable.h"
#include "server/Registration.h"

namespace morvelan::server {
namespace {

namespace fs = std::filesystem;

nlohmann::ordered_json Describe(const UnitClass& unitClass) {
  nlohmann::ordered_json entry;
  entry["clsid"] = com::ToText(unitClass.clsid);
  entry["progId"] = unitClass.progId;
  entry["versionedProgId"] = VersionedProgId(unitClass);
  entry["displayName"] = unitClass.displayName;
  for (const DescriptionValue& value : DescriptionOf(unitClass)) entry["capeDescription"][value.name] = value.text;
  for (const GUID& category : CategoriesOf(unitClass)) entry["categories"].push_back(com::ToText(category));
  return entry;
}

}  // namespace

void RegisterClasses() {
  nlohmann::ordered_json manifest;
  manifest["library"] = com::ModuleFile().string();
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
