#pragma once

#include <utility>

namespace morvelan::com {

/// Runs an action when the scope is left, on every path.
template <class Action>
class ScopeExit {
 public:
  explicit ScopeExit(Action onExit) : action(std::move(onExit)) {}
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;
  ~ScopeExit() { action(); }

 private:
  Action action;
};

}  // namespace morvelan::com
