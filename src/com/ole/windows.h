#pragma once
// The base types of COM as Windows declares them, with the same names, sizes and meanings, for platforms that
// have no <windows.h> of their own. Only what the library uses is here.

#include <cstddef>
#include <cstdint>
#include <cstring>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using BOOL = std::int32_t;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using LCID = std::uint32_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define __RPC_USER
#define interface struct
#define EXTERN_C extern "C"
#define STDAPI EXTERN_C __attribute__((visibility("default"))) HRESULT
#define MIDL_INTERFACE(uuid) struct
#define DECLSPEC_UUID(uuid)

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool operator==(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof(GUID)) == 0; }

/// The identifier of an interface type; each interface's declaration specialises it.
template <class Interface>
constexpr GUID UuidOf() = delete;

#define __uuidof(type) UuidOf<type>()
#define __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
  extern "C++" {                                                         \
  template <>                                                            \
  constexpr GUID UuidOf<type>() {                                        \
    return {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}};                \
  }                                                                      \
  }
#define DEFINE_GUID(name, ...) EXTERN_C const GUID name

constexpr HRESULT HResult(std::uint32_t code) { return static_cast<HRESULT>(code); }
constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = HResult(0x80004001);
constexpr HRESULT E_NOINTERFACE = HResult(0x80004002);
constexpr HRESULT E_POINTER = HResult(0x80004003);
constexpr HRESULT E_ABORT = HResult(0x80004004);
constexpr HRESULT E_FAIL = HResult(0x80004005);
constexpr HRESULT E_UNEXPECTED = HResult(0x8000FFFF);
constexpr HRESULT E_ACCESSDENIED = HResult(0x80070005);
constexpr HRESULT E_OUTOFMEMORY = HResult(0x8007000E);
constexpr HRESULT E_INVALIDARG = HResult(0x80070057);
constexpr HRESULT DISP_E_UNKNOWNINTERFACE = HResult(0x80020001);
constexpr HRESULT DISP_E_MEMBERNOTFOUND = HResult(0x80020003);
constexpr HRESULT DISP_E_PARAMNOTFOUND = HResult(0x80020004);
constexpr HRESULT DISP_E_TYPEMISMATCH = HResult(0x80020005);
constexpr HRESULT DISP_E_UNKNOWNNAME = HResult(0x80020006);
constexpr HRESULT DISP_E_BADVARTYPE = HResult(0x80020008);
constexpr HRESULT DISP_E_EXCEPTION = HResult(0x80020009);
constexpr HRESULT DISP_E_OVERFLOW = HResult(0x8002000A);
constexpr HRESULT DISP_E_BADINDEX = HResult(0x8002000B);
constexpr HRESULT DISP_E_ARRAYISLOCKED = HResult(0x8002000D);
constexpr HRESULT DISP_E_BADPARAMCOUNT = HResult(0x8002000E);
constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = HResult(0x8002802B);
constexpr HRESULT CLASS_E_NOAGGREGATION = HResult(0x80040110);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = HResult(0x80040111);
constexpr HRESULT REGDB_E_CLASSNOTREG = HResult(0x80040154);
constexpr HRESULT CO_E_CLASSSTRING = HResult(0x800401F3);
constexpr HRESULT STG_E_INVALIDFUNCTION = HResult(0x80030001);
constexpr HRESULT STG_E_INVALIDPOINTER = HResult(0x80030009);
constexpr HRESULT STG_E_MEDIUMFULL = HResult(0x80030070);
