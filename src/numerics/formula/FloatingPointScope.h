#pragma once

#include <xmmintrin.h>

namespace morvelan::numerics {

/// Arithmetic on doubles in the default floating-point environment (to nearest, nothing trapped, nothing
/// flushed to zero); the host's is given back at the end, whatever it was. This is the unit that x86-64 has
/// for doubles, and costs little. The standard library's functions for environments do not reach all of it on
/// every platform.
class ArithmeticEnvironment {
 public:
  ArithmeticEnvironment() : host(_mm_getcsr()) {
    if ((host & ~kNoted) != kDefault) _mm_setcsr(kDefault);
  }
  ~ArithmeticEnvironment() { _mm_setcsr(host); }
  ArithmeticEnvironment(const ArithmeticEnvironment&) = delete;
  ArithmeticEnvironment& operator=(const ArithmeticEnvironment&) = delete;

 private:
  static constexpr unsigned kDefault = 0x1F80;
  static constexpr unsigned kNoted = 0x3F;  // faults, that nothing here looks at

  unsigned host;
};

/// The same for the older unit, which functions of a mathematical library may use.
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

/// The whole of it, which costs as much as some sixty additions.
class DefaultEnvironment {
 private:
  ArithmeticEnvironment arithmetic;
  ExtendedEnvironment extended;
};

/// On this platform functions of doubles use the older unit.
extern const bool kLibraryUsesOlderUnit;

}  // namespace morvelan::numerics
