#include "numerics/formula/NumericEntry.h"

#include <utility>

#include "numerics/formula/ExpressionTree.h"
#include "numerics/formula/FloatingPointScope.h"
#include "numerics/formula/FormulaParser.h"

namespace morvelan::numerics {
namespace {

constexpr FormulaDialect kEntryDialect = {"syntax error", "memory exhausted"};

Evaluation ParseAndEvaluate(std::string_view text) {
  ParsedFormula parsed = ParseFormula(text, {}, kEntryDialect);
  if (!parsed.failure.empty()) return FailedEvaluation(std::move(parsed.failure));
  std::string refusal = CheckTree(parsed.tree);
  if (!refusal.empty()) return FailedEvaluation(std::move(refusal));
  return RefuseNonFinite(EvaluateWithDomainRules(parsed.tree));
}

/// Releases a mutex that was obtained.
class ObtainedMutex {
 public:
  explicit ObtainedMutex(NamedMutex& obtained) : mutex(obtained) {}
  ~ObtainedMutex() { mutex.Release(); }
  ObtainedMutex(const ObtainedMutex&) = delete;
  ObtainedMutex& operator=(const ObtainedMutex&) = delete;

 private:
  NamedMutex& mutex;
};

}  // namespace

Evaluation EvaluateNumericEntry(std::string_view text) {
  const DefaultEnvironment environment;  // even making a path rounds numbers
  return WithinMemory(kEntryDialect.stackFull, [&] { return EvaluateNumericEntry(text, OpenParseMutex()); });
}

Evaluation EvaluateNumericEntry(std::string_view text, std::unique_ptr<NamedMutex> mutex) {
  if (!mutex) return FailedEvaluation("Failed to create a mutex for locking the parser for the current thread");
  if (!mutex->Wait())
    return FailedEvaluation("Failed to wait for a mutex for locking the parser for the current thread");
  const ObtainedMutex obtained(*mutex);
  return ParseAndEvaluate(text);
}

}  // namespace morvelan::numerics
