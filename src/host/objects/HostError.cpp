#include "host/objects/HostError.h"

#include <new>

#include "com/Values.h"

namespace morvelan::host {

const char* CodeName(HRESULT code) {
  switch (code) {
    case kECapeInvalidArgument:
      return "ECapeInvalidArgument";
    case kECapeOutOfBounds:
      return "ECapeOutOfBounds";
    case kECapeNoImpl:
      return "ECapeNoImpl";
    case kECapeLimitedImpl:
      return "ECapeLimitedImpl";
    case kECapeNoMemory:
      return "ECapeNoMemory";
    case kECapeSolvingError:
      return "ECapeSolvingError";
    case kECapeBadInvOrder:
      return "ECapeBadInvOrder";
    case kECapeThrmPropertyNotAvailable:
      return "ECapeThrmPropertyNotAvailable";
    default:
      return "ECapeUnknown";
  }
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
