#pragma once

#include <string>
#include <vector>

#include "cape_open.h"
#include "com/Ref.h"
#include "com/Values.h"

namespace morvelan::test {

/// What a call of a unit or of one of its parts returns that fails with an error of its own.
inline constexpr HRESULT kFailed = static_cast<HRESULT>(0x80040501u);

/// The four texts of an object's last failure.
struct Texts {
  std::string name;
  std::string description;
  std::string scope;
  std::string interfaceName;

  bool operator==(const Texts&) const = default;
};

template <class Interface, class Object>
std::string TextFrom(Object* object, HRESULT (Interface::*getter)(BSTR*)) {
  const auto target = com::Query<Interface>(object);
  com::Bstr text;
  if (!target || FAILED((target.Get()->*getter)(text.Put()))) return "<failed>";
  return com::ToUtf8(text.Get());
}

template <class Object>
Texts ErrorOf(Object* object) {
  return {TextFrom(object, &ECapeRoot::get_name), TextFrom(object, &ECapeUser::get_description),
          TextFrom(object, &ECapeUser::get_scope), TextFrom(object, &ECapeUser::get_interfaceName)};
}

inline std::ostream& operator<<(std::ostream& out, const Texts& texts) {
  return out << "{name: \"" << texts.name << "\", description: \"" << texts.description << "\", scope: \""
             << texts.scope << "\", interface: \"" << texts.interfaceName << "\"}";
}

/// A unit as a host holds it.
struct UnitDoor {
  com::Ref<ICapeUnit> unit;
  com::Ref<ICapeUtilities> utilities;
  com::Ref<ICapeUnitReport> reports;

  explicit UnitDoor(const com::Ref<IUnknown>& object)
      : unit(object.As<ICapeUnit>()), utilities(object.As<ICapeUtilities>()), reports(object.As<ICapeUnitReport>()) {}

  [[nodiscard]] com::Ref<ICapeCollection> Ports() const {
    com::Ref<IDispatch> collection;
    return FAILED(unit->get_ports(collection.Put())) ? nullptr : collection.As<ICapeCollection>();
  }
  [[nodiscard]] com::Ref<ICapeCollection> Parameters() const {
    com::Ref<IDispatch> collection;
    return FAILED(utilities->get_parameters(collection.Put())) ? nullptr : collection.As<ICapeCollection>();
  }
  [[nodiscard]] com::Ref<ICapeUnitPort> Port(const std::string& name) const {
    return ItemOf(Ports(), name).As<ICapeUnitPort>();
  }
  [[nodiscard]] com::Ref<ICapeParameter> Parameter(const std::string& name) const {
    return ItemOf(Parameters(), name).As<ICapeParameter>();
  }
  [[nodiscard]] std::string ParameterText(const std::string& name) const {
    com::Variant value;
    const auto parameter = Parameter(name);
    return parameter && SUCCEEDED(parameter->get_value(value.Put())) ? com::ReadString(value.Get()) : "<failed>";
  }
  [[nodiscard]] CapeValidationStatus Status() const {
    CapeValidationStatus status = CAPE_NOT_VALIDATED;
    unit->get_ValStatus(&status);
    return status;
  }
  /// Validates; the message goes to `message`.
  [[nodiscard]] bool IsValid(std::string& message, HRESULT* outcome = nullptr) const {
    com::Bstr text;
    VARIANT_BOOL valid = VARIANT_FALSE;
    const HRESULT hr = unit->Validate(text.Put(), &valid);
    if (outcome) *outcome = hr;
    message = com::ToUtf8(text.Get());
    return SUCCEEDED(hr) && valid != VARIANT_FALSE;
  }
  [[nodiscard]] std::string Report(const std::string& name) const {
    if (FAILED(reports->put_selectedReport(com::ToBstr(name).Get()))) return "<failed>";
    com::Bstr text;
    return FAILED(reports->ProduceReport(text.Put())) ? "<failed>" : com::ToUtf8(text.Get());
  }

 private:
  /// Null where there is no such item.
  static com::Ref<IDispatch> ItemOf(const com::Ref<ICapeCollection>& collection, const std::string& name) {
    com::Ref<IDispatch> item;
    if (collection) (void)collection->Item(com::MakeString(name).Get(), item.Put());
    return item;
  }
};

}  // namespace morvelan::test
