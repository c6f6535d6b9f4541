#include "fuzz/Markup.h"

#include <memory>

#include <expat.h>

namespace Fuzz {
namespace {

struct State {
  std::vector<Element> elements;
  std::vector<std::size_t> open;
};

void onStart(void* user, const XML_Char* name, const XML_Char** attributes) {
  auto& state = *static_cast<State*>(user);
  state.open.push_back(state.elements.size());
  state.elements.push_back({name, {}, {}});
  for (; *attributes != nullptr; attributes += 2) {
    if (std::string_view(attributes[0]) == "class") state.elements.back().kind = attributes[1];
  }
}

void onEnd(void* user, const XML_Char* /*name*/) {
  static_cast<State*>(user)->open.pop_back();
}

void onText(void* user, const XML_Char* text, int length) {
  auto& state = *static_cast<State*>(user);
  state.elements[state.open.back()].text.append(text, static_cast<std::size_t>(length));
}

}  // namespace

std::optional<std::vector<Element>> elementsOf(std::string_view document) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate("UTF-8"), XML_ParserFree);
  State state;
  XML_SetUserData(parser.get(), &state);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  XML_SetCharacterDataHandler(parser.get(), onText);
  const auto status =
      XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1);
  if (status != XML_STATUS_OK) return std::nullopt;
  return std::move(state.elements);
}

}  // namespace Fuzz
