// A byte stream that grows in memory.

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include <ole2.h>

namespace {

using Bytes = std::vector<char>;

class MemoryStream final : public IStream {
 public:
  MemoryStream(std::shared_ptr<Bytes> content, std::size_t start) : bytes(std::move(content)), position(start) {}

  HRESULT QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid != __uuidof(IUnknown) && iid != __uuidof(ISequentialStream) && iid != __uuidof(IStream))
      return E_NOINTERFACE;
    *object = static_cast<IStream*>(this);
    AddRef();
    return S_OK;
  }
  ULONG AddRef() override { return ++references; }
  ULONG Release() override {
    const ULONG left = --references;
    if (left == 0) delete this;
    return left;
  }

  HRESULT Read(void* data, ULONG count, ULONG* read) override {
    if (read) *read = 0;
    if (!data) return STG_E_INVALIDPOINTER;
    const std::size_t available = position < bytes->size() ? bytes->size() - position : 0;
    const std::size_t taken = std::min<std::size_t>(count, available);
    std::copy_n(bytes->data() + std::min(position, bytes->size()), taken, static_cast<char*>(data));
    position += taken;
    if (read) *read = static_cast<ULONG>(taken);
    return taken == count ? S_OK : S_FALSE;
  }

  HRESULT Write(const void* data, ULONG count, ULONG* written) override {
    if (written) *written = 0;
    if (!data) return STG_E_INVALIDPOINTER;
    const HRESULT hr = Resize(std::max(bytes->size(), position + count));
    if (FAILED(hr)) return hr;
    std::copy_n(static_cast<const char*>(data), count, bytes->data() + position);
    position += count;
    if (written) *written = count;
    return S_OK;
  }

  HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override {
    LONGLONG base = 0;
    if (origin == STREAM_SEEK_CUR) base = static_cast<LONGLONG>(position);
    if (origin == STREAM_SEEK_END) base = static_cast<LONGLONG>(bytes->size());
    if (origin > STREAM_SEEK_END || base + move.QuadPart < 0) return STG_E_INVALIDFUNCTION;
    position = static_cast<std::size_t>(base + move.QuadPart);
    if (newPosition) newPosition->QuadPart = position;
    return S_OK;
  }

  HRESULT SetSize(ULARGE_INTEGER size) override { return Resize(size.QuadPart); }

  HRESULT CopyTo(IStream* target, ULARGE_INTEGER count, ULARGE_INTEGER* read, ULARGE_INTEGER* written) override {
    if (!target) return STG_E_INVALIDPOINTER;
    const std::size_t available = position < bytes->size() ? bytes->size() - position : 0;
    const auto taken = static_cast<ULONG>(std::min<ULONGLONG>({count.QuadPart, available, 0xffffffffu}));
    ULONG done = 0;
    const HRESULT hr = target->Write(bytes->data() + std::min(position, bytes->size()), taken, &done);
    position += taken;
    if (read) read->QuadPart = taken;
    if (written) written->QuadPart = done;
    return hr;
  }

  HRESULT Commit(DWORD) override { return S_OK; }
  HRESULT Revert() override { return S_OK; }
  HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
  HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }

  HRESULT Stat(STATSTG* status, DWORD) override {
    if (!status) return STG_E_INVALIDPOINTER;
    *status = STATSTG{};
    status->type = STGTY_STREAM;
    status->cbSize.QuadPart = bytes->size();
    return S_OK;
  }

  HRESULT Clone(IStream** stream) override {
    if (!stream) return STG_E_INVALIDPOINTER;
    *stream = new (std::nothrow) MemoryStream(bytes, position);
    return *stream ? S_OK : E_OUTOFMEMORY;
  }

 private:
  HRESULT Resize(ULONGLONG size) {
    try {
      bytes->resize(size);
      return S_OK;
    } catch (...) {
      return STG_E_MEDIUMFULL;
    }
  }

  std::shared_ptr<Bytes> bytes;  // shared with the clones
  std::size_t position;
  std::atomic<ULONG> references = 1;
};

}  // namespace

EXTERN_C HRESULT CreateStreamOnHGlobal(void* global, BOOL, IStream** stream) {
  if (!stream) return E_INVALIDARG;
  *stream = nullptr;
  if (global) return E_INVALIDARG;
  try {
    *stream = new MemoryStream(std::make_shared<Bytes>(), 0);
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}
