#include "framework/CParameter.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "framework/UnitOwner.h"

namespace morvelan {

CParameter::CParameter(const ParameterDeclaration& declaration, UnitOwner* owner)
    : Implements(declaration),
      value(declaration.defaultValue),
      hasFixedChoices(restrictedToList && !options.empty()),
      unit(owner) {}

CParameter::CParameter(ParameterRecord record, UnitOwner* owner)
    : CParameter(ParameterDeclaration{.name = "", .description = "", .defaultValue = record.value}, owner) {
  // The record has one default for all elements of an array.
  if (auto* initial = std::get_if<std::vector<double>>(&defaultValue))
    initial->assign(std::max<std::size_t>(initial->size(), 1), std::get<double>(record.defaultValue));
  Restore(std::move(record));
}

template <class Tell>
void CParameter::TellUnit(Tell&& tell) {
  if (!unit) return;
  const auto alive = unit->KeepAlive();
  tell(*unit);
}

template <class Body>
HRESULT CParameter::Enter(std::string_view scope, Body&& body) {
  return Guard(scope, "ICapeParameter", [&] {
    if (isArrayMember)
      throw Failure(UnitError{"not a parameter", "Interface is not a parameter, but member of a parameter array", scope,
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
  return Enter("get_value", [&] {
    if (unavailable) throw Failure(unavailable);
    *result = ToVariant(value).Detach();
  });
}

HRESULT CParameter::put_value(VARIANT newValue) {
  return Enter("put_value", [&] {
    ReadValue read = ReadParameterValue(Kind(), newValue, Limits());
    if (read.value) read.fault = AskUnit(*read.value);
    if (!read.fault.empty()) throw Failure(read.fault);
    Put(std::move(*read.value));
  });
}

HRESULT CParameter::get_ValStatus(CapeValidationStatus* status) {
  if (!status) return E_POINTER;
  *status = CAPE_NOT_VALIDATED;
  return Enter("get_ValStatus", [&] { *status = valStatus; });
}

HRESULT CParameter::get_Mode(CapeParamMode* result) {
  if (!result) return E_POINTER;
  *result = CAPE_INPUT;
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
    TellUnit([](UnitOwner& owner) { owner.ParameterChanged(); });
  });
}

std::optional<std::size_t> CParameter::OptionIndex() const {
  const auto* chosen = std::get_if<std::string>(&value);
  for (std::size_t i = 0; chosen && i < options.size(); ++i)
    if (com::EqualNoCase(options[i], *chosen)) return i;
  return std::nullopt;
}

void CParameter::SetResult(ParameterValue result) {
  if (result.index() != value.index())
    throw std::logic_error("a value of another kind than parameter " + ComponentName());
  value = std::move(result);
}

void CParameter::Put(ParameterValue newValue) {
  SetResult(std::move(newValue));
  valStatus = CAPE_NOT_VALIDATED;
  TellUnit([&](UnitOwner& owner) { owner.ParameterPut(*this); });
}

std::string CParameter::CheckCurrentValue() {
  valStatus = CAPE_INVALID;  // also when the check can't be carried out
  std::string fault = Recorded("Validate", "ICapeParameter", [&] { return Check(value); });
  if (fault.empty()) valStatus = CAPE_VALID;
  return fault;
}

ParameterRecord CParameter::Record() const {
  ParameterRecord record{.name = ComponentName(),
                         .description = ComponentDescription(),
                         .mode = mode,
                         .flagWord = flagWord,
                         .dimensionality = dimensionality,
                         .value = value,
                         .defaultValue = defaultValue,
                         .lowerBound = lowerBound,
                         .upperBound = upperBound,
                         .options = options,
                         .restrictedToList = restrictedToList};
  if (const auto* initial = std::get_if<std::vector<double>>(&defaultValue))
    record.defaultValue = initial->empty() ? lowerBound : initial->front();
  return record;
}

void CParameter::Restore(ParameterRecord record) noexcept {
  SetIdentification(std::move(record.name), std::move(record.description));
  mode = record.mode;
  flagWord = record.flagWord;
  dimensionality = record.dimensionality;
  // An array keeps its own initial elements: the record has the default of one.
  if (Kind() != CAPE_ARRAY) defaultValue = std::move(record.defaultValue);
  lowerBound = record.lowerBound;
  upperBound = record.upperBound;
  if (!hasFixedChoices) {
    options = std::move(record.options);
    restrictedToList = record.restrictedToList;
  }
  valStatus = CAPE_NOT_VALIDATED;
  SetResult(std::move(record.value));
}

void CParameter::AppendFaces(std::vector<com::Face>& faces) {
  Implements::AppendFaces(faces);
  // A parameter's own Validate comes before that of its specification.
  const auto specification = std::ranges::find(faces, __uuidof(ICapeParameterSpec), &com::Face::iid);
  std::rotate(specification, std::prev(faces.end()), faces.end());
}

std::optional<com::Variant> CParameter::AdaptPut(REFIID iid, DISPID, const VARIANT& given) const try {
  if (!(iid == __uuidof(ICapeParameter))) return std::nullopt;
  if (Kind() == CAPE_REAL) return com::MakeDouble(com::ReadDouble(given));
  if (Kind() == CAPE_ARRAY) return ToVariant(com::ReadDoubles(given));
  if (Kind() != CAPE_INT) return std::nullopt;
  const double number = com::ReadDouble(given);
  const std::int32_t integer = com::ReadInteger(given);
  if (static_cast<double>(integer) != number) return std::nullopt;
  return com::MakeInteger(integer);
} catch (const com::ValueError&) {
  return std::nullopt;  // to be refused as it is
}

std::string CParameter::Check(const ParameterValue& candidate) const {
  std::string fault =
      isArrayMember ? CheckElement(std::get<double>(candidate), Limits()) : CheckLimits(candidate, Limits());
  return fault.empty() ? AskUnit(candidate) : fault;
}

std::string CParameter::AskUnit(const ParameterValue& candidate) const {
  if (!unit) return {};
  const auto alive = unit->KeepAlive();
  std::string fault;
  const bool accepted = ForwardError({}, {}, [&] { return unit->ValidateParameterValue(*this, fault, candidate); });
  if (accepted) return {};
  return fault.empty() ? "value refused by the unit" : fault;
}

com::Ref<IDispatch> CParameter::MakeElement(std::size_t position) const {
  const auto& initial = std::get<std::vector<double>>(defaultValue);
  ParameterDeclaration element{.name = ComponentName().c_str(),
                               .description = "Element of an array parameter",
                               .mode = mode,
                               .defaultValue = position < initial.size() ? initial[position] : lowerBound,
                               .lowerBound = lowerBound,
                               .upperBound = upperBound,
                               .dimensionality = dimensionality};
  auto member = com::Make<CParameter>(element, nullptr);
  member->isArrayMember = true;
  return com::Query<IDispatch>(static_cast<ICapeParameter*>(member.Get()));
}

}  // namespace morvelan
