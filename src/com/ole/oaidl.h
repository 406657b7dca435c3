#pragma once
// Automation: strings, variants, arrays and dispatch interfaces.

#include <ole2.h>

using BSTR = OLECHAR*;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;
using DISPID = LONG;

union CY {
  LONGLONG int64;
};

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;

enum VARENUM : VARTYPE {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0x0FFF
};

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  void* pvData;
  SAFEARRAYBOUND rgsabound[1];  // one per dimension, the last dimension's first
};

constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
constexpr USHORT FADF_BSTR = 0x0100;
constexpr USHORT FADF_UNKNOWN = 0x0200;
constexpr USHORT FADF_DISPATCH = 0x0400;
constexpr USHORT FADF_VARIANT = 0x0800;

struct IDispatch;

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONGLONG llVal;
    LONG lVal;
    BYTE bVal;
    SHORT iVal;
    float fltVal;
    double dblVal;
    VARIANT_BOOL boolVal;
    SCODE scode;
    CY cyVal;
    DATE date;
    BSTR bstrVal;
    IUnknown* punkVal;
    IDispatch* pdispVal;
    SAFEARRAY* parray;
    BYTE* pbVal;
    SHORT* piVal;
    LONG* plVal;
    LONGLONG* pllVal;
    float* pfltVal;
    double* pdblVal;
    VARIANT_BOOL* pboolVal;
    SCODE* pscode;
    CY* pcyVal;
    DATE* pdate;
    BSTR* pbstrVal;
    IUnknown** ppunkVal;
    IDispatch** ppdispVal;
    SAFEARRAY** pparray;
    VARIANT* pvarVal;
    void* byref;
    char cVal;
    USHORT uiVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    INT intVal;
    UINT uintVal;
    char* pcVal;
    USHORT* puiVal;
    ULONG* pulVal;
    ULONGLONG* pullVal;
    INT* pintVal;
    UINT* puintVal;
    struct {
      void* first;
      void* second;
    } record;
  };
};
using VARIANTARG = VARIANT;
static_assert(sizeof(VARIANT) == 24, "the layout that hosts use on 64-bit platforms");

struct DISPPARAMS {
  VARIANTARG* rgvarg;
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
};

struct EXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  void* pvReserved;
  HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
  SCODE scode;
};

constexpr WORD DISPATCH_METHOD = 1;
constexpr WORD DISPATCH_PROPERTYGET = 2;
constexpr WORD DISPATCH_PROPERTYPUT = 4;
constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

struct ITypeInfo;

struct IDispatch : IUnknown {
  virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
  virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) = 0;
  virtual HRESULT GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) = 0;
  virtual HRESULT Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* exception, UINT* argumentError) = 0;
};
__CRT_UUID_DECL(IDispatch, 0x00020400, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct ISupportErrorInfo : IUnknown {
  virtual HRESULT InterfaceSupportsErrorInfo(REFIID iid) = 0;
};
__CRT_UUID_DECL(ISupportErrorInfo, 0xdf0b3d60, 0x548f, 0x101b, 0x8e, 0x65, 0x08, 0x00, 0x2b, 0x2b, 0xd1, 0x19)

EXTERN_C BSTR SysAllocString(const OLECHAR* text);
EXTERN_C BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
EXTERN_C void SysFreeString(BSTR text);
EXTERN_C UINT SysStringLen(BSTR text);
EXTERN_C UINT SysStringByteLen(BSTR text);

constexpr LCID LOCALE_INVARIANT = 0x007F;

EXTERN_C void VariantInit(VARIANT* variant);
EXTERN_C HRESULT VariantClear(VARIANT* variant);
EXTERN_C HRESULT VariantCopy(VARIANT* target, VARIANT* source);
EXTERN_C HRESULT VariantCopyInd(VARIANT* target, VARIANT* source);
/// Converts between numbers, booleans and strings; the locale is taken as LOCALE_INVARIANT.
EXTERN_C HRESULT VariantChangeTypeEx(VARIANT* target, VARIANT* source, LCID locale, USHORT flags, VARTYPE type);

EXTERN_C SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
EXTERN_C SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements);
EXTERN_C HRESULT SafeArrayDestroy(SAFEARRAY* array);
EXTERN_C HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** target);
EXTERN_C UINT SafeArrayGetDim(SAFEARRAY* array);
EXTERN_C UINT SafeArrayGetElemsize(SAFEARRAY* array);
EXTERN_C HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
EXTERN_C HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
EXTERN_C HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
EXTERN_C HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
EXTERN_C HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
EXTERN_C HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value);
EXTERN_C HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);
