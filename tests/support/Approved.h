#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace morvelan::test {

/// Expects a text to equal the approved one, the file tests/approved/NAME.txt.
///
/// A number with a decimal point or an exponent may differ by 1e-6 of itself, and one of six or more digits by one unit
/// of its last digit, because the last digits depend on the platform. In a line with such a number runs of spaces are
/// equal whatever their length. Line ends may be those of any system. All else must be equal.
///
/// If the environment variable MORVELAN_APPROVE is 1, a text that differs is written to the file instead, for a person
/// to read and commit. A file that does not exist fails the test, which prints what the file would hold.
void ExpectApproved(const std::string& name, const std::string& text);

/// Where the approved text of this name stands.
[[nodiscard]] std::filesystem::path ApprovedFile(const std::string& name);

/// The first line that differs from the approved one, with its number and both texts; empty if the texts are equal as
/// ExpectApproved compares them.
[[nodiscard]] std::string FirstDifference(std::string_view approved, std::string_view actual);

}  // namespace morvelan::test
