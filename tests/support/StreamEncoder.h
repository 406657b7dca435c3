#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace morvelan::test {

/// Writes a unit's stream as docs/persistence.md says, knowing nothing of how units do it.
class Encoder {
 public:
  explicit Encoder(std::string start = {}) : bytes(std::move(start)) {}

  Encoder& Bits(std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> 8 * i & 0xff);
    return *this;
  }
  Encoder& Int(std::int32_t value) { return Bits(static_cast<std::uint32_t>(value), 4); }
  Encoder& Real(double value) { return Bits(std::bit_cast<std::uint64_t>(value), 8); }
  Encoder& Text(std::u16string_view text) {
    Int(static_cast<std::int32_t>(text.size()));
    for (const char16_t character : text) Bits(character, 2);
    return *this;
  }
  Encoder& Head(std::u16string_view name, std::u16string_view description, int mode, int flags,
                std::array<float, 9> dimensionality, int kind) {
    Text(name).Text(description).Int(mode).Int(flags);
    for (const float exponent : dimensionality) Bits(std::bit_cast<std::uint32_t>(exponent), 4);
    return Int(kind);
  }

  std::string bytes;
};

}  // namespace morvelan::test
