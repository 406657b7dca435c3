// A library with one unit, which takes a reaction package, passes its feed on and reports what the package
// says of the feed.

#include <cmath>

#include "framework/BaseUnit.h"

namespace morvelan::test {
namespace {

class ReactionTaker final : public com::Implements<BaseUnit, ICapeKineticReactionContext> {
 public:
  ReactionTaker() : Implements(UnitDeclaration{.name = "ReactionTaker", .description = "Takes reactions"}) {
    declare.Port(feed, "Inlet", "feed");
    declare.Port(product, "Outlet", "product");
    declare.ThermoVersion(thermoVersion);
  }

  /// Keeps the package; a unit named "Refusing" does not.
  HRESULT SetReactionObject(IDispatch** object) override {
    com::Bstr name;
    if (FAILED(get_ComponentName(name.Put())) || com::ToUtf8(name.Get()) == "Refusing") return E_ACCESSDENIED;
    package = com::Ref<IDispatch>::Share(*object);
    return S_OK;
  }

  bool ValidateUnit(std::string& message) override {
    message = package ? "" : "no reaction package was given";
    return static_cast<bool>(package);
  }

  void CalculateUnit(int, std::optional<com::Name>&) override {
    product.Leave(feed.State());
    std::string& report = reports.At(1).text;
    report = "without material: " + Asked();
    package.As<ICapeThermoMaterialContext>()->SetMaterial(feed.Object().Get());
    report += "\nln K: " + Asked();  // and leaves the material there
  }

 private:
  /// ln K of the first reaction, or the package's error.
  [[nodiscard]] std::string Asked() const {
    com::Variant ids, values;
    com::Bstr text;
    const com::Bstr property = com::ToBstr("chemicalEquilibriumConstant");
    package.As<ICapeReactionChemistry>()->GetReactionsIds(ids.Put());
    if (FAILED(package.As<ICapeReactionsRoutine>()->CalcReactionProp(
            com::MakeStrings(std::vector<std::string>{"chemicalEquilibriumConstant"}).Get(), nullptr, ids.Get(),
            nullptr))) {
      package.As<ECapeUser>()->get_description(text.Put());
      return com::ToUtf8(text.Get());
    }
    package.As<ICapeReactionProperties>()->GetReactionProp(property.Get(), nullptr, ids.Get(), nullptr, values.Put());
    return std::to_string(std::log(com::ReadDoubles(values.Get()).at(0)));
  }

  InletStream feed;
  OutletStream product;
  OptionHandle thermoVersion;
  com::Ref<IDispatch> package;
};

class Factory final : public com::ObjectCore, public IClassFactory {
 public:
  HRESULT QueryInterface(REFIID, void** object) override {
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return AddReference(); }
  ULONG Release() override { return DropReference(); }
  HRESULT CreateInstance(IUnknown*, REFIID iid, void** object) override {
    return com::Make<ReactionTaker>()->QueryInterface(iid, object);
  }
  HRESULT LockServer(BOOL) override { return S_OK; }
};

}  // namespace
}  // namespace morvelan::test

STDAPI DllGetClassObject(REFCLSID, REFIID iid, void** object) {
  return morvelan::com::Make<morvelan::test::Factory>()->QueryInterface(iid, object);
}
