#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "com/Name.h"

namespace morvelan::com {

/// A variant that does not hold what is wanted; the text says what was expected and what was found.
class ValueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An array that could not be allocated.
class ArrayAllocationError : public std::bad_alloc {};

/// What a variant holds once references (VT_BYREF) and variants in variants are followed. The result borrows
/// from `variant`: it is read and never cleared. A null reference gives VT_EMPTY.
[[nodiscard]] VARIANT Borrow(const VARIANT& variant);
/// The value itself where a host gave a reference to it, which may go with the host's object.
[[nodiscard]] Variant Settle(Variant given);

// Reading is lenient about the form of an array (any lower bound, by reference, of variants, of any numeric
// type) and strict about its content. All throw ValueError.

[[nodiscard]] double ReadDouble(const VARIANT& variant);
[[nodiscard]] std::string ReadString(const VARIANT& variant);
[[nodiscard]] bool ReadBoolean(const VARIANT& variant);
/// Any number is taken, and rounded; a text that is one too; nothing is 0.
[[nodiscard]] std::int32_t ReadInteger(const VARIANT& variant);
/// Replaces the content of `values`, which keeps its storage.
void ReadDoubles(const VARIANT& array, std::vector<double>& values);
/// The only element of an array of numbers; nothing where there are more or none.
[[nodiscard]] std::optional<double> ReadOnlyDouble(const VARIANT& array);
[[nodiscard]] std::vector<double> ReadDoubles(const VARIANT& array);
[[nodiscard]] std::vector<std::string> ReadStrings(const VARIANT& array);
[[nodiscard]] std::vector<std::int32_t> ReadIntegers(const VARIANT& array);
/// Each element in a variant of its own, copied.
[[nodiscard]] std::vector<Variant> ReadVariants(const VARIANT& array);
/// The number of elements of an array of strings, without reading them.
[[nodiscard]] std::size_t CountStrings(const VARIANT& array);

// Writing. All throw ArrayAllocationError or std::bad_alloc.

/// A one-dimensional array with lower bound 0, its elements zero.
[[nodiscard]] Variant MakeArray(std::size_t count, VARTYPE elementType);
[[nodiscard]] Variant MakeDoubles(std::span<const double> values);
[[nodiscard]] Variant MakeStrings(std::span<const Name> values);
[[nodiscard]] Variant MakeStrings(std::span<const std::string> values);
/// An array of strings that a host gave, in strict form. Throws ValueError too.
[[nodiscard]] Variant StrictStrings(Variant array);
[[nodiscard]] Variant MakeIntegers(std::span<const std::int32_t> values);
[[nodiscard]] Variant MakeVariants(std::span<const Variant> values);
[[nodiscard]] Variant MakeDouble(double value);
[[nodiscard]] Variant MakeInteger(std::int32_t value);
[[nodiscard]] Variant MakeBoolean(bool value);
[[nodiscard]] Variant MakeString(std::string_view utf8);
[[nodiscard]] Variant MakeObject(IDispatch* object);
[[nodiscard]] Variant Copy(const VARIANT& variant);
/// An array of one text that lives as long as the module, as `KeepName` keeps the text.
[[nodiscard]] const VARIANT& KeepList(Name name);

/// "No value", for an argument that is not wanted.
inline const VARIANT kNoValue{};

constexpr VARIANT_BOOL ToVariantBool(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

/// "a number", "a text", "an array of texts", ...: what a variant holds, for messages.
[[nodiscard]] std::string Describe(const VARIANT& variant);

}  // namespace morvelan::com
