#!/usr/bin/env python3
"""Prints the table of BracketedTrials.h: where the bracketed search evaluates, for the functions of its test.

The search is written down here once more, step by step and naively, with names of its own, so that the library is
compared with what the steps say and not with itself:
    python3 tests/numerics/bracketed_trials.py | clang-format >tests/numerics/BracketedTrials.h
"""
import math

NAN = math.nan


def search(r, low, high, tolerance, allowed):
    """The points evaluated, the count of evaluations, the best point and the message ("" with success)."""
    points = []

    def evaluate(x):
        points.append(x)
        value = r(x)
        return None if math.isnan(value) else value

    r_low = evaluate(low)
    if r_low is None:
        return points, 0, 0.0, "Failed to evaluate at search boundary: no value"
    r_high = evaluate(high)
    if r_high is None:
        return points, 0, 0.0, "Failed to evaluate at search boundary: no value"
    count = 2
    if r_low * r_high > 0:
        return points, count, 0.0, "Solution does not exist within given domain"
    if abs(r_low) < abs(r_high):
        b, rb, a, ra = low, r_low, high, r_high
    else:
        b, rb, a, ra = high, r_high, low, r_low
    best, r_best = b, rb
    c, rc = a, ra
    while abs(a - b) > tolerance:
        if count > allowed:
            return points, count, 0.0, "Maximum number of iterations exceeded"
        if not abs(ra - rc) > tolerance or not abs(rb - rc) > tolerance:
            s = b + (a - b) * rb / (rb - ra) if rb != ra else NAN
        else:
            s = (a * rb * rc / ((ra - rb) * (ra - rc)) + b * ra * rc / ((rb - ra) * (rb - rc))
                 + c * ra * rb / ((rc - ra) * (rc - rb)))
        middle = (a + b) / 2
        if not math.isfinite(s):
            s = middle
        elif (s - (3 * a + b) / 4) * (s - b) > 0 or abs(s - b) >= abs(b - c) / 2 or abs(b - c) < tolerance:
            s = middle
        rs = evaluate(s)
        if rs is None:
            return points, count, 0.0, "Failed to evaluate inside bracketed region boundary: no value"
        if abs(rs) < abs(r_best):
            best, r_best = s, rs
        count += 1
        old_b, old_rb = b, rb
        if rs * ra >= 0:
            a, ra = s, rs
        else:
            b, rb = s, rs
        c, rc = old_b, old_rb
        if abs(ra) < abs(rb):
            a, ra, b, rb = b, rb, a, ra
    if best != points[-1]:
        evaluate(best)
    return points, count, best, ""


# name, the residual in C++, and in Python; NaN: it cannot be evaluated
COSINE = "smooth", "std::cos(x) - x", lambda x: math.cos(x) - x
CUBIC = "cubic", "x * x * x - 2 * x - 5", lambda x: x * x * x - 2 * x - 5
TINY = "tiny residuals, secant only", "1e-8 * (x * x - 2)", lambda x: 1e-8 * (x * x - 2)
LINE = "straight", "x", lambda x: x
NONE = "nowhere", "kNan", lambda x: NAN

