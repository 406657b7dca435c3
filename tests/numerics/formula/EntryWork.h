#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "numerics/formula/NumericEntry.h"

namespace morvelan::test {

inline constexpr int kRounds = 100;
inline constexpr int kLastCount = 77;

/// Reads a count from a file; -1 if that fails.
[[nodiscard]] inline int ReadCount(const std::filesystem::path& file) {
  int count = -1;
  std::ifstream(file) >> count;
  return count;
}

inline void WriteCount(const std::filesystem::path& file, int count) { std::ofstream(file) << count; }

/// Raises the count in the file kRounds times under the mutex of numeric entries, and evaluates an entry after each;
/// returns whether all was right.
[[nodiscard]] inline bool CountAndEvaluate(const std::filesystem::path& file) {
  for (int round = 0; round < kRounds; ++round) {
    const auto mutex = numerics::OpenParseMutex();
    if (!mutex || !mutex->Wait()) return false;
    const int count = ReadCount(file);
    std::this_thread::yield();
    WriteCount(file, count + 1);
    mutex->Release();
    if (numerics::EvaluateNumericEntry(std::to_string(round) + "*2+1").value != round * 2 + 1) return false;
  }
  return true;
}

}  // namespace morvelan::test
