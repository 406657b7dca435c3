// The entry point through which installers register for one user: regsvr32 /n /i:user.

#include "server/Installation.h"
#include "server/Registration.h"
#include "server/RegistrationRegistry.h"

using namespace morvelan;

STDAPI DllInstall(BOOL install, LPCWSTR target) {
  const auto is = [&](const wchar_t* scope) { return target && lstrcmpiW(target, scope) == 0; };
  if (is(L"user"))
    return server::Install(install ? +[] { server::RegisterClassesIn(HKEY_CURRENT_USER); }
                                   : +[] { server::UnregisterClassesIn(HKEY_CURRENT_USER); });
  if (target && *target && !is(L"machine")) return E_INVALIDARG;
  return server::Install(install ? server::RegisterClasses : server::UnregisterClasses);
}
