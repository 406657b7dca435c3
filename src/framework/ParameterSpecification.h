#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/BaseObject.h"
#include "framework/Declarations.h"
#include "framework/ParameterValue.h"

namespace morvelan {

/// What a parameter may be, as hosts ask for it. One object answers as the specification of every kind; those of
/// other kinds than its own refuse each call.
class ParameterSpecification
    : public com::Implements<BaseObject, ICapeParameterSpec, ICapeRealParameterSpec, ICapeIntegerParameterSpec,
                             ICapeOptionParameterSpec, ICapeBooleanParameterSpec, ICapeArrayParameterSpec> {
 public:
  explicit ParameterSpecification(const ParameterDeclaration& declaration);

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

  [[nodiscard]] CapeParamType Kind() const { return static_cast<CapeParamType>(defaultValue.index()); }
  [[nodiscard]] CapeParamMode Mode() const { return mode; }
  [[nodiscard]] const Dimensionality& Dimensions() const { return dimensionality; }
  void SetMode(CapeParamMode newMode) { mode = newMode; }
  void SetOptions(std::vector<std::string> choices) { options = std::move(choices); }

 protected:
  void AppendFaces(std::vector<com::Face>& faces) override;

  /// The number of elements of an array's value.
  [[nodiscard]] virtual std::size_t ElementCount() const = 0;
  /// An object for one element of an array.
  [[nodiscard]] virtual com::Ref<IDispatch> MakeElement(std::size_t position) const = 0;
  /// The fault of a value; empty if there is none.
  [[nodiscard]] virtual std::string Check(const ParameterValue& candidate) const = 0;
  /// What the unit holds against a value; empty when it accepts it.
  [[nodiscard]] virtual std::string AskUnit(const ParameterValue& candidate) const = 0;

  [[nodiscard]] ValueLimits Limits() const;

  ParameterValue defaultValue;
  CapeParamMode mode;
  double lowerBound;
  double upperBound;
  Dimensionality dimensionality;
  std::vector<std::string> options;
  bool restrictedToList;

 private:
  template <class Body>
  HRESULT EnterSpec(CapeParamType kind, std::string_view scope, std::string_view interfaceName, Body&& body);
  HRESULT ValidateCandidate(CapeParamType kind, std::string_view interfaceName,
                            const std::function<ParameterValue()>& candidate, BSTR* message, VARIANT_BOOL* isValid);
};

}  // namespace morvelan
