#include "host/objects/HostError.h"

#include <new>

#include "com/Values.h"

namespace morvelan::host {
namespace {

constexpr struct {
  HRESULT code;
  const char* name;
} kCodeNames[] = {{kECapeInvalidArgument, "ECapeInvalidArgument"},
                  {kECapeOutOfBounds, "ECapeOutOfBounds"},
                  {kECapeNoImpl, "ECapeNoImpl"},
                  {kECapeLimitedImpl, "ECapeLimitedImpl"},
                  {kECapeNoMemory, "ECapeNoMemory"},
                  {kECapeSolvingError, "ECapeSolvingError"},
                  {kECapeBadInvOrder, "ECapeBadInvOrder"},
                  {kECapeThrmPropertyNotAvailable, "ECapeThrmPropertyNotAvailable"}};

}  // namespace

const char* CodeName(HRESULT code) {
  for (const auto& known : kCodeNames)
    if (known.code == code) return known.name;
  return "ECapeUnknown";
}

HostError CurrentError() {
  try {
    throw;
  } catch (const HostError& error) {
    return error;
  } catch (const com::ValueError& error) {
    return {kECapeInvalidArgument, error.what()};
  } catch (const std::invalid_argument& error) {
    return {kECapeInvalidArgument, error.what()};
  } catch (const std::runtime_error& error) {
    return {kECapeSolvingError, error.what()};
  } catch (const std::bad_alloc&) {
    return {kECapeNoMemory, "out of memory"};
  } catch (const std::exception& error) {
    return {kECapeUnknown, error.what()};
  } catch (...) {
    return {kECapeUnknown, "unknown error"};
  }
}

}  // namespace morvelan::host
