#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "cape_open.h"
#include "com/Automation.h"
#include "com/Object.h"
#include "errors/Failure.h"

namespace morvelan {

/// Root of every object that the host sees: its identification and its last failure.
/// `type` is the object's dispatch interface in the type library, which lists the members of all its
/// interfaces.
class BaseObject : public com::Implements<com::ObjectCore, ICapeIdentification, ECapeRoot, ECapeUser, ECapeUnknown,
                                          ISupportErrorInfo>,
                   private com::AutomationOwner {
 public:
  BaseObject(std::string objectName, std::string objectDescription, const GUID& type);

  // ICapeIdentification
  HRESULT get_ComponentName(BSTR* value) override;
  HRESULT put_ComponentName(BSTR text) override;
  HRESULT get_ComponentDescription(BSTR* value) override;
  HRESULT put_ComponentDescription(BSTR text) override;
  // ECapeRoot
  HRESULT get_name(BSTR* value) override;
  // ECapeUser
  HRESULT get_code(LONG* value) override;
  HRESULT get_description(BSTR* value) override;
  HRESULT get_scope(BSTR* value) override;
  HRESULT get_interfaceName(BSTR* value) override;
  HRESULT get_operation(BSTR* value) override;
  HRESULT get_moreInfo(BSTR* value) override;
  // ISupportErrorInfo
  HRESULT InterfaceSupportsErrorInfo(REFIID) override { return S_OK; }

  [[nodiscard]] const std::string& ComponentName() const { return name; }
  [[nodiscard]] const std::string& ComponentDescription() const { return description; }
  [[nodiscard]] const UnitError& LastError() const { return error; }

  /// Replaces all four texts.
  void SetError(UnitError failure) noexcept;

 protected:
  void* FindInterface(REFIID iid) override;
  [[nodiscard]] GUID AutomationType() const override { return automationType; }

  void SetName(std::string objectName) noexcept { name = std::move(objectName); }
  void SetIdentification(std::string objectName, std::string objectDescription) noexcept {
    name = std::move(objectName);
    description = std::move(objectDescription);
  }

  /// Runs the body of an entry point and turns whatever it throws into this object's error and a failure
  /// code. The object lives until the body has ended, whatever the host releases meanwhile.
  template <class Body>
  HRESULT Guard(std::string_view scope, std::string_view interfaceName, Body&& body) {
    const auto alive = com::Ref<BaseObject>::Share(this);
    try {
      std::forward<Body>(body)();
      return S_OK;
    } catch (...) {
      RecordCurrentException(scope, interfaceName);
      return kECapeUnknown;
    }
  }

  /// Runs an internal operation of this object for another one: a failure is kept as this object's error, and
  /// goes on to the caller with its four texts.
  template <class Body>
  auto Recorded(std::string_view scope, std::string_view interfaceName, Body&& body) {
    const auto alive = com::Ref<BaseObject>::Share(this);
    try {
      return std::forward<Body>(body)();
    } catch (...) {
      RecordCurrentException(scope, interfaceName);
      throw Failure(error);
    }
  }

 private:
  void RecordCurrentException(std::string_view scope, std::string_view interfaceName) noexcept;

  // com::AutomationOwner
  [[nodiscard]] std::vector<com::Face> Faces() override;
  [[nodiscard]] IUnknown* Identity() override { return static_cast<ICapeIdentification*>(this); }

  std::string name;
  std::string description;
  UnitError error;
  const GUID automationType;
  com::Automation automation{*this};
};

/// Hands a text out through an out-parameter, which must not be null.
HRESULT ReturnText(BSTR* value, std::string_view text) noexcept;

/// Replaces a text that the caller passed in and takes back.
void ReplaceText(BSTR* value, std::string_view text);

}  // namespace morvelan
