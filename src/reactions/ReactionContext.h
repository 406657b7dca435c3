#pragma once

#include <utility>

#include "com/Object.h"
#include "errors/Failure.h"
#include "morvelan.h"
#include "reactions/ReactionPackage.h"

namespace morvelan {

/// A unit to which hosts assign a reaction package: `class X : public ReactionContext<StreamUnit>`.
template <class Unit>
class ReactionContext : public com::Implements<Unit, ICapeKineticReactionContext> {
  using Base = com::Implements<Unit, ICapeKineticReactionContext>;

 public:
  using Base::Base;

  // ICapeKineticReactionContext
  HRESULT SetReactionObject(IDispatch** reactionsObject) override {
    if (!reactionsObject) return E_POINTER;
    return this->Guard(kScope, kInterface, [&] {
      const auto object = com::Ref<IDispatch>::Share(*reactionsObject);
      ReleasePackage();
      this->SetError({});
      this->ConnectionChanged();
      if (!object) return;
      package = ReactionPackage(object.Get());
      NoteUnlistedReactions();
      this->ConnectionChanged();
    });
  }
  // ICapeUtilities
  HRESULT Terminate() override {
    const auto alive = com::Ref<ReactionContext>::Share(this);
    const HRESULT outcome = Base::Terminate();
    ReleasePackage();
    return outcome;
  }

 protected:
  [[nodiscard]] GUID AutomationType() const override { return __uuidof(DReactor); }

  ReactionPackage package;

 private:
  static constexpr const char* kScope = "SetReactionObject";
  static constexpr const char* kInterface = "ICapeKineticReactionContext";

  /// The package is released last: a host that calls back meanwhile finds a reactor without a package.
  void ReleasePackage() { const ReactionPackage released = std::exchange(package, {}); }

  /// A package whose reactions cannot be listed is accepted; the reason stays as the last error.
  void NoteUnlistedReactions() {
    try {
      (void)ReactionPackage(package).ListReactions();
    } catch (Failure& failure) {
      failure.error.scope = kScope;
      failure.error.interfaceName = kInterface;
      this->SetError(std::move(failure.error));
    }
  }
};

}  // namespace morvelan
