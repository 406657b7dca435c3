#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "framework/BaseObject.h"
#include "framework/Declarations.h"
#include "framework/ParameterRecord.h"
#include "framework/ParameterValue.h"

namespace morvelan {

class UnitOwner;

/// An input or a result of a unit: a typed value with its specification. One object answers as the parameter
/// and as every kind of specification; the specifications of other kinds than its own refuse each call.
///
/// An element of an array parameter is such an object too (`isArrayMember`): it has a specification but is no
/// parameter.
class CParameter final : public com::Implements<BaseObject, ICapeParameter, ICapeParameterSpec, ICapeRealParameterSpec,
                                                ICapeIntegerParameterSpec, ICapeOptionParameterSpec,
                                                ICapeBooleanParameterSpec, ICapeArrayParameterSpec> {
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
  // ICapeParameterSpec
  HRESULT get_Type(CapeParamType* type) override;
  HRESULT get_Dimensionality(VARIANT* exponents) override;
  // ICapeRealParameterSpec
  HRESULT get_DefaultValue(double* result) override;
  HRESULT get_LowerBound(double* bound) override;
  HRESULT get_UpperBound(double* bound) override;
  HRESULT Validate(double candidate, BSTR* message, VARIANT_BOOL* isValid) override;
  // ICapeIntegerParameterSpec
  HRESULT get_DefaultValue(LONG* result) override;
  HRESULT get_LowerBound(LONG* bound) override;
  HRESULT get_UpperBound(LONG* bound) override;
  HRESULT Validate(LONG candidate, BSTR* message, VARIANT_BOOL* isValid) override;
  // ICapeOptionParameterSpec
  HRESULT get_DefaultValue(BSTR* result) override;
  HRESULT get_OptionList(VARIANT* list) override;
  HRESULT get_RestrictedToList(VARIANT_BOOL* restricted) override;
  HRESULT Validate(BSTR candidate, BSTR* message, VARIANT_BOOL* isValid) override;
  // ICapeBooleanParameterSpec
  HRESULT get_DefaultValue(VARIANT_BOOL* result) override;
  HRESULT Validate(VARIANT_BOOL candidate, BSTR* message, VARIANT_BOOL* isValid) override;
  // ICapeArrayParameterSpec
  HRESULT get_NumDimensions(LONG* count) override;
  HRESULT get_Size(VARIANT* sizes) override;
  HRESULT get_ItemsSpecifications(VARIANT* specifications) override;
  HRESULT Validate(VARIANT candidate, VARIANT* messages, VARIANT* areValid) override;

  [[nodiscard]] CapeParamType Kind() const { return static_cast<CapeParamType>(value.index()); }
  [[nodiscard]] CapeParamMode Mode() const { return mode; }
  [[nodiscard]] const ParameterValue& Value() const { return value; }
  [[nodiscard]] const Dimensionality& Dimensions() const { return dimensionality; }
  /// The position of an option's value in its list, ignoring case; nothing when it is not in the list.
  [[nodiscard]] std::optional<std::size_t> OptionIndex() const;

  /// Makes `mirror` hold the value of this real parameter from now on. It must live as long as the
  /// parameter's unit.
  void BindDouble(double* mirror);
  void SetMode(CapeParamMode newMode) { mode = newMode; }
  [[nodiscard]] bool IsResult() const { return mode == CAPE_OUTPUT; }
  /// A word that is saved with the parameter, for its unit to use.
  [[nodiscard]] std::int32_t FlagWord() const { return flagWord; }
  void SetFlagWord(std::int32_t word) { flagWord = word; }
  void SetOptions(std::vector<std::string> choices) { options = std::move(choices); }
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
  void Orphan();

 protected:
  void AppendFaces(std::vector<com::Face>& faces) override;

 private:
  /// Scripts know numbers, not the forms that a parameter's value must have exactly.
  [[nodiscard]] std::optional<com::Variant> AdaptPut(REFIID iid, DISPID member, const VARIANT& given) const override;

  template <class Body>
  HRESULT Enter(std::string_view scope, Body&& body);
  template <class Body>
  HRESULT EnterSpec(CapeParamType kind, std::string_view scope, std::string_view interfaceName, Body&& body);
  HRESULT ValidateCandidate(CapeParamType kind, std::string_view interfaceName,
                            const std::function<ParameterValue()>& candidate, BSTR* message, VARIANT_BOOL* isValid);
  [[nodiscard]] com::Ref<CParameter> MakeArrayMember(std::size_t position) const;
  [[nodiscard]] ValueLimits Limits() const;
  [[nodiscard]] std::string Check(const ParameterValue& candidate) const;
  /// What the unit holds against a value; empty when it accepts it.
  [[nodiscard]] std::string AskUnit(const ParameterValue& candidate) const;
  /// Tells the unit of something, if it still exists.
  template <class Tell>
  void TellUnit(Tell&& tell);

  ParameterValue value;
  ParameterValue defaultValue;
  CapeParamMode mode;
  double lowerBound;
  double upperBound;
  Dimensionality dimensionality;
  std::vector<std::string> options;
  bool restrictedToList;
  /// Units know their choices by position: those of another version must not take their places.
  const bool hasFixedChoices;
  std::int32_t flagWord = 0;
  CapeValidationStatus valStatus = CAPE_NOT_VALIDATED;
  bool isArrayMember = false;
  const char* unavailable = nullptr;
  UnitOwner* unit;  // absent for array members and once the unit is gone
  double* boundDouble = nullptr;
};

}  // namespace morvelan
