#pragma once

namespace morvelan::host {

// Peng and Robinson, Ind. Eng. Chem. Fundam. 15 (1976) 59: P = RT/(v-b) - a(T)/(v^2 + 2bv - b^2).
//
// All functions use three dimensionless variables: w = v/b, p = P b/(RT) and e = a/(bRT). The equation is then p =
// 1/(w-1) - e/(w^2 + 2w - 1).

// The published 0.45724 and 0.07780 to all digits: with c = 1/(1 + cbrt(4-sqrt(8)) + cbrt(4+sqrt(8))) the critical
// point conditions give Omega_a = (8+40c)/(49-37c) and Omega_b = c/(3+c); 1/c is the critical w.
inline constexpr double kOmegaA = 0.45723552892138218938;
inline constexpr double kOmegaB = 0.077796073903888455972;
inline constexpr double kCriticalW = 3.9513730355914394;
inline constexpr double kCriticalE = kOmegaA / kOmegaB;

/// Slope m in sqrt(alpha) = 1 + m (1 - sqrt(T/Tc)) (1976, eq. 18; used for all acentric factors).
[[nodiscard]] constexpr double AlphaSlope(double omega) { return 0.37464 + omega * (1.54226 - omega * 0.26992); }

/// Volumes at given p and e. If the equation has one real root above the covolume, both are that root.
struct CubicVolumes {
  double vapor = 0.0;   // w, the largest root
  double liquid = 0.0;  // w, the smallest root above 1
  bool isLoop = false;  // three roots
};

/// Solves the equation for w at p > 0 and e, with full relative precision also at very small p.
[[nodiscard]] CubicVolumes SolveCubic(double p, double e);

/// The attractive integral f(w) = ln((w+1+sqrt 2)/(w+1-sqrt 2)) / sqrt 8 and its derivatives (Michelsen and Mollerup,
/// Thermodynamic Models, 2nd ed. 2007, ch. 3).
struct AttractionTerm {
  explicit AttractionTerm(double w);
  double f;
  double df;   // df/dw
  double ddf;  // d2f/dw2
};

/// Residual Gibbs energy over RT against the ideal gas at the same T and P.
[[nodiscard]] double ResidualGibbs(double w, double p, double e);

/// A fluid is called a liquid when its density and its attraction a/(vRT) both exceed those at the critical point of a
/// pure fluid with the same a and b (v < 3.95 b). Below that critical temperature the second condition follows from the
/// first, so that the smaller of two volumes at the same T, P and composition is the liquid. Above it the name of a
/// dense fluid changes along a/(vRT) = const, about 10 to 50 percent above the critical temperature.
[[nodiscard]] constexpr bool IsLiquid(double w, double e) { return w < kCriticalW && e * kCriticalW > kCriticalE * w; }

/// A fluid is certainly a liquid when it is colder than the critical point of a pure fluid with the same a and b, and
/// more than twice as dense. Vapors near critical points of mixtures may pass IsLiquid, but not this stricter test.
[[nodiscard]] constexpr bool IsDefiniteLiquid(double w, double e) { return w < 0.48 * kCriticalW && e > kCriticalE; }

}  // namespace morvelan::host
