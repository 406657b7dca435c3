#pragma once

#include "server/ClassTable.h"

namespace morvelan::server {

/// Makes units of one class for hosts.
class ClassFactory final : public com::ObjectCore, public IClassFactory {
 public:
  explicit ClassFactory(const UnitClass& madeClass) : unitClass(madeClass) {}

  HRESULT QueryInterface(REFIID iid, void** object) override;
  ULONG AddRef() override { return AddReference(); }
  ULONG Release() override { return DropReference(); }
  HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT LockServer(BOOL lock) override;

 private:
  const UnitClass& unitClass;
};

}  // namespace morvelan::server
