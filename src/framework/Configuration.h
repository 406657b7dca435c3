#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "framework/BaseUnit.h"
#include "framework/Settings.h"
#include "morvelan.h"

namespace morvelan {

// What a configuration holds, and what is wrong with it.

/// A whole number between two bounds, or `otherwise` when the key is absent. Throws Failure.
[[nodiscard]] std::int32_t ReadConfiguredCount(const Json& configuration, const char* key, std::int32_t lowest,
                                               std::int32_t highest, std::int32_t otherwise);

/// The position among `choices` of a text, ignoring case, or `otherwise` when the key is absent. Throws
/// Failure.
[[nodiscard]] std::size_t ReadConfiguredChoice(const Json& configuration, const char* key,
                                               const std::vector<std::string>& choices, std::size_t otherwise);

/// A unit with more to tell it than its parameters: `class X : public Configurable<StreamUnit>`.
template <class Base>
class Configurable : public com::Implements<Base, IUnitConfiguration> {
 public:
  using com::Implements<Base, IUnitConfiguration>::Implements;

  HRESULT GetConfiguration(BSTR* json) override {
    if (!json) return E_POINTER;
    *json = nullptr;
    return this->Guard("GetConfiguration", "IUnitConfiguration", [&] {
      this->RequireInitialized();
      *json = com::ToBstr(Configuration().dump()).Detach();
    });
  }

  /// A bad object changes nothing.
  HRESULT SetConfiguration(BSTR json) override {
    return this->Guard("SetConfiguration", "IUnitConfiguration", [&] {
      this->RequireInitialized();
      this->RequireIdle();
      const typename Base::Activity busy(*this, "configured");
      Configure(ParseConfiguration(com::ToUtf8(json), Configuration()));
      this->ParameterChanged();
    });
  }

 protected:
  /// Every key with what is in force.
  [[nodiscard]] virtual Json Configuration() const = 0;
  /// Puts the keys that are given in force. Throws before it changes anything.
  virtual void Configure(const Json& configuration) = 0;

  [[nodiscard]] GUID AutomationType() const override { return __uuidof(DConfigurableUnit); }
};

}  // namespace morvelan
