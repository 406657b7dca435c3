#pragma once

#include <stdexcept>
#include <string>

#include "com/Platform.h"

namespace morvelan::host {

// The standard's failure codes that the host's objects return.
inline constexpr HRESULT kECapeUnknown = static_cast<HRESULT>(0x80040501u);
inline constexpr HRESULT kECapeInvalidArgument = static_cast<HRESULT>(0x80040506u);
inline constexpr HRESULT kECapeOutOfBounds = static_cast<HRESULT>(0x80040507u);
inline constexpr HRESULT kECapeNoImpl = static_cast<HRESULT>(0x80040509u);
inline constexpr HRESULT kECapeLimitedImpl = static_cast<HRESULT>(0x8004050Au);
inline constexpr HRESULT kECapeNoMemory = static_cast<HRESULT>(0x8004050Du);
inline constexpr HRESULT kECapeSolvingError = static_cast<HRESULT>(0x80040510u);
inline constexpr HRESULT kECapeBadInvOrder = static_cast<HRESULT>(0x80040511u);
inline constexpr HRESULT kECapeThrmPropertyNotAvailable = static_cast<HRESULT>(0x8004051Au);

/// Ends an operation of a host object with one of the codes above.
class HostError : public std::runtime_error {
 public:
  HostError(HRESULT failureCode, const std::string& text) : std::runtime_error(text), code(failureCode) {}

  HRESULT code;
};

/// The standard's name of a code: "ECapeInvalidArgument" and so on.
[[nodiscard]] const char* CodeName(HRESULT code);

/// The code and text of the exception that is being handled. A HostError stays as it is; invalid arguments of the
/// thermodynamics and unreadable values become ECapeInvalidArgument, its other failures ECapeSolvingError.
[[nodiscard]] HostError CurrentError();

}  // namespace morvelan::host
