#include "OffloadKit/Records/FolderPreset.h"

#include "TextKit/DateText.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>

namespace OffloadKit {
namespace {

using TextKit::translatable;

bool isUnsafe(char32_t character) {
  return std::u32string_view(U"/\\:*?\"<>|").find(character) != std::u32string_view::npos ||
         TextKit::isControlCharacter(character);
}

bool isTrimmed(char32_t character) {
  return character == U'.' || TextKit::isSpaceCharacter(character);
}

std::string trimmed(std::string_view text) {
  std::size_t start = text.size();
  std::size_t end = 0;
  TextKit::forEachCharacter(text, [&](char32_t character, bool, std::string_view bytes) {
    if (isTrimmed(character)) return;
    const auto at = static_cast<std::size_t>(bytes.data() - text.data());
    start = std::min(start, at);
    end = at + bytes.size();
  });
  return std::string(text.substr(start, start < end ? end - start : 0));
}

using Context = FolderPreset::Context;

// Every token with its meaning and how its text is made. What a value has that a folder must not
// have is taken out of the whole component.
constexpr std::array kTokens = {
    FolderPreset::Token{
        "{date}", translatable("Setup", "Date of the offload, 2026-10-07"),
        [](const Context& context) { return TextKit::localDateText(context.date, "%Y-%m-%d"); }},
    FolderPreset::Token{
        "{time}", translatable("Setup", "Time of the offload, 1432"),
        [](const Context& context) { return TextKit::localDateText(context.date, "%H%M"); }},
    FolderPreset::Token{"{card}", translatable("Setup", "The card's name, EOS_DIGITAL"),
                        [](const Context& context) { return context.card; }},
    FolderPreset::Token{"{camera}", translatable("Setup", "Camera brand, from the card's folders"),
                        [](const Context& context) { return context.camera; }},
    FolderPreset::Token{"{project}", translatable("Setup", "The project name you type"),
                        [](const Context& context) {
                          return context.project.empty() ? "Untitled" : context.project;
                        }}};

std::string substituted(std::string_view text, const Context& context) {
  std::string result;
  while (!text.empty()) {
    const auto token = std::find_if(
        kTokens.begin(), kTokens.end(),
        [&](const FolderPreset::Token& candidate) { return text.starts_with(candidate.token); });
    const bool isText = token == kTokens.end();
    result += isText ? std::string(1, text.front()) : FolderPreset::clean(token->value(context));
    text.remove_prefix(isText ? 1 : token->token.size());
  }
  return result;
}

}  // namespace

const std::array<FolderPreset, 4>& FolderPreset::presets() {
  static const std::array<FolderPreset, 4> list = {{{"{date}/{card}"},
                                                    {"{date}/{camera}/{card}"},
                                                    {"{project}/{date}/{card}"},
                                                    {"{date}_{project}/{camera}"}}};
  return list;
}

std::span<const FolderPreset::Token> FolderPreset::tokens() {
  return kTokens;
}

std::string FolderPreset::resolve(const Context& context) const {
  const std::string text = substituted(templateText, context);
  std::string path;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find('/', start), text.size());
    // Cleaning takes dots from both ends, so "." and ".." come out empty.
    const std::string piece = clean(std::string_view(text).substr(start, end - start));
    if (!piece.empty()) path += (path.empty() ? "" : "/") + piece;
    start = end + 1;
  }
  return path.empty() ? clean(kTokens.front().value(context)) : path;
}

std::string FolderPreset::clean(std::string_view text) {
  std::string safe;
  TextKit::forEachCharacter(text, [&](char32_t character, bool valid, std::string_view bytes) {
    safe += valid && !isUnsafe(character) ? bytes : std::string_view("-");
  });
  return trimmed(safe);
}

}  // namespace OffloadKit
