// A process beside the tests: "count FILE" raises the count in a file; "hold FILE" obtains the mutex of numeric
// entries, makes the file, and ends suddenly.

#include <chrono>
#include <cstdlib>
#include <string_view>

#include "tests/numerics/formula/EntryWork.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  if (std::string_view(argv[1]) == "count") return morvelan::test::CountAndEvaluate(argv[2]) ? 0 : 1;
  const auto mutex = morvelan::numerics::OpenParseMutex();
  if (!mutex || !mutex->Wait()) return 1;
  morvelan::test::WriteCount(argv[2], 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  morvelan::test::WriteCount(argv[2], morvelan::test::kLastCount);
  std::_Exit(3);
}
