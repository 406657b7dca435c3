// SAFEARRAY of any type, dimension and lower bound. The first index varies fastest in memory, and `rgsabound`
// holds the bounds of the last dimension first, as on Windows.

#include <cstdlib>
#include <limits>
#include <new>

#include <oaidl.h>

namespace {

constexpr std::size_t kPrefix = 16;  // in front of the descriptor: the element type

char* BlockOf(SAFEARRAY* array) { return reinterpret_cast<char*>(array) - kPrefix; }

VARTYPE TypeOf(SAFEARRAY* array) {
  VARTYPE type;
  std::memcpy(&type, BlockOf(array), sizeof type);
  return type;
}

UINT ElementSize(VARTYPE type) {
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
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return 8;
    case VT_VARIANT:
      return sizeof(VARIANT);
    default:
      return 0;
  }
}

USHORT FeaturesOf(VARTYPE type) {
  switch (type) {
    case VT_BSTR:
      return FADF_HAVEVARTYPE | FADF_BSTR;
    case VT_VARIANT:
      return FADF_HAVEVARTYPE | FADF_VARIANT;
    case VT_UNKNOWN:
      return FADF_HAVEVARTYPE | FADF_UNKNOWN;
    case VT_DISPATCH:
      return FADF_HAVEVARTYPE | FADF_DISPATCH;
    default:
      return FADF_HAVEVARTYPE;
  }
}

std::size_t CountOf(const SAFEARRAY* array) {
  std::size_t count = 1;
  for (USHORT d = 0; d < array->cDims; ++d) count *= array->rgsabound[d].cElements;
  return count;
}

void* ElementAt(SAFEARRAY* array, std::size_t index) {
  return static_cast<char*>(array->pvData) + index * array->cbElements;
}

/// Copies one element so that both own what they hold. The target's earlier content is not released.
HRESULT CopyElement(VARTYPE type, UINT size, void* target, const void* source) {
  switch (type) {
    case VT_BSTR: {
      BSTR from = *static_cast<const BSTR*>(source);
      BSTR copy = from ? SysAllocStringLen(from, SysStringLen(from)) : nullptr;
      if (from && !copy) return E_OUTOFMEMORY;
      *static_cast<BSTR*>(target) = copy;
      return S_OK;
    }
    case VT_VARIANT:
      VariantInit(static_cast<VARIANT*>(target));
      return VariantCopy(static_cast<VARIANT*>(target), const_cast<VARIANT*>(static_cast<const VARIANT*>(source)));
    case VT_UNKNOWN:
    case VT_DISPATCH: {
      IUnknown* object = *static_cast<IUnknown* const*>(source);
      if (object) object->AddRef();
      *static_cast<IUnknown**>(target) = object;
      return S_OK;
    }
    default:
      std::memcpy(target, source, size);
      return S_OK;
  }
}

void ReleaseElement(VARTYPE type, void* element) {
  switch (type) {
    case VT_BSTR:
      SysFreeString(*static_cast<BSTR*>(element));
      break;
    case VT_VARIANT:
      VariantClear(static_cast<VARIANT*>(element));
      break;
    case VT_UNKNOWN:
    case VT_DISPATCH:
      if (IUnknown* object = *static_cast<IUnknown**>(element)) object->Release();
      break;
    default:
      break;
  }
}

HRESULT Locate(SAFEARRAY* array, const LONG* indices, void** element) {
  std::size_t offset = 0;
  std::size_t stride = 1;
  for (USHORT d = 0; d < array->cDims; ++d) {
    const SAFEARRAYBOUND& bound = array->rgsabound[array->cDims - 1 - d];
    const LONGLONG position = LONGLONG{indices[d]} - bound.lLbound;
    if (position < 0 || position >= bound.cElements) return DISP_E_BADINDEX;
    offset += static_cast<std::size_t>(position) * stride;
    stride *= bound.cElements;
  }
  *element = ElementAt(array, offset);
  return S_OK;
}

const SAFEARRAYBOUND* BoundOf(SAFEARRAY* array, UINT dimension) {
  if (!array || dimension < 1 || dimension > array->cDims) return nullptr;
  return &array->rgsabound[array->cDims - dimension];
}

/// Bytes for the elements, or 0 when the bounds multiply beyond what can be addressed.
std::size_t DataSize(UINT elementSize, UINT dimensions, const SAFEARRAYBOUND* bounds) {
  constexpr std::size_t kLimit = std::numeric_limits<LONG>::max();
  std::size_t size = elementSize;
  for (UINT d = 0; d < dimensions; ++d) {
    if (bounds[d].cElements != 0 && size > kLimit / bounds[d].cElements) return 0;
    size *= bounds[d].cElements;
  }
  return size == 0 ? 1 : size;
}

}  // namespace

