#include "tests/windows/StandardInterfaces.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "com/Text.h"

namespace morvelan::test {
namespace {

struct Standard {
  std::map<std::string, StandardInterface> interfaces;
  std::map<std::string, std::string> enumerations;
};

GUID ToGuid(const std::string& text) {
  GUID guid;
  if (FAILED(IIDFromString(com::ToBstr(text).Get(), &guid))) throw std::runtime_error("no identifier: " + text);
  return guid;
}

Standard ReadStandard() {
  std::ifstream file(MORVELAN_STANDARD_INTERFACES);
  if (!file) throw std::runtime_error("the standard's interfaces can't be read");
  Standard standard;
  StandardInterface* current = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    std::istringstream words(line);
    std::string first, second, third, name;
    words >> first >> second >> third >> name;
    if (first == "enum") {
      standard.enumerations[second] = line;
    } else if (first == "interface") {
      current = &standard.interfaces[second];
      current->iid = ToGuid(third);
      current->text = line + '\n';
    } else {
      current->members.emplace_back(name.substr(0, name.find('(')), std::stoi(second));
      current->text += line + '\n';
    }
  }
  return standard;
}

const Standard& TheStandard() {
  static const Standard standard = ReadStandard();
  return standard;
}

}  // namespace

const std::map<std::string, StandardInterface>& StandardInterfaces() { return TheStandard().interfaces; }

const std::map<std::string, std::string>& StandardEnumerations() { return TheStandard().enumerations; }

}  // namespace morvelan::test