CASES = [  # function, low, high, tolerance, allowed
    (COSINE, 0, 1, 1e-8, 100),
    (CUBIC, 2, 3, 1e-10, 100),
    (("cubic, bounds the other way round",) + CUBIC[1:], 3, 2, 1e-10, 100),
    (("flat", "std::pow(x - 1, 9)", lambda x: math.pow(x - 1, 9)), 0, 3, 1e-4, 100),
    (("steep", "std::exp(20 * x) - 1000", lambda x: math.exp(20 * x) - 1000), -1, 1, 1e-9, 100),
    (("steep, then flat", "std::exp(-5 * x) - 1e-4", lambda x: math.exp(-5 * x) - 1e-4), 0, 5, 1e-6, 100),
    (("saturating", "std::atan(x - 2)", lambda x: math.atan(x - 2)), -3, 10, 1e-9, 100),
    (("pole", "1 / (x - 0.3)", lambda x: 1 / (x - 0.3)), 0, 1, 1e-3, 100),
    (("pole that is met", "1 / (x - 0.5)", lambda x: 1 / (x - 0.5) if x != 0.5 else math.inf), 0, 1, 1e-3, 100),
    (("infinite at a bound", "std::log(x) + 1", lambda x: math.log(x) + 1 if x > 0 else -math.inf), 0, 1, 1e-6, 100),
    (("infinite at both bounds", "x < 0.3 ? -HUGE_VAL : x > 0.6 ? HUGE_VAL : x - 0.4",
      lambda x: -math.inf if x < 0.3 else math.inf if x > 0.6 else x - 0.4), 0, 1, 1e-6, 100),
    (("jump", "x < 0.4 ? -1 : 2", lambda x: -1 if x < 0.4 else 2), 0, 1, 1e-3, 100),
    (("hump as high as the other side is low", "x < 0.2 ? -1 : x < 0.5 ? 3 * x - 1.3 : x < 0.9 ? 1 : 0.5",
      lambda x: -1 if x < 0.2 else 3 * x - 1.3 if x < 0.5 else 1 if x < 0.9 else 0.5), 0, 1, 1e-6, 100),
    # In exact numbers no step that the other two rules of bisection leave lies outside the near three quarters.
    (("secant that rounding takes beyond the better end",
      "x < 1 ? 1.5 - 0.2 * x : x < 2 ? 1.3 + 0.7 * (x - 1) : 2 - 3.6 * (x - 2)",
      lambda x: 1.5 - 0.2 * x if x < 1 else 1.3 + 0.7 * (x - 1) if x < 2 else 2 - 3.6 * (x - 2)), 0, 3, 1e-6, 100),
    (("tie: the high bound counts as the better", "x * x * x + x", lambda x: x * x * x + x), -1, 1, 1e-9, 100),
    (("tie, high bound first", "x * x * x + x + (x > -0.9 && x < 0.9 ? 0.1 : 0)",
      lambda x: x * x * x + x + (0.1 if -0.9 < x < 0.9 else 0)), 1, -1, 1e-9, 100),
    (TINY, 0, 2, 1e-6, 100),
    (("zero at the low bound",) + LINE[1:], 0, 1, 1e-6, 100),
    (("zero at the high bound",) + LINE[1:], -1, 0, 1e-6, 100),
    (("zero at both bounds", "x * (x - 1) * (x - 0.3)", lambda x: x * (x - 1) * (x - 0.3)), 0, 1, 1e-3, 100),
    (("one allowed",) + COSINE[1:], 0, 1, 1e-8, 1),
    (("two allowed",) + COSINE[1:], 0, 1, 1e-8, 2),
    (("five allowed",) + COSINE[1:], 0, 1, 1e-8, 5),
    (("none allowed, none needed",) + LINE[1:], -1e-9, 2e-9, 1e-6, 0),
    (("narrow, the high bound is the better",) + LINE[1:], -2e-9, 1e-9, 1e-6, 100),
    (("narrow, the high bound first",) + LINE[1:], 2e-9, -1e-9, 1e-6, 100),
    (("as wide as the tolerance",) + COSINE[1:], 0, 1, 1, 100),
    (("equal signs", "x * x + 1", lambda x: x * x + 1), -1, 2, 1e-6, 100),
    (NONE, 0, 1, 1e-6, 100),
    (("not at the high bound", "x > 0.9 ? kNan : x - 0.5", lambda x: NAN if x > 0.9 else x - 0.5), 0, 1, 1e-6, 100),
    (("not inside", "x > 2.0944 && x < 2.0947 ? kNan : x * x * x - 2 * x - 5",
      lambda x: NAN if 2.0944 < x < 2.0947 else x * x * x - 2 * x - 5), 2, 3, 1e-10, 100),
]


def number(value):
    return repr(float(value))


def main():
    print("#pragma once\n\n#include <cmath>\n#include <limits>\n#include <vector>\n")
    print("// Printed by bracketed_trials.py, which says where the numbers come from.\n")
    print("namespace morvelan::numerics::test {\n")
    print("inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();\n")
    print("/// A bracketed search and every place where it evaluates, in order.")
    print("struct BracketedTrial {\n const char* name;\n double (*residual)(double x);  // NaN: no value")
    print("double low, high, tolerance;\n int allowed;\n std::vector<double> points;\n int count;\n double best;")
    print("const char* message;\n};\n")
    print("inline const std::vector<BracketedTrial> kBracketedTrials = {")
    for (name, text, function), low, high, tolerance, allowed in CASES:
        points, count, best, message = search(function, low, high, tolerance, allowed)
        parameter = "double x" if "x" in text else "double"
        print(f'{{.name = "{name}", .residual = []({parameter}) -> double {{ return {text}; }},')
        print(f".low = {number(low)}, .high = {number(high)}, .tolerance = {number(tolerance)},")
        print(f".allowed = {allowed}, .points = {{{', '.join(map(number, points))}}},")
        print(f'.count = {count}, .best = {number(best)}, .message = "{message}"}},')
    print("};\n\n}  // namespace morvelan::numerics::test")


main()
