#pragma once
// The object model's own interfaces: IUnknown, class factories and byte streams.

#include <windows.h>

struct IUnknown {
  virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG AddRef() = 0;
  virtual ULONG Release() = 0;
};
__CRT_UUID_DECL(IUnknown, 0x00000000, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IClassFactory : IUnknown {
  virtual HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;
  virtual HRESULT LockServer(BOOL lock) = 0;
};
__CRT_UUID_DECL(IClassFactory, 0x00000001, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

union LARGE_INTEGER {
  LONGLONG QuadPart;
};
union ULARGE_INTEGER {
  ULONGLONG QuadPart;
};

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct STATSTG {
  LPOLESTR pwcsName;
  DWORD type;
  ULARGE_INTEGER cbSize;
  FILETIME mtime;
  FILETIME ctime;
  FILETIME atime;
  DWORD grfMode;
  DWORD grfLocksSupported;
  CLSID clsid;
  DWORD grfStateBits;
  DWORD reserved;
};

enum STREAM_SEEK { STREAM_SEEK_SET = 0, STREAM_SEEK_CUR = 1, STREAM_SEEK_END = 2 };
constexpr DWORD STGTY_STREAM = 2;

struct ISequentialStream : IUnknown {
  virtual HRESULT Read(void* data, ULONG count, ULONG* read) = 0;
  virtual HRESULT Write(const void* data, ULONG count, ULONG* written) = 0;
};
__CRT_UUID_DECL(ISequentialStream, 0x0c733a30, 0x2a1c, 0x11ce, 0xad, 0xe5, 0x00, 0xaa, 0x00, 0x44, 0x77, 0x3d)

struct IStream : ISequentialStream {
  virtual HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) = 0;
  virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
  virtual HRESULT CopyTo(IStream* target, ULARGE_INTEGER count, ULARGE_INTEGER* read, ULARGE_INTEGER* written) = 0;
  virtual HRESULT Commit(DWORD flags) = 0;
  virtual HRESULT Revert() = 0;
  virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
  virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER count, DWORD type) = 0;
  virtual HRESULT Stat(STATSTG* status, DWORD flags) = 0;
  virtual HRESULT Clone(IStream** stream) = 0;
};
__CRT_UUID_DECL(IStream, 0x0000000c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IPersist : IUnknown {
  virtual HRESULT GetClassID(CLSID* clsid) = 0;
};
__CRT_UUID_DECL(IPersist, 0x0000010c, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

struct IPersistStream : IPersist {
  virtual HRESULT IsDirty() = 0;
  virtual HRESULT Load(IStream* stream) = 0;
  virtual HRESULT Save(IStream* stream, BOOL clearDirty) = 0;
  virtual HRESULT GetSizeMax(ULARGE_INTEGER* size) = 0;
};
__CRT_UUID_DECL(IPersistStream, 0x00000109, 0x0000, 0x0000, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

EXTERN_C void* CoTaskMemAlloc(std::size_t size);
EXTERN_C void CoTaskMemFree(void* memory);

/// A growing byte stream in memory. `global` must be null; the memory goes with the stream.
EXTERN_C HRESULT CreateStreamOnHGlobal(void* global, BOOL deleteOnRelease, IStream** stream);

/// Reads "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}"; anything else gives CO_E_CLASSSTRING.
EXTERN_C HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid);
/// Writes the braced form with upper-case digits and returns the characters written with the terminator (39),
/// or 0 when `capacity` is too small.
EXTERN_C int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity);

#include <oaidl.h>
