#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "cape_open.h"
#include "errors/Failure.h"

namespace morvelan {

/// How valid a unit is, the text of its report "Status", and what it is busy with.
class UnitStatus {
 public:
  [[nodiscard]] CapeValidationStatus Validity() const { return validity; }
  [[nodiscard]] std::string Text() const { return text.empty() ? "unit not validated" : text; }
  void Set(CapeValidationStatus newValidity, std::string newText) {
    validity = newValidity;
    text = std::move(newText);
  }
  void SetValidity(CapeValidationStatus newValidity) { validity = newValidity; }
  void SetText(std::string newText) { text = std::move(newText); }

  /// An input changed: the results of validation and calculation are no longer valid.
  void Invalidate() noexcept {
    validity = CAPE_NOT_VALIDATED;
    text.clear();
    ++changes;
  }
  /// For whoever must know whether a host changed the unit by calling back.
  [[nodiscard]] unsigned Changes() const { return changes; }

  /// Says what the unit is busy with as long as it exists; within another activity that one prevails.
  class Activity {
   public:
    Activity(UnitStatus& busyUnit, std::string_view participle) : status(busyUnit), outer(busyUnit.activity) {
      if (outer.empty()) status.activity = participle;
    }
    ~Activity() { status.activity = outer; }
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

   private:
    UnitStatus& status;
    std::string_view outer;
  };

  static constexpr std::string_view kCalculated = "calculated";
  /// A validation may be one of its own, or the beginning of a calculation.
  [[nodiscard]] bool IsCalculating() const { return activity == kCalculated; }
  /// Throws while the unit is busy with something that a change would upset.
  void RequireIdle() const { RequireIdleFor("changed while it is "); }
  /// The same for what a host may not begin: "validated", "calculated".
  void RequireIdleToBe(std::string_view participle) const {
    RequireIdleFor(std::string(participle) + " while it is being ");
  }

 private:
  void RequireIdleFor(const std::string& what) const {
    if (!activity.empty()) throw Failure(("The unit can't be " + what).append(activity));
  }

  CapeValidationStatus validity = CAPE_NOT_VALIDATED;
  std::string text;  // empty while nothing is known, which needs no memory
  unsigned changes = 0;
  std::string_view activity;  // empty while there is none
};

}  // namespace morvelan
