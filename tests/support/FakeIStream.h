#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

#include "com/Object.h"

namespace morvelan::test {

/// How a host's stream lets a unit down.
enum class StreamFault {
  kFails,      // a failure code, nothing done
  kDoesLess,   // success, but a byte less than asked for
  kDoesNone,   // success, but nothing done
  kClaimsMore  // success, with a count beyond what was asked for
};

/// A host's byte stream in memory, which lets one of its calls fail.
class FakeIStream final : public com::Implements<com::ObjectCore, IStream> {
 public:
  explicit FakeIStream(std::string content = {}) : bytes(std::move(content)) {}

  HRESULT Read(void* data, ULONG count, ULONG* read) override {
    const std::size_t left = bytes.size() - position;
    if (onEnd && left < count) onEnd();
    const std::size_t given = std::min<std::size_t>(left, count);
    return Do(count, given, read, [&](std::size_t done) {
      std::memcpy(data, bytes.data() + position, done);
      position += done;
    });
  }
  HRESULT Write(const void* data, ULONG count, ULONG* written) override {
    return Do(count, count, written, [&](std::size_t done) { bytes.append(static_cast<const char*>(data), done); });
  }
  HRESULT Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  HRESULT Commit(DWORD) override { return E_NOTIMPL; }
  HRESULT Revert() override { return E_NOTIMPL; }
  HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  HRESULT Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  HRESULT Clone(IStream**) override { return E_NOTIMPL; }

  /// The references held on this object, the caller's included.
  ULONG References() {
    AddRef();
    return Release();
  }

  std::string bytes;
  std::size_t position = 0;  // of the next byte to be read; writing appends
  int calls = 0;             // reads and writes
  int failAt = 0;            // the call with the fault, from 1; 0 for none
  StreamFault fault = StreamFault::kFails;
  std::function<void()> onCall;  // within each read and write
  std::function<void()> onEnd;   // when more is asked for than is left

 private:
  template <class Transfer>
  HRESULT Do(ULONG wanted, std::size_t possible, ULONG* done, Transfer&& transfer) {
    const bool faulty = ++calls == failAt;
    if (onCall) onCall();
    if (faulty && fault == StreamFault::kFails) return STG_E_MEDIUMFULL;
    if (faulty && fault == StreamFault::kDoesLess && possible > 0) --possible;
    if (faulty && fault == StreamFault::kDoesNone) possible = 0;
    transfer(possible);
    *done = faulty && fault == StreamFault::kClaimsMore ? wanted + 1 : static_cast<ULONG>(possible);
    return S_OK;
  }
};

}  // namespace morvelan::test
