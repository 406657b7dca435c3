// Entries are parsed one at a time over threads and processes, and each gets its value.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <future>
#include <vector>

#include "numerics/formula/CalculatorFormula.h"
#include "tests/numerics/formula/EntryWork.h"

namespace morvelan::test::parse_mutex {

using namespace numerics;
using namespace std::chrono_literals;

std::filesystem::path Scratch(const char* name) {
  const std::filesystem::path folder = MORVELAN_SCRATCH;
  std::filesystem::create_directories(folder);
  std::filesystem::remove(folder / name);
  return folder / name;
}

/// Runs the worker program to its end; returns whether it succeeded.
bool RunWorker(const std::string& task, const std::filesystem::path& file) {
  // The outer quotes are for the command interpreter of Windows, which takes one pair off.
  const std::string line = "\"" MORVELAN_ENTRY_WORKER "\" " + task + " \"" + file.string() + "\"";
  return std::system((MORVELAN_SHELL_QUOTE + line + MORVELAN_SHELL_QUOTE).c_str()) == 0;
}

class FailingMutex : public NamedMutex {
 public:
  explicit FailingMutex(bool& releasedFlag) : released(releasedFlag) {}
  bool Wait() override { return false; }
  void Release() override { released = true; }

 private:
  bool& released;
};

TEST(ParseMutex, FailuresHaveTheirMessages) {
  EXPECT_EQ(EvaluateNumericEntry("1", nullptr).failure,
            "Failed to create a mutex for locking the parser for the current thread");
  bool released = false;
  const Evaluation evaluation = EvaluateNumericEntry("1", std::make_unique<FailingMutex>(released));
  EXPECT_EQ(evaluation.failure, "Failed to wait for a mutex for locking the parser for the current thread");
  EXPECT_TRUE(std::isnan(evaluation.value));
  EXPECT_FALSE(released);  // it was not obtained
}

TEST(ParseMutex, AnEntryWaitsForTheMutex) {
  const std::unique_ptr<NamedMutex> mutex = OpenParseMutex();
  ASSERT_TRUE(mutex && mutex->Wait());
  auto other = std::async(std::launch::async, [] { return EvaluateNumericEntry("6*7").value; });
  EXPECT_EQ(other.wait_for(100ms), std::future_status::timeout);
  // Formulas of calculators have another lock.
  EXPECT_TRUE(CheckFormula("1", {}).formula.has_value());
  mutex->Release();
  EXPECT_EQ(other.get(), 42);
}

// Each reads a count from a file and writes it a moment later: without exclusion, rounds get lost.
TEST(ParseMutex, ThreadsAndProcessesExcludeEachOther) {
  const std::filesystem::path file = Scratch("count.txt");
  WriteCount(file, 0);
  std::atomic<int> succeeded = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] { succeeded += RunWorker("count", file); });
    threads.emplace_back([&] { succeeded += CountAndEvaluate(file); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(succeeded, 4);
  EXPECT_EQ(ReadCount(file), 4 * kRounds);
}

TEST(ParseMutex, TheEndOfItsOwnerReleasesIt) {
  const std::filesystem::path file = Scratch("held.txt");
  const auto owner = std::async(std::launch::async, [&] { return RunWorker("hold", file); });
  while (!std::filesystem::exists(file) && owner.wait_for(5ms) != std::future_status::ready) {
  }
  ASSERT_TRUE(std::filesystem::exists(file)) << "the worker did not start";
  EXPECT_EQ(EvaluateNumericEntry("6*7").value, 42);
  EXPECT_EQ(ReadCount(file), kLastCount);  // written just before the end, so that the entry has waited for it
}

TEST(ParseMutex, ThreadsParseFormulasAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([i] {
      const std::vector<std::string> names = {"x" + std::to_string(i)};
      const std::string text = "2*\"" + names[0] + "\"+" + std::to_string(i);
      for (int round = 0; round < 500; ++round) {
        const FormulaCheck check = CheckFormula(text, names);
        ASSERT_TRUE(check.formula.has_value());
        ASSERT_EQ(check.formula->Evaluate(std::vector<double>{10}).value, 20 + i);
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace morvelan::test::parse_mutex
