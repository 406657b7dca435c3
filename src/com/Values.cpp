#include "com/Values.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace morvelan::com {
namespace {

constexpr int kDeepestNesting = 16;  // of variants in variants: a chain may be a circle

/// Follows one level of indirection; false when there is none left.
bool FollowOnce(VARIANT& v) {
  if (!(v.vt & VT_BYREF)) return false;
  const auto type = static_cast<VARTYPE>(v.vt & ~VT_BYREF);
  VARIANT target;
  VariantInit(&target);
  if (v.byref == nullptr) {
    v = target;
    return false;
  }
  if (type == VT_VARIANT) {
    v = *v.pvarVal;
    return true;
  }
  target.vt = type;
  switch (type) {
    case VT_I1:
    case VT_UI1:
      target.bVal = *v.pbVal;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      target.iVal = *v.piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      target.lVal = *v.plVal;
      break;
    default:  // eight bytes: a number, a text, an object or an array
      target.llVal = *v.pllVal;
      break;
  }
  v = target;
  return false;
}

[[noreturn]] void Mismatch(const char* expected, const VARIANT& found) {
  throw ValueError(std::string(expected) + " expected, " + Describe(found) + " found");
}

const char* NameOf(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
      return "nothing";
    case VT_NULL:
      return "null";
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_I8:
    case VT_UI8:
    case VT_INT:
    case VT_UINT:
      return "an integer";
    case VT_R4:
    case VT_R8:
      return "a number";
    case VT_BSTR:
      return "a text";
    case VT_BOOL:
      return "a boolean";
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return "an object";
    case VT_VARIANT:
      return "a variant";
    case VT_ERROR:
      return "an error";
    default:
      return nullptr;
  }
}

/// The elements of a one-dimensional array, locked while they are looked at.
class Elements {
 public:
  Elements(const VARIANT& variant, const char* expected) : value(Borrow(variant)) {
    if (!(value.vt & VT_ARRAY)) Mismatch(expected, value);
    if (!value.parray) return;
    if (SafeArrayGetDim(value.parray) != 1)
      throw ValueError(std::string(expected) + " expected, an array of " +
                       std::to_string(SafeArrayGetDim(value.parray)) + " dimensions found");
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(value.parray, 1, &lower);
    SafeArrayGetUBound(value.parray, 1, &upper);
    count = upper < lower ? 0 : static_cast<std::size_t>(std::int64_t{upper} - lower + 1);
    if (SafeArrayGetElemsize(value.parray) != SizeOf(Type()) || IsPointer(ElementType()) != IsPointer(Type()))
      throw ValueError(std::string(expected) + " expected, an array of other elements than it says found");
    if (FAILED(SafeArrayAccessData(value.parray, &data))) throw ValueError("the array is not accessible");
  }
  Elements(const Elements&) = delete;
  Elements& operator=(const Elements&) = delete;
  ~Elements() {
    if (data) SafeArrayUnaccessData(value.parray);
  }

  [[nodiscard]] VARTYPE Type() const { return static_cast<VARTYPE>(value.vt & VT_TYPEMASK); }
  [[nodiscard]] std::size_t Count() const { return count; }
  [[nodiscard]] const void* Data() const { return data; }

  /// Element `i` as a borrowed variant, indirections followed.
  [[nodiscard]] VARIANT At(std::size_t i) const {
    if (Type() == VT_VARIANT) return Borrow(static_cast<const VARIANT*>(data)[i]);
    VARIANT element;
    VariantInit(&element);
    element.vt = static_cast<VARTYPE>(Type() | VT_BYREF);
    element.byref = static_cast<char*>(data) + i * SizeOf(Type());
    return Borrow(element);
  }

 private:
  /// The element type as the array itself knows it, if it does.
  [[nodiscard]] VARTYPE ElementType() const {
    VARTYPE type = Type();
    SafeArrayGetVartype(value.parray, &type);
    return type;
  }

  static bool IsPointer(VARTYPE type) { return type == VT_BSTR || type == VT_UNKNOWN || type == VT_DISPATCH; }

  static UINT SizeOf(VARTYPE type) {
    switch (type) {
      case VT_I1:
      case VT_UI1:
        return 1;
      case VT_I2:
      case VT_UI2:
      case VT_BOOL:
        return 2;
      case VT_I4:
      case VT_UI4:
      case VT_INT:
      case VT_UINT:
      case VT_R4:
      case VT_ERROR:
        return 4;
      case VT_VARIANT:
        return sizeof(VARIANT);
      default:
        return 8;
    }
  }

  VARIANT value;
  void* data = nullptr;
  std::size_t count = 0;
};

