#pragma once

#include <string>
#include <type_traits>

namespace morvelan {

/// A text that is put together only when somebody reads it, such as the words of a failure that hardly ever
/// happens. It refers to the literal or the callable that it was made from, which must live as long.
class LazyText {
 public:
  LazyText(const char* literal)  // NOLINT: a literal is a text
      : source(literal), read([](const void* text) { return std::string(static_cast<const char*>(text)); }) {}
  template <class Make>
  requires std::is_invocable_r_v<std::string, const Make&> LazyText(
      const Make& make)  // NOLINT: what makes a text is one
      : source(&make), read([](const void* made) -> std::string { return (*static_cast<const Make*>(made))(); }) {}

  [[nodiscard]] std::string operator()() const { return read(source); }

 private:
  const void* source;
  std::string (*read)(const void*);
};

}  // namespace morvelan
