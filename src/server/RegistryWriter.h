#pragma once

#include <string>
#include <vector>

#include "com/Platform.h"

namespace morvelan::server {

/// Writes below a key of the registry, and takes back all that it wrote unless it is told that the whole is
/// done. All operations throw std::runtime_error with the path and the system's reason.
class RegistryWriter {
 public:
  /// Keys are named below `folder` of `root`.
  RegistryWriter(HKEY root, std::string folder);
  RegistryWriter(const RegistryWriter&) = delete;
  RegistryWriter& operator=(const RegistryWriter&) = delete;
  ~RegistryWriter();

  void CreateKey(const std::string& key);
  /// Sets a text; an empty name is the key's own value.
  void SetText(const std::string& key, const std::string& name, const std::string& text);
  /// Keeps what was written.
  void Commit() { undo.clear(); }

 private:
  /// What one step wrote and what was there before.
  struct Step {
    std::string path;
    std::string name;
    bool madeKey;
    bool hadText;
    std::wstring oldText;
  };

  void MakeKey(const std::string& path);
  void TakeBack(const Step& step);

  HKEY root;
  std::string folder;
  std::vector<Step> undo;
};

/// Removes a key with everything below it; one that is not there is no failure. Throws std::runtime_error.
void RemoveKey(HKEY root, const std::string& path);

}  // namespace morvelan::server
