#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/file/JsonNode.h"
#include "host/thermo/Compound.h"

namespace morvelan::host {

/// Compounds and binary interactions read from JSON. Every operation that reads throws FileError with the place, and
/// then changes nothing.
class CompoundData {
 public:
  /// Adds the compounds of a file or object, `{"compounds": [...]}`; one that bears the name of a compound already
  /// there replaces it. A name, alias or CAS number may belong to one compound only.
  void AddCompounds(const std::filesystem::path& file);
  void AddCompounds(const JsonNode& object);

  /// Adds the pairs of a file or object, `{"pairs": [{"a": ..., "b": ..., "kij": ...}]}`. A pair that is there already
  /// is replaced. The compounds must be known.
  void AddInteractions(const std::filesystem::path& file);
  void AddInteractions(const JsonNode& object);

  [[nodiscard]] const std::vector<Compound>& Compounds() const { return compounds; }

  /// Position by name, alias or CAS number, without regard to ASCII case.
  [[nodiscard]] std::optional<std::size_t> Find(std::string_view name) const;
  /// The same for a text in a file. Throws FileError with the nearest name for an unknown one.
  [[nodiscard]] std::size_t Find(const JsonNode& name) const;

  /// kij of two compounds by position; zero for a pair that is not listed.
  [[nodiscard]] double Kij(std::size_t i, std::size_t j) const;

 private:
  std::vector<Compound> compounds;
  std::map<std::string, std::size_t, std::less<>> byName;     // lower-case names, aliases, CAS numbers
  std::map<std::pair<std::size_t, std::size_t>, double> kij;  // key ascending
};

}  // namespace morvelan::host
