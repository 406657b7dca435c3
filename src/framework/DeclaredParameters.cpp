#include "framework/DeclaredParameters.h"

#include <algorithm>

namespace morvelan {

DeclaredParameters::~DeclaredParameters() {
  for (const auto& parameter : All()) parameter->DetachFromUnit();
}

ParameterRow& DeclaredParameters::Add(ParameterHandle& handle, ParameterDeclaration declaration) {
  return rows.emplace_back(std::move(declaration), handle);
}

void DeclaredParameters::Create() {
  list.clear();
  further.clear();
  for (const ParameterRow& row : rows) {
    list.push_back(com::Make<CParameter>(row.declaration, &owner));
    row.handle->parameter = list.back().Get();
  }
}

void DeclaredParameters::Refresh() {
  for (const ParameterRow& row : rows)
    if (row.isInput && row.handle->Exists()) row.handle->parameter->SetMode(row.isInput() ? CAPE_INPUT : CAPE_OUTPUT);
}

DeclaredParameters::ParameterList DeclaredParameters::All() const {
  ParameterList all = list;
  all.insert(all.end(), further.begin(), further.end());
  return all;
}

std::size_t DeclaredParameters::PositionOf(const ParameterHandle& handle) const {
  return static_cast<std::size_t>(std::ranges::find(rows, &handle, &ParameterRow::handle) - rows.begin());
}

const CParameter* DeclaredParameters::FindUnset() const {
  for (const ParameterRow& row : rows) {
    const auto* number = std::get_if<double>(&row.handle->Parameter().Value());
    if (number && row.handle->IsInput() && IsMissing(*number) && !row.mayBeUnset) return &row.handle->Parameter();
  }
  return nullptr;
}

std::vector<DeclaredParameters::Keyed> DeclaredParameters::KeptByKey() const {
  std::vector<Keyed> kept;
  for (const ParameterRow& row : rows)
    if (row.keptKey) kept.push_back({row.keptKey, row.handle->parameter, &row.declaration.options});
  return kept;
}

void DeclaredParameters::ReplaceFurther(const std::vector<Further>& wanted, const char* whyUnavailable) {
  ParameterList parameters;
  const auto isAmong = [](const ParameterList& some, const ParameterRef& parameter) {
    return std::ranges::any_of(some, [&](const auto& other) { return other.Get() == parameter.Get(); });
  };
  for (const Further& one : wanted) {
    const auto continues = [&](const ParameterRef& former) {
      return former->ComponentDescription() == one.description && !isAmong(parameters, former);
    };
    const auto former = std::ranges::find_if(further, continues);
    parameters.push_back(former != further.end() ? *former : Make(one, whyUnavailable));
  }
  further.swap(parameters);
  for (const auto& former : parameters)
    if (!isAmong(further, former)) former->DetachFromUnit();
}

DeclaredParameters::ParameterRef DeclaredParameters::Make(const Further& wanted, const char* whyUnavailable) const {
  auto parameter = com::Make<CParameter>(ParameterDeclaration{.name = wanted.name.c_str(),
                                                              .description = wanted.description.c_str(),
                                                              .defaultValue = 0.0,
                                                              .lowerBound = wanted.quantity.lowest,
                                                              .upperBound = wanted.quantity.highest,
                                                              .dimensionality = wanted.quantity.dimension},
                                         &owner);
  parameter->SetUnavailable(whyUnavailable);
  return parameter;
}

}  // namespace morvelan
