// Entries are parsed one at a time, over threads and processes, and both are right.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include "numerics/formula/CalculatorFormula.h"
#include "numerics/formula/NumericEntry.h"
#include "tests/numerics/formula/EntryWork.h"
#include "tests/numerics/formula/ExpectEvaluation.h"

namespace morvelan::test::parse_mutex {

using namespace numerics;
using namespace std::chrono_literals;

std::filesystem::path Scratch(const char* name) {
  const std::filesystem::path folder = MORVELAN_SCRATCH;
  std::filesystem::create_directories(folder);
  std::filesystem::remove(folder / name);
  return folder / name;
}

/// Runs the worker program to its end; true when it was content.
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
  EXPECT_FALSE(released);  // what was not obtained
  EXPECT_EQ(EvaluateNumericEntry("1").value, 1);
}

TEST(ParseMutex, AnEntryWaitsForTheMutex) {
  const std::unique_ptr<NamedMutex> mutex = OpenParseMutex();
  ASSERT_TRUE(mutex && mutex->Wait());
  std::atomic<bool> done = false;
  std::thread other([&] {
    EXPECT_EQ(EvaluateNumericEntry("6*7").value, 42);
    done = true;
  });
  std::this_thread::sleep_for(200ms);
  EXPECT_FALSE(done);
  // Formulas of calculators have another lock.
  EXPECT_TRUE(CheckFormula("1", {}).formula.has_value());
  mutex->Release();
  other.join();
  EXPECT_TRUE(done);
}

TEST(ParseMutex, FailedEntriesGiveItBack) {
  for (const char* text : {"1/0", "(", "2 $", "SQRT(-1)", ""}) EXPECT_FALSE(EvaluateNumericEntry(text).Succeeded());
  std::thread other([] { EXPECT_EQ(EvaluateNumericEntry("1").value, 1); });
  other.join();
}

// A count in a file that is read, and written a moment later: without exclusion, rounds get lost.
TEST(ParseMutex, ThreadsAndProcessesExcludeEachOther) {
  const std::filesystem::path file = Scratch("count.txt");
  WriteCount(file, 0);
  std::atomic<int> content = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] { content += RunWorker("count", file); });
    threads.emplace_back([&] { content += CountAndEvaluate(file); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(content, 4);
  EXPECT_EQ(ReadCount(file), 4 * kRounds);
}

TEST(ParseMutex, TheEndOfAnOwnerGivesItFree) {
  const std::filesystem::path file = Scratch("held.txt");
  const auto owner = std::async(std::launch::async, [&] { return RunWorker("hold", file); });
  while (!std::filesystem::exists(file) && owner.wait_for(5ms) != std::future_status::ready) {
  }
  ASSERT_TRUE(std::filesystem::exists(file)) << "the worker did not start";
  EXPECT_EQ(EvaluateNumericEntry("6*7").value, 42);
  EXPECT_EQ(ReadCount(file),
            kLastWords);  // written before the sudden end, so that the entry has waited for it
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
