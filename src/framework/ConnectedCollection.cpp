#include "framework/ConnectedCollection.h"

#include <algorithm>
#include <cmath>

#include "errors/HostCall.h"
#include "framework/ConnectFailure.h"

namespace morvelan {
namespace {

std::string NameOf(IDispatch* object) {
  const auto identification = com::Query<ICapeIdentification>(object);
  com::Bstr name;
  if (!identification || FAILED(identification->get_ComponentName(name.Put())) || SysStringLen(name.Get()) == 0)
    return "<unknown>";
  return com::ToUtf8(name.Get());
}

std::vector<double> DimensionalityOf(ICapeParameterSpec& specification, const std::string& name) {
  const auto fail = [&](const std::string&) {
    return ConnectFailure("Unable to interpret dimensionality on parameter " + name + " in the object to connect to");
  };
  com::Variant exponents;
  CheckHost(specification.get_Dimensionality(exponents.Put()), &specification, fail);
  try {
    return exponents.Get().vt == VT_EMPTY ? std::vector<double>{} : com::ReadDoubles(exponents.Get());
  } catch (const com::ValueError& error) {
    throw fail(error.what());
  }
}

/// Reads what identifies a parameter of the connected object.
ConnectedParameter Read(IDispatch* object, com::Variant id) {
  const std::string name = NameOf(object);
  const std::string where = "parameter " + name + " in the object to connect to";
  const auto parameter = com::Query<ICapeParameter>(object);
  if (!parameter)
    throw ConnectFailure("Parameter " + name + " of the object to connect to does not return ICapeParameter interface");
  com::Ref<IDispatch> dispatch;
  CheckHost(parameter->get_Specification(dispatch.Put()), parameter.Get(), [&](const std::string& why) {
    return ConnectFailure("get_Specification failed on " + where + ": " + why);
  });
  const auto specification = dispatch.As<ICapeParameterSpec>();
  if (!specification)
    throw ConnectFailure("IDispatch interface returned by get_Specification of " + where +
                         " does not implement ICapeParameterSpec");
  CapeParamType type = CAPE_REAL;
  CheckHost(specification->get_Type(&type), specification.Get(), [&](const std::string& why) {
    return ConnectFailure("get_Type failed on parameter " + name +
                          " specifications in the object to connect to: " + why);
  });
  return {std::move(id), name, DimensionalityOf(*specification, name)};
}

}  // namespace

std::vector<ConnectedParameter> ReadConnectedParameters(ICapeCollection& collection) {
  LONG count = 0;
  CheckHost(collection.Count(&count), &collection, [](const std::string& why) {
    return ConnectFailure(
        "failed to obtain number of information items of ICapeCollection implemented by object to connect "
        "to: " +
        why);
  });
  if (count < 1) throw ConnectFailure("The parameter collection implemented by the object to connect to is empty");
  std::vector<ConnectedParameter> parameters;
  for (LONG i = 1; i <= count; ++i) {
    com::Variant index = com::MakeInteger(i);
    com::Ref<IDispatch> item;
    HRESULT got = collection.Item(index.Get(), item.Put());
    if (SUCCEEDED(got) && !item) got = E_POINTER;
    CheckHost(got, &collection, [](const std::string& why) {
      return ConnectFailure("The parameter collection failed to return one of the parameters: " + why);
    });
    ConnectedParameter parameter = Read(item.Get(), std::move(index));
    if (std::ranges::any_of(parameters,
                            [&](const auto& other) { return com::EqualNoCase(other.name, parameter.name); }))
      throw ConnectFailure("The object to connect two exposes two parameters that go by the name " + parameter.name);
    parameters.push_back(std::move(parameter));
  }
  return parameters;
}

std::optional<ConnectedParameter> FindConnectedParameter(ICapeCollection& collection, const std::string& name) {
  com::Variant id = com::MakeString(name);
  com::Ref<IDispatch> item;
  if (FAILED(collection.Item(id.Get(), item.Put())) || !item) return std::nullopt;
  try {
    return Read(item.Get(), std::move(id));
  } catch (const Failure&) {
    return std::nullopt;
  }
}

bool MatchesDimensionality(const std::vector<double>& exponents, const Dimensionality& expected) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const double wanted = static_cast<double>(expected[i]);
    if (i < exponents.size() ? !(std::abs(exponents[i] - wanted) <= 1e-6) : wanted != 0) return false;
  }
  return true;
}

}  // namespace morvelan
