#include "errors/ErrorText.h"

#include <array>
#include <cstdint>
#include <new>

#include "cape_open.h"
#include "com/Ref.h"
#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan {
namespace {

constexpr std::uint32_t kFirstCode = 0x80040501;

/// One per code from 0x80040501 on; null where the standard's codes have no text of their own.
constexpr std::array<const char*, 26> kCodeTexts = {
    nullptr,
    "invalid data",
    nullptr,
    "Bad Cape-Open parameter",
    "Bad argument",
    "Invalid argument",
    "index out of bounds",
    "current implementation related error",
    "not implemented",
    "implementation is limited",
    "computation error",
    "out of resources",
    "out of memory",
    "operation was timed out",
    "initialization error",
    "solution error",
    "invalid order of invocations",
    "invalid operation",
    "storage / persistence error",
    "illegal access",
    "persistence error: not found",
    "persistence system error",
    "persistence overflow error",
    "solver scope error",
    "Hessian information not available",
    "One or more of the requested thermodynamic properties are not set on the material",
};

std::string SystemText(HRESULT code) try {
  if (auto text = com::SystemMessage(code)) return *text;
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string text = "error code 0x";
  for (int shift = 28; shift >= 0; shift -= 4) text.push_back(kHex[(static_cast<std::uint32_t>(code) >> shift) & 15]);
  return text;
} catch (const std::bad_alloc&) {
  return "<unknown error>";
}

/// The text that a getter of an error interface gives, or empty.
template <class Interface>
std::string TextOf(IUnknown* object, HRESULT (Interface::*getter)(BSTR*)) {
  const auto errors = com::Query<Interface>(object);
  com::Bstr text;
  if (!errors || FAILED((errors.Get()->*getter)(text.Put()))) return {};
  return com::ToUtf8(text.Get());
}

}  // namespace

std::string ErrorText(IUnknown* object, HRESULT code) {
  const std::uint32_t index = static_cast<std::uint32_t>(code) - kFirstCode;
  if (index >= kCodeTexts.size()) return SystemText(code);
  if (std::string text = TextOf(object, &ECapeUser::get_description); !text.empty()) return text;
  if (std::string text = TextOf(object, &ECapeRoot::get_name); !text.empty()) return text;
  return kCodeTexts[index] ? kCodeTexts[index] : "Failed to get error name for ECapeUnknown";
}

}  // namespace morvelan
