#include "framework/UnitStream.h"

#include <algorithm>
#include <bit>

#include "com/Text.h"
#include "errors/Failure.h"

namespace morvelan {
namespace {

static_assert(std::endian::native == std::endian::little && sizeof(OLECHAR) == 2);

constexpr std::size_t kLargestPending = 1 << 16;  // [bytes]
constexpr std::size_t kChunk = 1 << 14;           // [characters]

Failure ReadFailure() { return LoadFailure("read error", "read error"); }

}  // namespace

void UnitWriter::WriteBytes(const void* bytes, std::size_t count) {
  total += count;
  if (!stream) return;
  pending.append(static_cast<const char*>(bytes), count);
  if (pending.size() >= kLargestPending) Flush();
}

void UnitWriter::Flush() {
  if (pending.empty()) return;
  const auto count = static_cast<ULONG>(pending.size());
  ULONG written = 0;
  if (FAILED(stream->Write(pending.data(), count, &written)) || written != count)
    throw SaveFailure("Write error", "Write error");
  pending.clear();
}

void UnitWriter::WriteText(std::string_view text) {
  const com::Bstr wide = com::ToBstr(text);
  const UINT length = SysStringLen(wide.Get());
  Write(static_cast<std::int32_t>(length));
  WriteBytes(wide.Get(), length * sizeof(OLECHAR));
}

void UnitWriter::WriteTerminatedText(std::string_view text) {
  WriteText(text);
  if (!text.empty()) Write(std::uint16_t{0});
}

void UnitReader::ReadBytes(void* bytes, std::size_t count) {
  ULONG read = 0;
  if (FAILED(stream.Read(bytes, static_cast<ULONG>(count), &read)) || read != count) throw ReadFailure();
}

std::size_t UnitReader::ReadCount() {
  const auto count = Read<std::int32_t>();
  if (count < 0) throw ReadFailure();
  return static_cast<std::size_t>(count);
}

std::string UnitReader::ReadCharacters(std::size_t count) {
  std::basic_string<OLECHAR> text;
  while (count > 0) {
    const std::size_t taken = std::min(count, kChunk);
    text.resize(text.size() + taken);
    ReadBytes(text.data() + text.size() - taken, taken * sizeof(OLECHAR));
    count -= taken;
  }
  return com::ToUtf8(text.data(), text.size());
}

std::string UnitReader::ReadText() { return ReadCharacters(ReadCount()); }

std::string UnitReader::ReadTerminatedText() {
  const std::size_t count = ReadCount();
  if (count == 0) return {};
  std::string text = ReadCharacters(count);
  if (Read<std::uint16_t>() != 0) throw ReadFailure();
  return text;
}

}  // namespace morvelan
