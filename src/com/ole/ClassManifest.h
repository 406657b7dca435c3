#pragma once

#include <filesystem>
#include <vector>

namespace morvelan::com {

// Where there is no registry, a library publishes its classes in a manifest: a JSON file
// "morvelan/classes.json" in the user's data folder or in a system one,
//   {"library": "/path/to/library.so",
//    "classes": [{"clsid": "{...}", "progId": "...", "capeDescription": {"Name": "...", ...}, ...}]}

/// Manifests that exist, those of the user first.
[[nodiscard]] std::vector<std::filesystem::path> FindManifests();

/// Where a library registers itself: in the user's data folder, or for the superuser, who installs for all,
/// in the system's, unless XDG_DATA_HOME says otherwise.
[[nodiscard]] std::filesystem::path ManifestToWrite();

}  // namespace morvelan::com
