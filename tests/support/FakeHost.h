#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tests/support/FakeObject.h"

namespace morvelan::test {

/// A simulation context with a log, a pop-up and named values.
class FakeContext final
    : public com::Implements<FakeObject, ICapeSimulationContext, ICapeDiagnostic, ICapeCOSEUtilities> {
 public:
  explicit FakeContext(std::shared_ptr<HostScript> hostScript) : Implements(std::move(hostScript), "context") {}

  HRESULT PopUpMessage(BSTR message) override {
    const HRESULT hr = script->Call("PopUpMessage");
    if (SUCCEEDED(hr)) popUps.push_back(com::ToUtf8(message));
    return hr;
  }
  HRESULT LogMessage(BSTR message) override {
    const HRESULT hr = script->Call("LogMessage");
    if (SUCCEEDED(hr)) log.push_back(com::ToUtf8(message));
    return hr;
  }
  HRESULT get_NamedValueList(VARIANT* list) override {
    const HRESULT hr = script->Call("NamedValueList");
    if (FAILED(hr)) return hr;
    std::vector<std::string> names;
    for (const auto& [name, value] : namedValues) names.push_back(name);
    return script->Answer(com::MakeStrings(names), list);
  }
  HRESULT get_NamedValue(BSTR name, VARIANT* value) override {
    const HRESULT hr = script->Call("NamedValue", com::Name(name));
    const auto found = std::ranges::find_if(namedValues, [&](const auto& entry) {
      const std::string wanted = com::ToUtf8(name);
      return ignoresCase ? com::EqualNoCase(entry.first, wanted) : entry.first == wanted;
    });
    if (FAILED(hr) || found == namedValues.end()) return FAILED(hr) ? hr : E_INVALIDARG;
    return script->Answer(com::Copy(found->second.Get()), value);
  }

  std::map<std::string, com::Variant> namedValues;
  bool ignoresCase = false;
  bool hidesDispatch = false;
  std::vector<std::string> log;
  std::vector<std::string> popUps;

 protected:
  void* FindInterface(REFIID iid) override {
    return hidesDispatch && iid == __uuidof(IDispatch) ? nullptr : Implements::FindInterface(iid);
  }
};

/// A parameter of an energy or information stream.
class FakeParameter final : public com::Implements<FakeObject, ICapeParameter, ICapeParameterSpec> {
 public:
  FakeParameter(std::shared_ptr<HostScript> hostScript, std::string parameterName, std::vector<double> exponents,
                double initial)
      : Implements(std::move(hostScript), std::move(parameterName)),
        dimensionality(std::move(exponents)),
        value(com::MakeDouble(initial)) {}

  HRESULT get_Specification(IDispatch** specification) override {
    const HRESULT hr = script->Call("get_Specification");
    if (FAILED(hr)) return hr;
    AddRef();
    *specification = static_cast<ICapeParameter*>(this);
    return S_OK;
  }
  HRESULT get_value(VARIANT* result) override {
    const HRESULT hr = script->Call("get_value");
    return FAILED(hr) ? hr : script->Answer(com::Copy(value.Get()), result);
  }
  HRESULT put_value(VARIANT newValue) override {
    const HRESULT hr = script->Call("put_value");
    if (SUCCEEDED(hr)) value = com::Copy(newValue);
    return hr;
  }
  HRESULT get_ValStatus(CapeValidationStatus*) override { return E_NOTIMPL; }
  HRESULT get_Mode(CapeParamMode*) override { return E_NOTIMPL; }
  HRESULT put_Mode(CapeParamMode) override { return E_NOTIMPL; }
  HRESULT Validate(BSTR*, VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT Reset() override { return E_NOTIMPL; }
  HRESULT get_Type(CapeParamType* type) override {
    *type = CAPE_REAL;
    return script->Call("get_Type");
  }
  HRESULT get_Dimensionality(VARIANT* result) override {
    const HRESULT hr = script->Call("get_Dimensionality");
    if (FAILED(hr)) return hr;
    return script->Answer(dimensionality.empty() ? com::Variant() : com::MakeDoubles(dimensionality), result);
  }

  std::vector<double> dimensionality;
  com::Variant value;

 protected:
  void* FindInterface(REFIID iid) override {
    if (Refuses<ICapeParameter>(iid, "QueryInterface ICapeParameter") ||
        Refuses<ICapeParameterSpec>(iid, "QueryInterface ICapeParameterSpec"))
      return nullptr;
    return Implements::FindInterface(iid);
  }
};

/// An energy or information stream: a collection of parameters. Some hosts count fewer than answer by name.
class FakeStream final : public com::Implements<FakeObject, ICapeCollection> {
 public:
  explicit FakeStream(std::shared_ptr<HostScript> hostScript) : Implements(std::move(hostScript), "stream") {}

  FakeParameter& Add(const std::string& parameterName, std::vector<double> dimensionality, double value) {
    parameters.push_back(com::Make<FakeParameter>(script, parameterName, std::move(dimensionality), value));
    return *parameters.back();
  }

  HRESULT Count(LONG* count) override {
    *count = counted < 0 ? static_cast<LONG>(parameters.size()) : counted;
    return script->Call("Count");
  }
  HRESULT Item(VARIANT id, IDispatch** item) override {
    const HRESULT hr = script->Call("Item");
    if (FAILED(hr)) return hr;
    for (std::size_t i = 0; i < parameters.size(); ++i)
      if (id.vt == VT_BSTR ? com::EqualNoCase(com::ToUtf8(id.bstrVal), parameters[i]->name)
                           : id.lVal == static_cast<LONG>(i) + 1) {
        *item = com::Query<IDispatch>(static_cast<ICapeParameter*>(parameters[i].Get())).Detach();
        return S_OK;
      }
    return E_INVALIDARG;
  }

  LONG counted = -1;
  std::vector<com::Ref<FakeParameter>> parameters;

 protected:
  void* FindInterface(REFIID iid) override {
    if (Refuses<ICapeCollection>(iid, "QueryInterface ICapeCollection")) return nullptr;
    return Implements::FindInterface(iid);
  }
};

}  // namespace morvelan::test
