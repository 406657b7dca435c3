// Published classes and object creation where there is no registry.

#include "com/Classes.h"

#include <dlfcn.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "com/Text.h"
#include "com/ole/ClassManifest.h"

namespace morvelan::com {
namespace {

struct ManifestClass {
  PublishedClass published;
  std::string library;
};

CLSID ParseClsid(const std::string& text) {
  CLSID clsid{};
  if (FAILED(CLSIDFromString(ToBstr(text).Get(), &clsid)))
    throw std::runtime_error("'" + text + "' is not a class identifier");
  return clsid;
}

std::vector<ManifestClass> ReadManifest(const std::filesystem::path& file) try {
  std::ifstream stream(file);
  const auto manifest = nlohmann::json::parse(stream);
  std::vector<ManifestClass> classes;
  for (const auto& entry : manifest.at("classes"))
    classes.push_back({{ParseClsid(entry.at("clsid")), entry.at("progId"), entry.at("capeDescription").at("Name"),
                        entry.at("capeDescription").at("Description")},
                       manifest.at("library")});
  return classes;
} catch (const std::exception& error) {
  throw std::runtime_error("The class manifest " + file.string() + " can't be read: " + error.what());
}

std::vector<ManifestClass> ReadManifests() {
  std::vector<ManifestClass> classes;
  for (const auto& file : FindManifests())
    for (ManifestClass& entry : ReadManifest(file)) {
      const bool known = std::ranges::any_of(
          classes, [&](const ManifestClass& other) { return other.published.clsid == entry.published.clsid; });
      if (!known) classes.push_back(std::move(entry));
    }
  return classes;
}

using GetClassObject = HRESULT (*)(REFCLSID, REFIID, void**);

GetClassObject EntryPoint(const std::string& library) {
  // The library stays loaded: objects may outlive the caller.
  void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* symbol = handle ? dlsym(handle, "DllGetClassObject") : nullptr;
  if (!symbol) throw std::runtime_error("The library " + library + " can't be loaded: " + dlerror());
  return reinterpret_cast<GetClassObject>(symbol);
}

}  // namespace

std::vector<PublishedClass> PublishedClasses() {
  std::vector<PublishedClass> classes;
  for (ManifestClass& entry : ReadManifests()) classes.push_back(std::move(entry.published));
  return classes;
}

Ref<IUnknown> CreateObject(const CLSID& clsid) {
  for (const ManifestClass& entry : ReadManifests()) {
    if (!(entry.published.clsid == clsid)) continue;
    Ref<IClassFactory> factory;
    Ref<IUnknown> object;
    HRESULT hr = EntryPoint(entry.library)(clsid, __uuidof(IClassFactory), reinterpret_cast<void**>(factory.Put()));
    if (SUCCEEDED(hr))
      hr = factory->CreateInstance(nullptr, __uuidof(IUnknown), reinterpret_cast<void**>(object.Put()));
    if (SUCCEEDED(hr) && object) return object;
    throw std::runtime_error("The library " + entry.library + " does not make objects of class " +
                             entry.published.progId);
  }
  throw std::runtime_error("Class " + ToText(clsid) + " is not registered");
}

}  // namespace morvelan::com
