#include "TextKit/Translation.h"

#include <atomic>

namespace TextKit {
namespace {

std::atomic<const Translator*> installed = nullptr;

// No plural rule looks at more than the last digits of a number.
int pluralCount(std::size_t count) {
  constexpr std::size_t kMillion = 1'000'000;
  return static_cast<int>(count < kMillion ? count : kMillion + count % kMillion);
}

std::string found(const char* context, const char* source, const char* comment, int count) {
  const Translator* translator = installed;
  return translator == nullptr ? std::string() : translator->find(context, source, comment, count);
}

}  // namespace

void setTranslator(const Translator* translator) {
  installed = translator;
}

std::string translate(const char* context, const char* source) {
  std::string text = found(context, source, nullptr, -1);
  return text.empty() ? source : text;
}

std::string translate(const char* context, const char* several, const char* one,
                      std::size_t count) {
  std::string text = found(context, several, one, pluralCount(count));
  if (!text.empty()) return text;
  return count == 1 ? one : several;
}

std::string filled(std::string_view text, std::initializer_list<std::string_view> values) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlace =
        text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const std::size_t index = isPlace ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
    if (index < values.size()) {
      result += values.begin()[index];
      ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::optional<std::vector<std::string>> valuesIn(std::string_view sentence, std::string_view text) {
  std::vector<std::string> values;
  for (;;) {
    const std::size_t place = text.find('%');
    if (!sentence.starts_with(text.substr(0, place))) return std::nullopt;
    if (place == std::string_view::npos) break;
    sentence.remove_prefix(place);
    text.remove_prefix(place + 2);
    const std::string_view next = text.substr(0, text.find('%'));
    const std::size_t end = next.empty() ? sentence.size() : sentence.find(next);
    if (end == std::string_view::npos) return std::nullopt;
    values.emplace_back(sentence.substr(0, end));
    sentence.remove_prefix(end);
  }
  if (sentence.size() != text.size()) return std::nullopt;
  return values;
}

}  // namespace TextKit
