#include "framework/CParameter.h"

#include <utility>

#include "com/Text.h"
#include "framework/BaseUnit.h"

namespace morvelan {

CParameter::CParameter(const ParameterDeclaration& declaration, BaseUnit* owner)
    : Implements(declaration.name, declaration.description),
      value(declaration.defaultValue),
      defaultValue(declaration.defaultValue),
      mode(declaration.mode),
      lowerBound(declaration.lowerBound),
      upperBound(declaration.upperBound),
      dimensionality(declaration.dimensionality),
      options(declaration.options),
      restrictedToList(declaration.restrictedToList),
      unit(owner) {}

template <class Body>
HRESULT CParameter::Enter(std::string_view scope, Body&& body) {
  return Guard(scope, "ICapeParameter", [&] {
    if (isArrayMember)
      throw Failure(UnitError{"not a parameter",
                              "Interface is not a parameter, but member of a parameter array", scope,
                              "ICapeParameter"});
    body();
  });
}

HRESULT CParameter::get_Specification(IDispatch** specification) {
  if (!specification) return E_POINTER;
  *specification = nullptr;
  return Enter("get_Specification", [&] {
    com::Ref<IDispatch> self = com::Query<IDispatch>(static_cast<ICapeParameter*>(this));
    if (!self) throw Failure("Failed to get IDispatch from parameter");
    *specification = self.Detach();
  });
}

HRESULT CParameter::get_value(VARIANT* result) {
  if (!result) return E_POINTER;
  VariantInit(result);
  return Enter("get_value", [&] { *result = ToVariant(value).Detach(); });
}

HRESULT CParameter::put_value(VARIANT newValue) {
  return Enter("put_value", [&] {
    ReadValue read = ReadParameterValue(Kind(), newValue);
    if (read.value) read.fault = Check(*read.value);
    if (!read.fault.empty()) throw Failure(read.fault);
    Put(std::move(*read.value));
  });
}

HRESULT CParameter::get_ValStatus(CapeValidationStatus* status) {
  if (!status) return E_POINTER;
  return Enter("get_ValStatus", [&] { *status = valStatus; });
}

HRESULT CParameter::get_Mode(CapeParamMode* result) {
  if (!result) return E_POINTER;
  return Enter("get_Mode", [&] { *result = mode; });
}

HRESULT CParameter::put_Mode(CapeParamMode) {
  return Enter("put_Mode", [&] {
    throw Failure("The mode of parameter " + ComponentName() +
                  " follows from the unit's specification and can't be set");
  });
}

HRESULT CParameter::Validate(BSTR* message, VARIANT_BOOL* isValid) {
  if (!message || !isValid) return E_POINTER;
  *isValid = VARIANT_FALSE;
  return Enter("Validate", [&] {
    const std::string fault = CheckCurrentValue();
    ReplaceText(message, fault);
    *isValid = com::ToVariantBool(fault.empty());
  });
}

HRESULT CParameter::Reset() {
  return Enter("Reset", [&] {
    valStatus = CAPE_NOT_VALIDATED;
    if (Kind() != CAPE_ARRAY) SetResult(defaultValue);
    if (unit) unit->ParameterChanged();
  });
}

std::optional<std::size_t> CParameter::OptionIndex() const {
  const auto* chosen = std::get_if<std::string>(&value);
  for (std::size_t i = 0; chosen && i < options.size(); ++i)
    if (com::EqualNoCase(options[i], *chosen)) return i;
  return std::nullopt;
}

void CParameter::BindDouble(double* mirror) {
  boundDouble = mirror;
  *mirror = std::get<double>(value);
}

void CParameter::SetResult(ParameterValue result) {
  value = std::move(result);
  if (boundDouble) *boundDouble = std::get<double>(value);
}

void CParameter::Put(ParameterValue newValue) {
  SetResult(std::move(newValue));
  valStatus = CAPE_NOT_VALIDATED;
  if (unit) unit->ParameterPut(*this);
}

std::string CParameter::CheckCurrentValue() {
  std::string fault = Check(value);
  valStatus = fault.empty() ? CAPE_VALID : CAPE_INVALID;
  return fault;
}

void CParameter::Orphan() {
  unit = nullptr;
  boundDouble = nullptr;
}

ValueLimits CParameter::Limits() const {
  return {.boundsChecked = mode == CAPE_INPUT,
          .lower = lowerBound,
          .upper = upperBound,
          .allowed = restrictedToList ? &options : nullptr};
}

std::string CParameter::Check(const ParameterValue& candidate) const {
  std::string fault = CheckLimits(candidate, Limits());
  if (!fault.empty() || !unit) return fault;
  if (unit->ValidateParameterValue(*this, fault, candidate)) return {};
  return fault.empty() ? "value refused by the unit" : fault;
}

}  // namespace morvelan
