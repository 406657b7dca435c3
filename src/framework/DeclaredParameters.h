#pragma once

#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "framework/CParameter.h"
#include "framework/Declarations.h"
#include "framework/ParameterHandles.h"

namespace morvelan {

/// Between what a real parameter may be, and its dimension; SI units.
struct Quantity {
  double lowest = -std::numeric_limits<double>::max();
  double highest = std::numeric_limits<double>::max();
  Dimensionality dimension = kDimensionless;
};

namespace quantity {

inline constexpr Quantity kTemperature = {0, 1e10, kTemperatureDimension};
inline constexpr Quantity kPressure = {0, 1e10, kPressureDimension};
inline constexpr Quantity kPressureDrop = {0, 1e10, kPressureDropDimension};
inline constexpr Quantity kFraction = {0, 1, kDimensionless};

}  // namespace quantity

/// A declared parameter, for what only some need.
class ParameterRow {
 public:
  ParameterRow(ParameterDeclaration parameter, ParameterHandle& parameterHandle)
      : declaration(std::move(parameter)), handle(&parameterHandle) {}

  ParameterRow& Output() { return declaration.mode = CAPE_OUTPUT, *this; }
  /// The unit can do without a value.
  ParameterRow& MayBeUnset() { return mayBeUnset = true, *this; }
  /// It is an input while an option has one of the values, and a result otherwise.
  template <class Enum, class... Values>
  ParameterRow& InputWhen(const Option<Enum>& option, Values... values) {
    isInput = [&option, values...] { return (option.Is(values) || ...); };
    return *this;
  }
  /// It is a result while an option has one of the values, and an input otherwise.
  template <class Enum, class... Values>
  ParameterRow& ResultWhen(const Option<Enum>& option, Values... values) {
    isInput = [&option, values...] { return !(option.Is(values) || ...); };
    return *this;
  }
  /// An option may have other values than its choices.
  ParameterRow& Unrestricted() { return declaration.restrictedToList = false, *this; }
  /// Streams keep its value under a key too.
  ParameterRow& AlsoKeptAs(const char* key) { return keptKey = key, *this; }

 private:
  friend class DeclaredParameters;
  ParameterDeclaration declaration;
  ParameterHandle* handle;
  std::function<bool()> isInput;
  bool mayBeUnset = false;
  const char* keptKey = nullptr;
};

/// A unit's parameters: the list that hosts see and streams keep, in the order of its rows, and further ones
/// that the unit makes of what it is told.
class DeclaredParameters {
 public:
  using ParameterRef = com::Ref<CParameter>;
  using ParameterList = std::vector<ParameterRef>;

  explicit DeclaredParameters(UnitOwner& unit) : owner(unit) {}
  ~DeclaredParameters();
  DeclaredParameters(const DeclaredParameters&) = delete;
  DeclaredParameters& operator=(const DeclaredParameters&) = delete;

  ParameterRow& Add(ParameterHandle& handle, ParameterDeclaration declaration);
  [[nodiscard]] bool IsEmpty() const { return rows.empty(); }

  /// Makes the parameters of the rows.
  void Create();
  /// Switches modes as options say now.
  void Refresh();
  /// Adds parameters that a stream has beyond the list.
  void Append(const ParameterList& others) { list.insert(list.end(), others.begin(), others.end()); }
  void Reserve(std::size_t more) { list.reserve(list.size() + more); }

  [[nodiscard]] const ParameterList& List() const { return list; }
  /// The list, then the further ones.
  [[nodiscard]] ParameterList All() const;
  [[nodiscard]] std::size_t PositionOf(const ParameterHandle& handle) const;
  /// The first input without a value that the unit can't do without; null when there is none.
  [[nodiscard]] const CParameter* FindUnset() const;

  /// An option that streams keep under a key too.
  struct Keyed {
    const char* key;
    CParameter* parameter;
    const std::vector<std::string>* choices;
  };
  [[nodiscard]] std::vector<Keyed> KeptByKey() const;

  /// A real parameter beyond the list, which is not saved with it.
  struct Further {
    std::string name;
    std::string description;
    Quantity quantity;
  };
  /// Makes the further parameters those that are wanted. One of the same description continues a former one,
  /// wherever it stands now; hosts can't read the values of new ones, for a reason.
  void ReplaceFurther(const std::vector<Further>& wanted, const char* whyUnavailable);
  [[nodiscard]] const ParameterList& FurtherList() const { return further; }

 private:
  [[nodiscard]] ParameterRef Make(const Further& wanted, const char* whyUnavailable) const;

  UnitOwner& owner;
  std::deque<ParameterRow> rows;
  ParameterList list;
  ParameterList further;
};

}  // namespace morvelan
