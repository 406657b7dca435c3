#pragma once

#include <xmmintrin.h>

namespace morvelan::numerics {

/// Sets the default floating-point environment for arithmetic on doubles (round to nearest, no traps, nothing flushed
/// to zero) and restores the host's environment at the end. It covers the unit that x86-64 uses for doubles (SSE) and
/// costs little. (The standard library's functions for environments do not reach all of it on every platform.)
class ArithmeticEnvironment {
 public:
  ArithmeticEnvironment() : host(_mm_getcsr()) {
    if ((host & ~kFaultFlags) != kDefault) _mm_setcsr(kDefault);
  }
  ~ArithmeticEnvironment() {
    if (_mm_getcsr() != host) _mm_setcsr(host);
  }
  ArithmeticEnvironment(const ArithmeticEnvironment&) = delete;
  ArithmeticEnvironment& operator=(const ArithmeticEnvironment&) = delete;

 private:
  static constexpr unsigned kDefault = 0x1F80;
  static constexpr unsigned kFaultFlags = 0x3F;  // nothing here reads them

  unsigned host;
};

/// Does the same for the older unit (x87), which functions of a mathematical library may use.
class ExtendedEnvironment {
 public:
  ExtendedEnvironment() { asm volatile("fnstenv %0\n\tfninit" : "=m"(host)); }
  ~ExtendedEnvironment() { asm volatile("fldenv %0" : : "m"(host)); }
  ExtendedEnvironment(const ExtendedEnvironment&) = delete;
  ExtendedEnvironment& operator=(const ExtendedEnvironment&) = delete;

 private:
  struct {
    unsigned words[7];
  } host;
};

/// Does the same for both units, which costs as much as some sixty additions.
class DefaultEnvironment {
 private:
  ArithmeticEnvironment arithmetic;
  ExtendedEnvironment extended;
};

/// Whether this platform's functions of doubles use the older unit.
extern const bool kLibraryUsesOlderUnit;

}  // namespace morvelan::numerics
