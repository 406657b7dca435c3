#include "tests/numerics/formula/EntryWork.h"

#include <fstream>
#include <thread>

#include "numerics/formula/NamedMutex.h"
#include "numerics/formula/NumericEntry.h"

namespace morvelan::test {

int ReadCount(const std::filesystem::path& file) {
  int count = -1;
  std::ifstream(file) >> count;
  return count;
}

void WriteCount(const std::filesystem::path& file, int count) { std::ofstream(file) << count; }

bool CountAndEvaluate(const std::filesystem::path& file) {
  for (int round = 0; round < kRounds; ++round) {
    const auto mutex = numerics::OpenParseMutex();
    if (!mutex || !mutex->Wait()) return false;
    const int count = ReadCount(file);
    std::this_thread::yield();
    WriteCount(file, count + 1);
    mutex->Release();
    const std::string text = std::to_string(round) + "*2+1";
    if (numerics::EvaluateNumericEntry(text).value != round * 2 + 1) return false;
  }
  return true;
}

}  // namespace morvelan::test
