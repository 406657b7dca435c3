#pragma once

#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Ref.h"

namespace morvelan {

/// The reaction package that a host assigns to a reactor; empty while there is none.
class ReactionPackage {
 public:
  ReactionPackage() = default;
  /// Throws Failure for an object that gives no reaction properties.
  explicit ReactionPackage(IDispatch* object);

  explicit operator bool() const { return static_cast<bool>(properties); }
  /// The names of its reactions. Throws Failure.
  [[nodiscard]] std::vector<std::string> ListReactions() const;

  // For those who ask it about one reaction.

  [[nodiscard]] const com::Ref<ICapeReactionProperties>& Properties() const { return properties; }
  /// Null when it has none.
  [[nodiscard]] com::Ref<ICapeReactionChemistry> Chemistry() const { return properties.As<ICapeReactionChemistry>(); }

 private:
  com::Ref<ICapeReactionProperties> properties;
};

/// What a user is told to do whose reactor has no reaction package.
inline constexpr const char* kNoReactionPackage =
    "A reaction package has not been assigned. Please return to simulation environment and assign a reaction "
    "package to this unit operation";

}  // namespace morvelan
