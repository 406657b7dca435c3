#pragma once
// Interfaces of controls and their clients, of which units offer a few.

#include <oaidl.h>

struct IProvideClassInfo : IUnknown {
  virtual HRESULT GetClassInfo(ITypeInfo** info) = 0;
};
__CRT_UUID_DECL(IProvideClassInfo, 0xb196b283, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)

struct IPersistStreamInit : IPersist {
  virtual HRESULT IsDirty() = 0;
  virtual HRESULT Load(IStream* stream) = 0;
  virtual HRESULT Save(IStream* stream, BOOL clearDirty) = 0;
  virtual HRESULT GetSizeMax(ULARGE_INTEGER* size) = 0;
  virtual HRESULT InitNew() = 0;
};
__CRT_UUID_DECL(IPersistStreamInit, 0x7fd52380, 0x4e07, 0x101b, 0xae, 0x2d, 0x08, 0x00, 0x2b, 0x2e, 0xc7, 0x13)
