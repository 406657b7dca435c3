#include "com/ole/ClassManifest.h"

#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>

namespace morvelan::com {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFile = "morvelan/classes.json";
constexpr const char* kSystemFolder = "/usr/local/share";

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

fs::path UserFolder() {
  const std::string dataHome = Variable("XDG_DATA_HOME");
  return dataHome.empty() ? fs::path(Variable("HOME")) / ".local/share" : fs::path(dataHome);
}

}  // namespace

std::vector<fs::path> FindManifests() {
  std::vector<fs::path> found;
  const auto look = [&](const fs::path& folder) {
    if (fs::path file = folder / kFile; fs::exists(file)) found.push_back(std::move(file));
  };
  look(UserFolder());
  std::string folders = Variable("XDG_DATA_DIRS");
  if (folders.empty()) folders = std::string(kSystemFolder) + ":/usr/share";
  std::istringstream list(folders);
  for (std::string folder; std::getline(list, folder, ':');) look(folder);
  return found;
}

fs::path ManifestToWrite() {
  const bool forAll = geteuid() == 0 && Variable("XDG_DATA_HOME").empty();
  return (forAll ? fs::path(kSystemFolder) : UserFolder()) / kFile;
}

}  // namespace morvelan::com
