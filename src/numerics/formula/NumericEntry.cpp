#include "numerics/formula/NumericEntry.h"

#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/FormulaParser.h"
#include "numerics/formula/TreeCheck.h"
#include "numerics/formula/TreeEvaluation.h"
#include "numerics/formula/WithinMemory.h"

namespace morvelan::numerics {
namespace {

constexpr FormulaDialect kDialect = {"syntax error", "memory exhausted"};

Evaluation EvaluateAlone(std::string_view text) {
  ParsedFormula parsed = ParseFormula(text, {}, kDialect);
  if (!parsed.failure.empty()) return FailedEvaluation(std::move(parsed.failure));
  std::string refusal = CheckTree(parsed.tree);
  if (!refusal.empty()) return FailedEvaluation(std::move(refusal));
  return RefuseNonFinite(EvaluateChecked(parsed.tree));
}

/// Releases a mutex that was obtained.
class Obtained {
 public:
  explicit Obtained(NamedMutex& obtained) : mutex(obtained) {}
  ~Obtained() { mutex.Release(); }
  Obtained(const Obtained&) = delete;
  Obtained& operator=(const Obtained&) = delete;

 private:
  NamedMutex& mutex;
};

}  // namespace

Evaluation EvaluateNumericEntry(std::string_view text) {
  const DefaultEnvironment environment;  // even the making of a path rounds numbers
  return WithinMemory(kDialect.stackFull, [&] { return EvaluateNumericEntry(text, OpenParseMutex()); });
}

Evaluation EvaluateNumericEntry(std::string_view text, std::unique_ptr<NamedMutex> mutex) {
  if (!mutex) return FailedEvaluation("Failed to create a mutex for locking the parser for the current thread");
  if (!mutex->Wait())
    return FailedEvaluation("Failed to wait for a mutex for locking the parser for the current thread");
  const Obtained obtained(*mutex);
  return EvaluateAlone(text);
}

}  // namespace morvelan::numerics