EXTERN_C SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  const UINT elementSize = ElementSize(type);
  if (elementSize == 0 || dimensions == 0 || dimensions > 32 || !bounds) return nullptr;
  const std::size_t dataSize = DataSize(elementSize, dimensions, bounds);
  if (dataSize == 0) return nullptr;
  const std::size_t descriptor = sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
  char* block = static_cast<char*>(std::calloc(1, kPrefix + descriptor));
  void* data = std::calloc(1, dataSize);
  if (!block || !data) {
    std::free(block);
    std::free(data);
    return nullptr;
  }
  std::memcpy(block, &type, sizeof type);
  SAFEARRAY* array = new (block + kPrefix) SAFEARRAY{};
  array->cDims = static_cast<USHORT>(dimensions);
  array->fFeatures = FeaturesOf(type);
  array->cbElements = elementSize;
  array->pvData = data;
  for (UINT d = 0; d < dimensions; ++d) array->rgsabound[dimensions - 1 - d] = bounds[d];
  return array;
}

EXTERN_C SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements) {
  SAFEARRAYBOUND bound{elements, lowerBound};
  return SafeArrayCreate(type, 1, &bound);
}

EXTERN_C HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (!array) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  const VARTYPE type = TypeOf(array);
  if (array->fFeatures & (FADF_BSTR | FADF_VARIANT | FADF_UNKNOWN | FADF_DISPATCH))
    for (std::size_t i = 0; i < CountOf(array); ++i) ReleaseElement(type, ElementAt(array, i));
  std::free(array->pvData);
  std::free(BlockOf(array));
  return S_OK;
}

EXTERN_C HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** target) {
  if (!target) return E_INVALIDARG;
  *target = nullptr;
  if (!source) return S_OK;
  SAFEARRAYBOUND bounds[32];
  for (USHORT d = 0; d < source->cDims; ++d) bounds[d] = source->rgsabound[source->cDims - 1 - d];
  SAFEARRAY* copy = SafeArrayCreate(TypeOf(source), source->cDims, bounds);
  if (!copy) return E_OUTOFMEMORY;
  const VARTYPE type = TypeOf(source);
  for (std::size_t i = 0; i < CountOf(source); ++i) {
    const HRESULT hr = CopyElement(type, source->cbElements, ElementAt(copy, i), ElementAt(source, i));
    if (FAILED(hr)) {
      SafeArrayDestroy(copy);
      return hr;
    }
  }
  *target = copy;
  return S_OK;
}

EXTERN_C UINT SafeArrayGetDim(SAFEARRAY* array) { return array ? array->cDims : 0; }
EXTERN_C UINT SafeArrayGetElemsize(SAFEARRAY* array) { return array ? array->cbElements : 0; }

EXTERN_C HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
  if (!array || !type) return E_INVALIDARG;
  *type = TypeOf(array);
  return S_OK;
}

EXTERN_C HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (!array || !bound) return E_INVALIDARG;
  const SAFEARRAYBOUND* found = BoundOf(array, dimension);
  if (!found) return DISP_E_BADINDEX;
  *bound = found->lLbound;
  return S_OK;
}

EXTERN_C HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (!array || !bound) return E_INVALIDARG;
  const SAFEARRAYBOUND* found = BoundOf(array, dimension);
  if (!found) return DISP_E_BADINDEX;
  *bound = found->lLbound + static_cast<LONG>(found->cElements) - 1;
  return S_OK;
}

EXTERN_C HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (!array || !data) return E_INVALIDARG;
  ++array->cLocks;
  *data = array->pvData;
  return S_OK;
}

EXTERN_C HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
  if (!array) return E_INVALIDARG;
  if (array->cLocks == 0) return E_UNEXPECTED;
  --array->cLocks;
  return S_OK;
}

EXTERN_C HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value) {
  if (!array || !indices || !value) return E_INVALIDARG;
  void* element = nullptr;
  const HRESULT hr = Locate(array, indices, &element);
  return FAILED(hr) ? hr : CopyElement(TypeOf(array), array->cbElements, value, element);
}

EXTERN_C HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value) {
  if (!array || !indices) return E_INVALIDARG;
  void* element = nullptr;
  HRESULT hr = Locate(array, indices, &element);
  if (FAILED(hr)) return hr;
  // The pointer to a string or an object is itself what is put; other values are passed by address.
  const VARTYPE type = TypeOf(array);
  const bool byPointer = type == VT_BSTR || type == VT_UNKNOWN || type == VT_DISPATCH;
  alignas(VARIANT) char copy[sizeof(VARIANT)] = {};
  if (!byPointer && !value) return E_INVALIDARG;
  hr = CopyElement(type, array->cbElements, copy, byPointer ? static_cast<const void*>(&value) : value);
  if (FAILED(hr)) return hr;
  ReleaseElement(type, element);
  std::memcpy(element, copy, array->cbElements);
  return S_OK;
}
