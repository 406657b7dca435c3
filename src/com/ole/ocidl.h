#pragma once
// Interfaces of controls and their clients, of which units offer a few.

#include <oaidl.h>

struct IProvideClassInfo : IUnknown {
  virtual HRESULT GetClassInfo(ITypeInfo** info) = 0;
};
__CRT_UUID_DECL(IProvideClassInfo, 0xb196b283, 0xbab4, 0x101a, 0xb6, 0x9c, 0x00, 0xaa, 0x00, 0x34, 0x1d, 0x07)
