#pragma once

#include <filesystem>

namespace morvelan::test {

inline constexpr int kRounds = 100;
inline constexpr int kLastWords = 77;

/// A count that stands in a file; -1 when it cannot be read.
[[nodiscard]] int ReadCount(const std::filesystem::path& file);
void WriteCount(const std::filesystem::path& file, int count);

/// Raises the count in the file under the mutex of numeric entries, so many rounds, and evaluates an entry
/// after each; true when all was right.
[[nodiscard]] bool CountAndEvaluate(const std::filesystem::path& file);

}  // namespace morvelan::test
