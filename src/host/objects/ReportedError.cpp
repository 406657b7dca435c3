#include "host/objects/ReportedError.h"

#include <charconv>
#include <cstdint>

#include "cape_open.h"
#include "com/Ref.h"
#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan::host {
namespace {

template <class Interface>
std::string TextOf(const com::Ref<Interface>& errors, HRESULT (STDMETHODCALLTYPE Interface::*getter)(BSTR*)) {
  com::Bstr text;
  if (!errors || FAILED((errors.Get()->*getter)(text.Put()))) return {};
  return com::ToUtf8(text.Get());
}

std::string CodeText(HRESULT code) {
  if (const auto text = com::SystemMessage(code)) return *text;
  char digits[9] = {};
  std::to_chars(digits, digits + 8, static_cast<std::uint32_t>(code), 16);
  return std::string("error code 0x") + digits;
}

}  // namespace

ReportedError ReportedErrorOf(IUnknown* object, HRESULT code) {
  const auto user = com::Query<ECapeUser>(object);
  ReportedError error{TextOf(com::Query<ECapeRoot>(object), &ECapeRoot::get_name),
                      TextOf(user, &ECapeUser::get_description), TextOf(user, &ECapeUser::get_scope),
                      TextOf(user, &ECapeUser::get_interfaceName)};
  if (error.Text().empty()) error.description = CodeText(code);
  return error;
}

ReportedError ReportedErrorOf(const std::exception& failure) {
  const auto* reported = dynamic_cast<const UnitFailure*>(&failure);
  return reported ? reported->error : ReportedError{"the unit cannot be used", failure.what(), {}, {}};
}

}  // namespace morvelan::host
