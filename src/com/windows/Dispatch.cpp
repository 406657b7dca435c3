#include "com/Dispatch.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "com/Module.h"
#include "com/Ref.h"
#include "com/Values.h"

namespace morvelan::com {
namespace {

std::mutex libraryMutex;
ITypeLib* library = nullptr;  // never released by a destructor: COM may be gone before the module is

Ref<ITypeLib> Library() {
  const std::scoped_lock lock(libraryMutex);
  if (!library) LoadTypeLibEx(ModuleFile().c_str(), REGKIND_NONE, &library);
  return Ref<ITypeLib>::Share(library);
}

/// A member's description, as long as it is wanted.
class Function {
 public:
  Function(const Ref<ITypeInfo>& typeInfo, DISPID member, WORD flags) : info(typeInfo) {
    for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &description)); ++i) {
      if (description->memid == member && (description->invkind & flags)) return;
      Drop();
    }
  }
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() { Drop(); }

  [[nodiscard]] UINT ParameterCount() const { return description ? static_cast<UINT>(description->cParams) : 0; }
  /// Whether parameter `i` is a text that the method replaces.
  [[nodiscard]] bool ReplacesText(UINT i) const {
    const TYPEDESC& type = description->lprgelemdescParam[i].tdesc;
    return type.vt == VT_PTR && type.lptdesc->vt == VT_BSTR;
  }
  /// Whether parameter `i` is an object that the method takes by reference.
  [[nodiscard]] bool RefersToObject(UINT i) const {
    const TYPEDESC& type = description->lprgelemdescParam[i].tdesc;
    return type.vt == VT_PTR && type.lptdesc->vt == VT_DISPATCH;
  }
  [[nodiscard]] bool HasResult() const { return description->elemdescFunc.tdesc.vt != VT_VOID; }

 private:
  void Drop() {
    if (description) info->ReleaseFuncDesc(description);
    description = nullptr;
  }

  Ref<ITypeInfo> info;
  FUNCDESC* description = nullptr;
};

/// A text that a method replaces, on behalf of a script's argument.
struct TextArgument {
  VARIANT* given = nullptr;  // null when missing
  Bstr text;
};

constexpr int kDeepestReference = 8;

void HandBack(TextArgument& argument) {
  VARIANT* target = argument.given;
  // A variable that was itself passed on by reference.
  for (int depth = 0; depth < kDeepestReference && target && target->vt == (VT_BYREF | VT_VARIANT) && target->pvarVal &&
                      (target->pvarVal->vt & VT_BYREF);
       ++depth)
    target = target->pvarVal;
  if (!target || !(target->vt & VT_BYREF) || !target->byref) return;
  VARIANT text = MakeString(ToUtf8(argument.text.Get())).Detach();
  if (target->vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(target->pvarVal);
    *target->pvarVal = text;
  } else if (target->vt == (VT_BYREF | VT_BSTR)) {
    SysFreeString(*target->pbstrVal);
    *target->pbstrVal = text.bstrVal;
  } else {
    VariantClear(&text);
  }
}

TextArgument TakeText(VARIANT* given) {
  TextArgument argument{given, {}};
  if (!given) return argument;
  const VARIANT value = Borrow(*given);
  if (value.vt == VT_BSTR) argument.text = ToBstr(ToUtf8(value.bstrVal));
  return argument;
}

/// Objects that a method takes by reference, on behalf of a script's arguments: plain ones, or variables with
/// them. The method may keep or replace its reference as it likes.
class ObjectArguments {
 public:
  explicit ObjectArguments(UINT count) : objects(count) {}
  ObjectArguments(const ObjectArguments&) = delete;
  ObjectArguments& operator=(const ObjectArguments&) = delete;
  ~ObjectArguments() {
    for (IDispatch* object : objects) Ref<IDispatch>::Attach(object).Reset();
  }

  [[nodiscard]] bool Take(UINT i, const VARIANT* given, VARIANT& argument) {
    const VARIANT value = given ? Borrow(*given) : kNoValue;
    if (value.vt != VT_DISPATCH && value.vt != VT_EMPTY) return false;
    if (value.vt == VT_DISPATCH) objects[i] = Ref<IDispatch>::Share(value.pdispVal).Detach();
    argument.vt = VT_BYREF | VT_DISPATCH;
    argument.ppdispVal = &objects[i];
    return true;
  }

 private:
  std::vector<IDispatch*> objects;
};

/// Scripts read the elements of no other arrays than those of variants.
void LoosenArray(VARIANT& result) {
  if (!(result.vt & VT_ARRAY) || result.vt == (VT_ARRAY | VT_VARIANT) || SafeArrayGetDim(result.parray) != 1) return;
  VARIANT loose = MakeVariants(ReadVariants(result)).Detach();
  VariantClear(&result);
  result = loose;
}

/// The argument for parameter `i`, by its name or by its place; null when it is missing. Arguments stand in
/// reverse order, those with names first.
VARIANT* ArgumentFor(UINT i, const DISPPARAMS& params) {
  for (UINT k = 0; k < params.cNamedArgs; ++k)
    if (params.rgdispidNamedArgs[k] == static_cast<DISPID>(i)) return &params.rgvarg[k];
  return i + params.cNamedArgs < params.cArgs ? &params.rgvarg[params.cArgs - 1 - i] : nullptr;
}

