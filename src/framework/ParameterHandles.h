#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "framework/CParameter.h"
#include "material/MissingValue.h"

namespace morvelan {

// A unit's ways to parameters of its own: members of the unit, which its constructor declares. They lead to the
// parameters once the unit is initialized or loaded.

/// What all of them share.
class ParameterHandle {
 public:
  ParameterHandle() = default;
  ParameterHandle(const ParameterHandle&) = delete;
  ParameterHandle& operator=(const ParameterHandle&) = delete;

  [[nodiscard]] bool Exists() const { return parameter; }
  [[nodiscard]] const CParameter& Parameter() const { return *parameter; }
  [[nodiscard]] const std::string& Name() const { return parameter->ComponentName(); }
  [[nodiscard]] bool IsInput() const { return parameter->Mode() == CAPE_INPUT; }
  [[nodiscard]] bool Is(const CParameter& other) const { return parameter == &other; }

 protected:
  friend class DeclaredParameters;
  friend class DeclaredSettings;
  CParameter* parameter = nullptr;  // of the unit's list
};

/// A real number in SI units, which reads as one.
class Real : public ParameterHandle {
 public:
  operator double() const { return std::get<double>(parameter->Value()); }  // NOLINT: it is one
  [[nodiscard]] bool IsSet() const { return !IsMissing(*this); }
  /// Nothing when it is not set.
  [[nodiscard]] std::optional<double> Given() const { return IsSet() ? std::optional<double>(*this) : std::nullopt; }
  /// As a result; empty if it is not known.
  void Publish(std::optional<double> result) { parameter->SetResult(result.value_or(kMissingValue)); }
};

class Integer : public ParameterHandle {
 public:
  operator std::int32_t() const { return std::get<std::int32_t>(parameter->Value()); }  // NOLINT: it is one
  void Publish(std::int32_t result) { parameter->SetResult(result); }
};

class Flag : public ParameterHandle {
 public:
  explicit operator bool() const { return std::get<bool>(parameter->Value()); }
};

/// A list of real numbers.
class Array : public ParameterHandle {
 public:
  operator std::span<const double>() const { return Values(); }  // NOLINT: it is one
  [[nodiscard]] const std::vector<double>& Values() const { return std::get<std::vector<double>>(parameter->Value()); }
  void Publish(std::vector<double> result) { parameter->SetResult(std::move(result)); }
};

/// One of several texts.
class OptionHandle : public ParameterHandle {
 public:
  [[nodiscard]] const std::string& Text() const { return std::get<std::string>(parameter->Value()); }
  /// Its position among the choices; empty if a host or a stream left another text.
  [[nodiscard]] std::optional<std::size_t> Place() const { return parameter->OptionIndex(); }
  void SetChoices(std::vector<std::string> choices) { parameter->SetOptions(std::move(choices)); }
};

/// One of several texts, known to the unit by the values of an enumeration in their order.
template <class Enum>
class Option : public OptionHandle {
 public:
  [[nodiscard]] std::optional<Enum> Find() const {
    const auto place = Place();
    return place ? std::optional(static_cast<Enum>(*place)) : std::nullopt;
  }
  [[nodiscard]] bool Is(Enum value) const { return Find() == value; }
  /// Throws Failure.
  operator Enum() const {  // NOLINT: it is one
    if (const auto found = Find()) return *found;
    throw Failure(UnitError{"Invalid type", "Invalid value for parameter " + Name(), "Calculate", "ICapeUnit"});
  }
};

}  // namespace morvelan
