#pragma once

#include <optional>
#include <vector>

#include "com/Object.h"
#include "com/Owned.h"

namespace morvelan::com {

/// What an object offers to scripts beyond its interfaces.
class AutomationOwner {
 public:
  /// The dispatch interface in the type library that lists the names of all the object's interfaces.
  [[nodiscard]] virtual GUID AutomationType() const = 0;
  /// A value that a script puts into a property, in the form that the property takes; nothing to leave it as
  /// it is.
  [[nodiscard]] virtual std::optional<Variant> AdaptPut(REFIID, DISPID, const VARIANT&) const { return std::nullopt; }
  [[nodiscard]] virtual std::vector<Face> Faces() = 0;
  [[nodiscard]] virtual IUnknown* Identity() = 0;

 protected:
  ~AutomationOwner() = default;
};

/// The one dispatch interface of an object, which knows the members of all its interfaces: a script has no
/// other way to them. A member's identifier is that of its interface with the interface's place (from 1) in
/// the upper half.
class Automation final : public IDispatch {
 public:
  explicit Automation(AutomationOwner& automated) : owner(automated) {}
  virtual ~Automation() = default;

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override;
  ULONG Release() override;
  HRESULT GetTypeInfoCount(UINT* count) override;
  HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
  HRESULT Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                 EXCEPINFO* exception, UINT* argumentError) override;

 private:
  AutomationOwner& owner;
};

}  // namespace morvelan::com
