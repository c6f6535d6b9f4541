#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TextKit {

/// Knows the texts of one language.
class Translator {
 public:
  virtual ~Translator() = default;
  /// The text for `source`, which is English; empty when there is none. `comment` belongs to the
  /// source text and may be null; `count` chooses the plural form, -1 where there is none. Any
  /// thread.
  [[nodiscard]] virtual std::string find(const char* context, const char* source,
                                         const char* comment, int count) const = 0;
};

/// From now on texts come from this translator; null, as at the start: from the source, in English.
/// It outlives every use. Called before other threads ask for texts.
void setTranslator(const Translator* translator);

/// The English text in the user's language; without a translation the English text itself. The tool
/// that collects the texts reads these calls, so context and text are literals. Any thread.
std::string translate(const char* context, const char* source);

/// The same for a text with a number in it: in English `one` if `count` is 1, else `several`;
/// another language has as many forms as it needs. The number is filled in like every other value.
std::string translate(const char* context, const char* several, const char* one, std::size_t count);

/// Marks a text that is translated elsewhere, as by a table; the text itself.
constexpr const char* translatable(const char* /*context*/, const char* source) {
  return source;
}

/// The text with each %1 to %9 replaced by its value, in whatever order a language has them. A
/// place without a value stays. Values are taken as they are, also when they hold a "%1". Any
/// thread.
std::string filled(std::string_view text, std::initializer_list<std::string_view> values);

/// The way back: what a sentence has in the places of the text that it was made from, in their
/// order; none when it was made from another text. Any thread.
std::optional<std::vector<std::string>> valuesIn(std::string_view sentence, std::string_view text);

}  // namespace TextKit