/// Runs `read` on element `i` and says which element it was when it is not what was wanted.
template <class Read>
auto ReadElement(const Elements& elements, std::size_t i, Read read) {
  const VARIANT element = elements.At(i);
  try {
    return read(element);
  } catch (const ValueError& error) {
    throw ValueError("element " + std::to_string(i + 1) + ": " + error.what());
  }
}

/// The text of a borrowed element, borrowed too.
Name ReadText(const VARIANT& element) {
  if (element.vt != VT_BSTR) Mismatch("a text", element);
  return Name(element.bstrVal);
}

/// Whether an array of texts has the form in which this library writes them.
bool IsStrict(const VARIANT& array, const Elements& elements) {
  LONG lower = 0;
  if (array.vt != (VT_ARRAY | VT_BSTR) || FAILED(SafeArrayGetLBound(array.parray, 1, &lower)) || lower != 0)
    return false;
  const BSTR* texts = static_cast<const BSTR*>(elements.Data());
  return std::all_of(texts, texts + elements.Count(), [](BSTR text) { return text != nullptr; });
}

template <class T>
T* DataOf(const Variant& array) {
  return static_cast<T*>(array.Get().parray->pvData);
}

}  // namespace

VARIANT Borrow(const VARIANT& variant) {
  VARIANT v = variant;
  for (int depth = 0; FollowOnce(v); ++depth) {
    if (depth < kDeepestNesting) continue;
    VariantInit(&v);
    v.vt = VT_ERROR;
    return v;
  }
  return v;
}

Variant Settle(Variant given) {
  if (!(given.Get().vt & VT_BYREF)) return given;
  return Copy(Borrow(given.Get()));
}

std::string Describe(const VARIANT& variant) {
  if (variant.vt & VT_ARRAY) {
    const char* element = NameOf(variant.vt & VT_TYPEMASK);
    return std::string("an array of ") +
           (element ? std::string(element).substr(element[1] == 'n' ? 3 : 2) + "s" : "other values");
  }
  const char* name = NameOf(variant.vt);
  return name ? name : "a value of type " + std::to_string(variant.vt);
}

double ReadDouble(const VARIANT& variant) {
  const VARIANT v = Borrow(variant);
  switch (v.vt) {
    case VT_R8:
      return v.dblVal;
    case VT_R4:
      return static_cast<double>(v.fltVal);
    case VT_I1:
      return static_cast<signed char>(v.cVal);
    case VT_UI1:
      return v.bVal;
    case VT_I2:
      return v.iVal;
    case VT_UI2:
      return v.uiVal;
    case VT_I4:
    case VT_INT:
      return v.lVal;
    case VT_UI4:
    case VT_UINT:
      return v.ulVal;
    case VT_I8:
      return static_cast<double>(v.llVal);
    case VT_UI8:
      return static_cast<double>(v.ullVal);
    default:
      Mismatch("a number", v);
  }
}

std::string ReadString(const VARIANT& variant) {
  const VARIANT v = Borrow(variant);
  if (v.vt != VT_BSTR) Mismatch("a text", v);
  return ToUtf8(v.bstrVal);
}

bool ReadBoolean(const VARIANT& variant) {
  const VARIANT v = Borrow(variant);
  if (v.vt != VT_BOOL) Mismatch("a boolean", v);
  return v.boolVal != VARIANT_FALSE;
}

std::int32_t ReadInteger(const VARIANT& variant) {
  const VARIANT v = Borrow(variant);
  // Systems convert NaN to different integers.
  if ((v.vt == VT_R8 && std::isnan(v.dblVal)) || (v.vt == VT_R4 && std::isnan(v.fltVal))) Mismatch("an integer", v);
  Variant converted;
  if (FAILED(VariantChangeTypeEx(converted.Put(), const_cast<VARIANT*>(&v), LOCALE_INVARIANT, 0, VT_I4)))
    Mismatch("an integer", v);
  return converted.Get().lVal;
}

void ReadDoubles(const VARIANT& array, std::vector<double>& values) {
  const Elements elements(array, "an array of numbers");
  values.resize(elements.Count());
  if (elements.Type() == VT_R8) {
    std::copy_n(static_cast<const double*>(elements.Data()), values.size(), values.data());
    return;
  }
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ReadElement(elements, i, ReadDouble);
}

std::optional<double> ReadOnlyDouble(const VARIANT& array) {
  const Elements elements(array, "an array of numbers");
  if (elements.Count() != 1) {
    for (std::size_t i = 0; i < elements.Count(); ++i) (void)ReadElement(elements, i, ReadDouble);
    return std::nullopt;
  }
  return ReadElement(elements, 0, ReadDouble);
}

std::vector<double> ReadDoubles(const VARIANT& array) {
  std::vector<double> values;
  ReadDoubles(array, values);
  return values;
}

