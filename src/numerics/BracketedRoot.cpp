#include "numerics/BracketedRoot.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace morvelan::numerics {
namespace {

struct Point {
  double x = 0.0;
  double r = 0.0;
};

const char* WhyRefused(double lowBound, double highBound, double tolerance) {
  if (!std::isfinite(lowBound) || !std::isfinite(highBound)) return "Search bounds are not finite numbers";
  return std::isfinite(tolerance) ? nullptr : "Search tolerance is not a finite number";
}

/// Evaluates the residual at the point; `reason` becomes that of this evaluation alone.
bool EvaluateAt(ResidualRef residual, Point& point, std::string& reason) {
  reason.clear();
  if (!residual(point.x, point.r, reason)) return false;
  if (!std::isnan(point.r)) return true;
  reason = "a residual is not a finite number";
  return false;
}

double Secant(const Point& a, const Point& b) { return b.x + (a.x - b.x) * b.r / (b.r - a.r); }

double InverseQuadratic(const Point& a, const Point& b, const Point& c) {
  return a.x * b.r * c.r / ((a.r - b.r) * (a.r - c.r)) + b.x * a.r * c.r / ((b.r - a.r) * (b.r - c.r)) +
         c.x * a.r * b.r / ((c.r - a.r) * (c.r - b.r));
}

/// The next trial point; c is where b was before.
double NextTrial(const Point& a, const Point& b, const Point& c, double tolerance) {
  const bool differs = std::abs(a.r - c.r) > tolerance && std::abs(b.r - c.r) > tolerance;
  const double s = differs ? InverseQuadratic(a, b, c) : Secant(a, b);
  const double lastStep = std::abs(b.x - c.x);
  // Residuals that are equal, as where both bounds are roots, have no secant.
  const bool bisects = !std::isfinite(s) || (s - (3.0 * a.x + b.x) / 4.0) * (s - b.x) > 0.0 ||
                       std::abs(s - b.x) >= lastStep / 2.0 || lastStep < tolerance;
  return bisects ? std::midpoint(a.x, b.x) : s;
}

// The signs are compared one by one, because the product of two tiny residuals is zero.
bool HaveOppositeSigns(const Point& p, const Point& q) { return (p.r < 0.0 && q.r > 0.0) || (p.r > 0.0 && q.r < 0.0); }
bool HaveEqualSigns(const Point& p, const Point& q) { return (p.r < 0.0 && q.r < 0.0) || (p.r > 0.0 && q.r > 0.0); }

/// Takes s into the bracket; b remains the end with the smaller absolute residual.
void Shrink(Point& a, Point& b, Point& c, const Point& s) {
  c = b;
  (HaveOppositeSigns(s, a) ? b : a) = s;
  if (std::abs(a.r) < std::abs(b.r)) std::swap(a, b);
}

BracketedRoot Failed(BracketedRoot result, std::string message) {
  result.message = std::move(message);
  return result;
}

}  // namespace

BracketedRoot SolveBracketed(ResidualRef residual, double lowBound, double highBound, double tolerance,
                             std::int32_t maxEvaluations) {
  BracketedRoot result;
  if (const char* refused = WhyRefused(lowBound, highBound, tolerance)) return Failed(result, refused);
  std::string reason;
  Point a{lowBound};
  Point b{highBound};
  if (!EvaluateAt(residual, a, reason) || !EvaluateAt(residual, b, reason))
    return Failed(result, "Failed to evaluate at search boundary: " + reason);
  result.evaluations = 2;
  if (HaveEqualSigns(a, b)) return Failed(result, "Solution does not exist within given domain");

  double last = b.x;
  if (std::abs(a.r) < std::abs(b.r)) std::swap(a, b);
  Point best = b;
  Point c = a;
  while (std::abs(a.x - b.x) > tolerance) {
    if (result.evaluations > maxEvaluations) return Failed(result, "Maximum number of iterations exceeded");
    Point s{NextTrial(a, b, c, tolerance)};
    if (!EvaluateAt(residual, s, reason))
      return Failed(result, "Failed to evaluate inside bracketed region boundary: " + reason);
    last = s.x;
    if (std::abs(s.r) < std::abs(best.r)) best = s;
    ++result.evaluations;
    Shrink(a, b, c, s);
  }
  if (best.x != last) residual(best.x, best.r, reason);
  result.success = true;
  result.x = best.x;
  return result;
}

}  // namespace morvelan::numerics
