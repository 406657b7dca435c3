#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "com/Platform.h"
#include "errors/Failure.h"

namespace morvelan {

// What units keep in a host's stream: little-endian integers of 32 bits, doubles of 64, texts as UTF-16 with
// their length in characters in front.

/// A failure of a unit to save or load what it keeps beyond its parameters.
[[nodiscard]] inline Failure SaveFailure(std::string title, std::string description) {
  return Failure(UnitError{std::move(title), std::move(description), "Save", "IPersistStream"});
}
[[nodiscard]] inline Failure LoadFailure(std::string title, std::string description) {
  return Failure(UnitError{std::move(title), std::move(description), "Load", "IPersistStream"});
}

/// Writes to a host's stream, or only counts the bytes when there is none. Values are gathered and written by
/// `Flush`, or when there are many. A write that fails or is short throws Failure with the text "Write
/// error".
class UnitWriter {
 public:
  explicit UnitWriter(IStream* target) : stream(target) {}

  template <class Value>
  void Write(Value value) {
    static_assert(std::is_arithmetic_v<Value> && !std::is_same_v<Value, bool>);
    WriteBytes(&value, sizeof value);
  }
  void WriteText(std::string_view text);
  /// A text that is followed by a character 0, unless it is empty.
  void WriteTerminatedText(std::string_view text);
  void WriteBytes(const void* bytes, std::size_t count);
  void Flush();

  /// All bytes so far.
  [[nodiscard]] std::uint64_t Count() const { return total; }

 private:
  IStream* stream;
  std::string pending;
  std::uint64_t total = 0;
};

/// Reads from a host's stream. What can't be read throws Failure with the text "read error". No length that
/// the stream names makes it take more memory than a small multiple of what the stream holds.
class UnitReader {
 public:
  explicit UnitReader(IStream& source) : stream(source) {}

  template <class Value>
  [[nodiscard]] Value Read() {
    static_assert(std::is_arithmetic_v<Value> && !std::is_same_v<Value, bool>);
    Value value{};
    ReadBytes(&value, sizeof value);
    return value;
  }
  /// A count, which may not be negative.
  [[nodiscard]] std::size_t ReadCount();
  [[nodiscard]] std::string ReadText();
  [[nodiscard]] std::string ReadTerminatedText();
  void ReadBytes(void* bytes, std::size_t count);

 private:
  [[nodiscard]] std::string ReadCharacters(std::size_t count);

  IStream& stream;
};

}  // namespace morvelan
