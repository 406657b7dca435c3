// VARIANT: ownership, indirection and the conversions between numbers, booleans and strings.

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include <oaidl.h>

namespace {

using Number = long double;  // holds every 64-bit integer and every double exactly

constexpr Number kNoUpperLimit = 18446744073709551616.0L;

HRESULT Dereference(const VARIANT& reference, VARIANT* target) {
  switch (reference.vt & VT_TYPEMASK) {
    case VT_I1:
    case VT_UI1:
      target->bVal = *reference.pbVal;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      target->iVal = *reference.piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      target->lVal = *reference.plVal;
      break;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
      target->llVal = *reference.pllVal;
      break;
    default:
      return DISP_E_BADVARTYPE;
  }
  target->vt = reference.vt & VT_TYPEMASK;
  return S_OK;
}

std::optional<Number> ParseNumber(BSTR text) {
  std::string narrow;
  for (UINT i = 0; i < SysStringLen(text); ++i) {
    if (text[i] > 0x7e) return std::nullopt;
    if (text[i] != u' ') narrow.push_back(static_cast<char>(text[i]));
  }
  double value = 0;
  const char* end = narrow.data() + narrow.size();
  const auto parsed = std::from_chars(narrow.data(), end, value);
  if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
  return value;
}

std::optional<Number> NumberOf(const VARIANT& v) {
  switch (v.vt) {
    case VT_EMPTY:
      return 0;
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
      return v.llVal;
    case VT_UI8:
      return v.ullVal;
    case VT_R4:
      return v.fltVal;
    case VT_R8:
    case VT_DATE:
      return v.dblVal;
    case VT_CY:
      return static_cast<Number>(v.cyVal.int64) / 10000;
    case VT_BOOL:
      return v.boolVal;
    case VT_BSTR:
      return ParseNumber(v.bstrVal);
    default:
      return std::nullopt;
  }
}

template <class Integer>
HRESULT ToInteger(Number value, Integer* result) {
  const Number rounded = std::nearbyint(value);
  if (!(rounded >= static_cast<Number>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<Number>(std::numeric_limits<Integer>::max()) && rounded < kNoUpperLimit))
    return DISP_E_OVERFLOW;
  *result = static_cast<Integer>(rounded);
  return S_OK;
}

HRESULT FromNumber(Number value, VARTYPE type, VARIANT* target) {
  target->vt = type;
  switch (type) {
    case VT_I1: {
      signed char small = 0;
      const HRESULT hr = ToInteger(value, &small);
      target->cVal = static_cast<char>(small);
      return hr;
    }
    case VT_UI1:
      return ToInteger(value, &target->bVal);
    case VT_I2:
      return ToInteger(value, &target->iVal);
    case VT_UI2:
      return ToInteger(value, &target->uiVal);
    case VT_I4:
    case VT_INT:
      return ToInteger(value, &target->lVal);
    case VT_UI4:
    case VT_UINT:
      return ToInteger(value, &target->ulVal);
    case VT_I8:
      return ToInteger(value, &target->llVal);
    case VT_UI8:
      return ToInteger(value, &target->ullVal);
    case VT_R4:
      target->fltVal = static_cast<float>(value);
      return S_OK;
    case VT_R8:
      target->dblVal = static_cast<double>(value);
      return S_OK;
    case VT_BOOL:
      target->boolVal = value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT ToText(const VARIANT& source, VARIANT* target) {
  char buffer[64];
  std::string text;
  if (source.vt == VT_BOOL) {
    text = source.boolVal ? "-1" : "0";
  } else if (source.vt == VT_EMPTY) {
    text.clear();
  } else if (source.vt == VT_I8 || source.vt == VT_UI8) {
    const auto end = source.vt == VT_I8 ? std::to_chars(buffer, buffer + sizeof buffer, source.llVal)
                                        : std::to_chars(buffer, buffer + sizeof buffer, source.ullVal);
    text.assign(buffer, end.ptr);
  } else if (const auto number = NumberOf(source)) {
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(*number),
                                   std::chars_format::general, source.vt == VT_R4 ? 7 : 15);
    text.assign(buffer, end.ptr);
  } else {
    return DISP_E_TYPEMISMATCH;
  }
  const std::u16string wide(text.begin(), text.end());
  target->bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (!target->bstrVal) return E_OUTOFMEMORY;
  target->vt = VT_BSTR;
  return S_OK;
}

}  // namespace

EXTERN_C void VariantInit(VARIANT* variant) { *variant = VARIANT{}; }

EXTERN_C HRESULT VariantClear(VARIANT* variant) {
  if (!variant) return E_INVALIDARG;
  if (!(variant->vt & VT_BYREF)) {
    if (variant->vt & VT_ARRAY) {
      const HRESULT hr = SafeArrayDestroy(variant->parray);
      if (FAILED(hr)) return hr;
    } else if (variant->vt == VT_BSTR) {
      SysFreeString(variant->bstrVal);
    } else if ((variant->vt == VT_UNKNOWN || variant->vt == VT_DISPATCH) && variant->punkVal) {
      variant->punkVal->Release();
    }
  }
  VariantInit(variant);
  return S_OK;
}

EXTERN_C HRESULT VariantCopy(VARIANT* target, VARIANT* source) {
  if (!target || !source) return E_INVALIDARG;
  if (target == source) return S_OK;
  VARIANT copy = *source;
  if (!(source->vt & VT_BYREF)) {
    if (source->vt & VT_ARRAY) {
      const HRESULT hr = SafeArrayCopy(source->parray, &copy.parray);
      if (FAILED(hr)) return hr;
    } else if (source->vt == VT_BSTR && source->bstrVal) {
      copy.bstrVal = SysAllocStringLen(source->bstrVal, SysStringLen(source->bstrVal));
      if (!copy.bstrVal) return E_OUTOFMEMORY;
    } else if ((source->vt == VT_UNKNOWN || source->vt == VT_DISPATCH) && source->punkVal) {
      source->punkVal->AddRef();
    }
  }
  const HRESULT hr = VariantClear(target);
  *target = copy;
  return hr;
}

EXTERN_C HRESULT VariantCopyInd(VARIANT* target, VARIANT* source) {
  if (!target || !source) return E_INVALIDARG;
  if (!(source->vt & VT_BYREF)) return VariantCopy(target, source);
  if (!source->byref) return E_INVALIDARG;
  if ((source->vt & VT_TYPEMASK) == VT_VARIANT && !(source->vt & VT_ARRAY)) {
    VARIANT* inner = source->pvarVal;
    if ((inner->vt & VT_BYREF) && (inner->vt & VT_TYPEMASK) == VT_VARIANT) return E_INVALIDARG;
    return VariantCopyInd(target, inner);
  }
  VARIANT borrowed{};
  if (source->vt & VT_ARRAY) {
    borrowed.parray = *source->pparray;
    borrowed.vt = static_cast<VARTYPE>(source->vt & ~VT_BYREF);
  } else {
    const HRESULT hr = Dereference(*source, &borrowed);
    if (FAILED(hr)) return hr;
  }
  return VariantCopy(target, &borrowed);
}

EXTERN_C HRESULT VariantChangeTypeEx(VARIANT* target, VARIANT* source, LCID, USHORT, VARTYPE type) {
  if (!target || !source) return E_INVALIDARG;
  VARIANT value{};
  HRESULT hr = VariantCopyInd(&value, source);
  if (FAILED(hr)) return hr;
  VARIANT result{};
  if (value.vt == type) {
    result = value;
    value = VARIANT{};
  } else if (type == VT_BSTR) {
    hr = ToText(value, &result);
  } else if (const auto number = NumberOf(value)) {
    hr = FromNumber(*number, type, &result);
  } else {
    hr = DISP_E_TYPEMISMATCH;
  }
  VariantClear(&value);
  if (FAILED(hr)) return hr;
  hr = VariantClear(target);
  *target = result;
  return hr;
}