HRESULT InvokeWithReferences(const Function& function, const Ref<ITypeInfo>& info, void* target, DISPID member,
                             WORD flags, const DISPPARAMS& params, VARIANT* result, EXCEPINFO* exception,
                             UINT* argumentError) {
  const UINT count = function.ParameterCount();
  if (params.cArgs > count || params.cNamedArgs > params.cArgs || (params.cArgs > 0 && !params.rgvarg))
    return DISP_E_BADPARAMCOUNT;
  for (UINT k = 0; k < params.cNamedArgs; ++k)
    if (static_cast<UINT>(params.rgdispidNamedArgs[k]) >= count) return DISP_E_PARAMNOTFOUND;
  std::vector<TextArgument> texts(count);
  ObjectArguments objects(count);
  std::vector<VARIANT> arguments(count);
  UINT textCount = 0;
  for (UINT i = 0; i < count; ++i) {
    VARIANT* given = ArgumentFor(i, params);
    VARIANT& argument = arguments[count - 1 - i];
    VariantInit(&argument);
    if (function.ReplacesText(i)) {
      ++textCount;
      texts[i] = TakeText(given);
      argument.vt = VT_BYREF | VT_BSTR;
      argument.pbstrVal = const_cast<BSTR*>(&texts[i].text.Get());
    } else if (function.RefersToObject(i)) {
      if (!objects.Take(i, given, argument)) return DISP_E_TYPEMISMATCH;
    } else if (given) {
      argument = *given;
    } else {
      return DISP_E_BADPARAMCOUNT;
    }
  }
  DISPPARAMS adapted{arguments.data(), nullptr, count, 0};
  const HRESULT hr = info->Invoke(target, member, flags, &adapted, result, exception, argumentError);
  if (SUCCEEDED(hr))
    for (TextArgument& text : texts) HandBack(text);
  if (SUCCEEDED(hr) && result && textCount == 1 && !function.HasResult())
    for (UINT i = 0; i < count; ++i)
      if (function.ReplacesText(i)) *result = MakeString(ToUtf8(texts[i].text.Get())).Detach();
  return hr;
}

}  // namespace

bool HasTypeLibrary() { return true; }

HRESULT TypeInfoOf(REFIID iid, ITypeInfo** info) try {
  *info = nullptr;
  const Ref<ITypeLib> types = Library();
  return types ? types->GetTypeInfoOfGuid(iid, info) : TYPE_E_CANTLOADLIBRARY;
} catch (...) {
  return E_UNEXPECTED;
}

HRESULT GetIdsOfNames(REFIID iid, LPOLESTR* names, UINT count, DISPID* ids) {
  if (!names || !ids) return E_POINTER;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  Ref<ITypeInfo> info;
  const HRESULT hr = TypeInfoOf(iid, info.Put());
  return FAILED(hr) ? hr : info->GetIDsOfNames(names, count, ids);
}

HRESULT Invoke(void* target, REFIID iid, DISPID member, WORD flags, DISPPARAMS* params, VARIANT* result,
               EXCEPINFO* exception, UINT* argumentError) {
  Ref<ITypeInfo> info;
  const HRESULT hr = TypeInfoOf(iid, info.Put());
  return FAILED(hr) ? hr : info->Invoke(target, member, flags, params, result, exception, argumentError);
}

HRESULT InvokeFromScript(void* target, REFIID iid, DISPID member, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* exception, UINT* argumentError) try {
  Ref<ITypeInfo> info;
  HRESULT hr = TypeInfoOf(iid, info.Put());
  if (FAILED(hr)) return hr;
  const Function function(info, member, flags);
  bool hasReferences = false;
  for (UINT i = 0; i < function.ParameterCount(); ++i)
    hasReferences = hasReferences || function.ReplacesText(i) || function.RefersToObject(i);
  if (!hasReferences || !params)
    hr = info->Invoke(target, member, flags, params, result, exception, argumentError);
  else
    hr = InvokeWithReferences(function, info, target, member, flags, *params, result, exception, argumentError);
  if (SUCCEEDED(hr) && result) LoosenArray(*result);
  return hr;
} catch (...) {
  return E_OUTOFMEMORY;
}

void PublishError(const std::string& description, const std::string& source) noexcept {
  try {
    Ref<ICreateErrorInfo> created;
    if (FAILED(CreateErrorInfo(created.Put()))) return;
    created->SetDescription(const_cast<LPOLESTR>(ToBstr(description).Get()));
    created->SetSource(const_cast<LPOLESTR>(ToBstr(source).Get()));
    if (const auto info = created.As<IErrorInfo>()) SetErrorInfo(0, info.Get());
  } catch (...) {
    // The failure's code and the object's own texts remain.
  }
}

void ReleaseTypeLibrary() noexcept {
  const std::scoped_lock lock(libraryMutex);
  if (library) library->Release();
  library = nullptr;
}

}  // namespace morvelan::com
