#include "framework/SimulationContext.h"

#include <algorithm>

#include "material/Names.h"

namespace morvelan {

SimulationContext::SimulationContext(com::Ref<IDispatch> hostContext)
    : context(std::move(hostContext)), utilities(context.As<ICapeCOSEUtilities>()) {}

bool SimulationContext::Lists(com::Name namedValue) const {
  com::Variant list;
  if (!utilities || FAILED(utilities->get_NamedValueList(list.Put()))) return false;
  try {
    return std::ranges::any_of(com::ReadVariants(list.Get()), [&](const com::Variant& name) {
      return name.Get().vt == VT_BSTR && com::Name(name.Get().bstrVal) == namedValue;
    });
  } catch (const com::ValueError&) {
    return false;
  }
}

std::optional<com::Variant> SimulationContext::NamedValue(com::Name name) const {
  com::Variant value;
  if (!utilities || FAILED(utilities->get_NamedValue(name.text, value.Put()))) return std::nullopt;
  return value;
}

void SimulationContext::FindSimplifiedModelSupport() {
  supportsSimplifiedModel = Lists(names::kSimplifiedModelRequest);
}

bool SimulationContext::SimplifiedModelRequested() const {
  if (!supportsSimplifiedModel) return false;
  const auto value = NamedValue(names::kSimplifiedModelRequest);
  if (!value) return false;
  const VARIANT answer = com::Borrow(value->Get());
  return answer.vt == VT_BOOL && answer.boolVal != VARIANT_FALSE;
}

void SimulationContext::LogMessage(const std::string& text) const {
  if (const auto diagnostic = context.As<ICapeDiagnostic>()) diagnostic->LogMessage(com::ToBstr(text).Get());
}

bool SimulationContext::PopUpMessage(const std::string& text) const {
  const auto diagnostic = context.As<ICapeDiagnostic>();
  return diagnostic && SUCCEEDED(diagnostic->PopUpMessage(com::ToBstr(text).Get()));
}

}  // namespace morvelan