std::vector<std::string> ReadStrings(const VARIANT& array) {
  const Elements elements(array, "an array of texts");
  std::vector<std::string> values(elements.Count());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ReadElement(elements, i, ReadString);
  return values;
}

std::vector<std::int32_t> ReadIntegers(const VARIANT& array) {
  const Elements elements(array, "an array of integers");
  std::vector<std::int32_t> values(elements.Count());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ReadElement(elements, i, ReadInteger);
  return values;
}

std::vector<Variant> ReadVariants(const VARIANT& array) {
  const Elements elements(array, "an array of values");
  std::vector<Variant> values(elements.Count());
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = Copy(elements.At(i));
  return values;
}

std::size_t CountStrings(const VARIANT& array) {
  const Elements elements(array, "an array of texts");
  const bool allTexts = elements.Type() == VT_BSTR;
  for (std::size_t i = 0; !allTexts && i < elements.Count(); ++i) (void)ReadElement(elements, i, ReadText);
  return elements.Count();
}

Variant MakeArray(std::size_t count, VARTYPE elementType) {
  if (count > 0x7fffffff) throw ArrayAllocationError();
  SAFEARRAY* array = SafeArrayCreateVector(elementType, 0, static_cast<ULONG>(count));
  if (!array) throw ArrayAllocationError();
  Variant result;
  VARIANT* variant = result.Put();
  variant->vt = static_cast<VARTYPE>(VT_ARRAY | elementType);
  variant->parray = array;
  return result;
}

Variant MakeDoubles(std::span<const double> values) {
  Variant result = MakeArray(values.size(), VT_R8);
  std::copy(values.begin(), values.end(), DataOf<double>(result));
  return result;
}

Variant MakeStrings(std::span<const Name> values) {
  Variant result = MakeArray(values.size(), VT_BSTR);
  BSTR* texts = DataOf<BSTR>(result);
  for (const Name& value : values) {
    *texts = SysAllocStringLen(value.text, SysStringLen(value.text));
    if (!*texts++) throw ArrayAllocationError();
  }
  return result;
}

Variant MakeStrings(std::span<const std::string> values) {
  Variant result = MakeArray(values.size(), VT_BSTR);
  BSTR* texts = DataOf<BSTR>(result);
  for (const std::string& value : values) *texts++ = ToBstr(value).Detach();
  return result;
}

Variant StrictStrings(Variant array) {
  const Elements elements(array.Get(), "an array of texts");
  if (IsStrict(array.Get(), elements)) return array;
  std::vector<Name> texts(elements.Count());
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = ReadElement(elements, i, ReadText);
  return MakeStrings(texts);
}

Variant MakeIntegers(std::span<const std::int32_t> values) {
  Variant result = MakeArray(values.size(), VT_I4);
  std::copy(values.begin(), values.end(), DataOf<std::int32_t>(result));
  return result;
}

Variant MakeVariants(std::span<const Variant> values) {
  Variant result = MakeArray(values.size(), VT_VARIANT);
  VARIANT* elements = DataOf<VARIANT>(result);
  for (const Variant& value : values) *elements++ = Copy(value.Get()).Detach();
  return result;
}

Variant MakeDouble(double value) {
  Variant result;
  VARIANT* variant = result.Put();
  variant->vt = VT_R8;
  variant->dblVal = value;
  return result;
}

Variant MakeInteger(std::int32_t value) {
  Variant result;
  VARIANT* variant = result.Put();
  variant->vt = VT_I4;
  variant->lVal = value;
  return result;
}

Variant MakeBoolean(bool value) {
  Variant result;
  VARIANT* variant = result.Put();
  variant->vt = VT_BOOL;
  variant->boolVal = ToVariantBool(value);
  return result;
}

Variant MakeString(std::string_view utf8) {
  Variant result;
  Bstr text = ToBstr(utf8);
  VARIANT* variant = result.Put();
  variant->vt = VT_BSTR;
  variant->bstrVal = text.Detach();
  return result;
}

Variant MakeObject(IDispatch* object) {
  Variant result;
  if (object) object->AddRef();
  VARIANT* variant = result.Put();
  variant->vt = VT_DISPATCH;
  variant->pdispVal = object;
  return result;
}

const VARIANT& KeepList(Name name) {
  static std::deque<Variant> kept;
  return kept.emplace_back(MakeStrings(std::span(&name, 1))).Get();
}

Variant Copy(const VARIANT& variant) {
  Variant result;
  if (FAILED(VariantCopy(result.Put(), const_cast<VARIANT*>(&variant)))) throw std::bad_alloc();
  return result;
}

}  // namespace morvelan::com
