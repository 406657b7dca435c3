#pragma once

#include <optional>
#include <string>
#include <vector>

#include "framework/ParameterRecord.h"
#include "framework/ParameterSpecification.h"

namespace morvelan {

class UnitOwner;

/// An input or a result of a unit: a typed value with its specification, which is the same object.
///
/// An element of an array parameter is such an object too (`isArrayMember`): it has a specification but is no
/// parameter.
class CParameter final : public com::Implements<ParameterSpecification, ICapeParameter> {
 public:
  CParameter(const ParameterDeclaration& declaration, UnitOwner* owner);
  /// A parameter that a record describes.
  CParameter(ParameterRecord record, UnitOwner* owner);

  // ICapeParameter
  HRESULT get_Specification(IDispatch** specification) override;
  HRESULT get_value(VARIANT* result) override;
  HRESULT put_value(VARIANT newValue) override;
  HRESULT get_ValStatus(CapeValidationStatus* status) override;
  HRESULT get_Mode(CapeParamMode* result) override;
  HRESULT put_Mode(CapeParamMode newMode) override;
  HRESULT Validate(BSTR* message, VARIANT_BOOL* isValid) override;
  HRESULT Reset() override;

  [[nodiscard]] const ParameterValue& Value() const { return value; }
  /// The position of an option's value in its list, ignoring case; nothing when it is not in the list.
  [[nodiscard]] std::optional<std::size_t> OptionIndex() const;

  [[nodiscard]] bool IsResult() const { return mode == CAPE_OUTPUT; }
  /// A word that is saved with the parameter, for its unit to use.
  [[nodiscard]] std::int32_t FlagWord() const { return flagWord; }
  void SetFlagWord(std::int32_t word) { flagWord = word; }
  /// Makes hosts that read the value fail with a reason, until it is null. Putting a value is always
  /// possible.
  void SetUnavailable(const char* reason) { unavailable = reason; }
  /// Stores a value that the unit gives: checked by nobody, and the unit stays as valid as it was.
  void SetResult(ParameterValue result);
  /// Stores a value as if the host had put it, and tells the unit. The value is not checked.
  void Put(ParameterValue newValue);
  /// Checks the current value and remembers the outcome; returns the fault, empty when valid.
  [[nodiscard]] std::string CheckCurrentValue();
  [[nodiscard]] ParameterRecord Record() const;
  /// Becomes what a record of its own kind says; the unit is not told.
  void Restore(ParameterRecord record) noexcept;
  /// The unit is going; the parameter may stay with the host.
  void DetachFromUnit() { unit = nullptr; }

 protected:
  void AppendFaces(std::vector<com::Face>& faces) override;
  [[nodiscard]] std::size_t ElementCount() const override { return std::get<std::vector<double>>(value).size(); }
  [[nodiscard]] com::Ref<IDispatch> MakeElement(std::size_t position) const override;
  [[nodiscard]] std::string Check(const ParameterValue& candidate) const override;
  [[nodiscard]] std::string AskUnit(const ParameterValue& candidate) const override;

 private:
  /// Scripts know numbers, not the forms that a parameter's value must have exactly.
  [[nodiscard]] std::optional<com::Variant> AdaptPut(REFIID iid, DISPID member, const VARIANT& given) const override;

  template <class Body>
  HRESULT Enter(std::string_view scope, Body&& body);
  /// Tells the unit of something, if it still exists.
  template <class Tell>
  void TellUnit(Tell&& tell);

  ParameterValue value;
  /// Units know their choices by position: those of another version must not take their places.
  const bool hasFixedChoices;
  std::int32_t flagWord = 0;
  CapeValidationStatus valStatus = CAPE_NOT_VALIDATED;
  bool isArrayMember = false;
  const char* unavailable = nullptr;
  UnitOwner* unit;  // absent for array members and once the unit is gone
};

}  // namespace morvelan
