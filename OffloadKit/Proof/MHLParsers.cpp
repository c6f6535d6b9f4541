#include "OffloadKit/Proof/MHLParsers.h"

#include "TextKit/Unicode.h"

#include <charconv>
#include <new>
#include <set>

#include <expat.h>

namespace OffloadKit::MHL {
namespace {

// No path and no identifier is nearly as long; more text than this is not kept.
constexpr std::size_t kLongestText = std::size_t{1} << 20;

// How far the reader may fall behind what it was fed, waiting for the end of one tag.
constexpr std::int64_t kLongestToken = std::int64_t{4} << 20;

// Expat keeps what is open and every name it has met; the format nests less than ten elements and
// has less than a hundred names.
constexpr std::size_t kDeepest = 100;
constexpr std::size_t kLargestVocabulary = std::size_t{1} << 20;  // bytes

std::int64_t sequenceOf(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t number = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc{} && parsed.ptr == end ? number : 0;
}

std::string_view attributeOf(const char** attributes, std::string_view name) {
  for (; *attributes != nullptr; attributes += 2) {
    if (name == attributes[0]) return attributes[1];
  }
  return {};
}

// Where the last event began. The first call is newer than Expat 2.5, which Debian 12 has; where it
// exists, the second one is deprecated.
template <typename Parser>
std::int64_t positionOf(Parser parser) {
  if constexpr (requires { XML_GetCurrentByteIndex64(parser); }) {
    return XML_GetCurrentByteIndex64(parser);
  } else {
    return XML_GetCurrentByteIndex(parser);
  }
}

}  // namespace

struct XMLReader::Expat {
  explicit Expat(XMLReader& owner) : parser(XML_ParserCreate(nullptr)), reader(owner) {
    if (parser == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onText);
    XML_SetStartDoctypeDeclHandler(parser, onDocumentType);
  }
  ~Expat() { XML_ParserFree(parser); }
  Expat(const Expat&) = delete;
  Expat& operator=(const Expat&) = delete;

  static Expat& of(void* user) { return *static_cast<Expat*>(user); }

  static void onStart(void* user, const XML_Char* name, const XML_Char** attributes) {
    Expat& self = of(user);
    self.reader.text_.clear();
    ++self.depth;
    self.learn(name);
    for (const XML_Char** at = attributes; *at != nullptr; at += 2) self.learn(*at);
    if (self.isTooMuch()) {
      XML_StopParser(self.parser, XML_FALSE);
      return;
    }
    self.reader.startElement(name, attributes);
  }
  static void onEnd(void* user, const XML_Char* name) {
    Expat& self = of(user);
    // An element without content still ends after its start has stopped the parser.
    if (self.isTooMuch()) return;
    --self.depth;
    self.reader.endElement(name, TextKit::trimmed(self.reader.text_));
    // Or the ends of many elements would trim one long text again and again.
    self.reader.text_.clear();
  }
  static void onText(void* user, const XML_Char* text, int length) {
    std::string& collected = of(user).reader.text_;
    if (collected.size() < kLongestText) collected.append(text, static_cast<std::size_t>(length));
  }
  static void onDocumentType(void* user, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    XML_StopParser(of(user).parser, XML_FALSE);
  }

  void learn(std::string_view name) {
    constexpr std::size_t kBeside = 100;  // bytes that a name takes beside its own
    if (isTooMuch() || names.find(name) != names.end()) return;
    names.emplace(name);
    vocabulary += name.size() + kBeside;
  }
  [[nodiscard]] bool isTooMuch() const {
    return depth > kDeepest || vocabulary > kLargestVocabulary;
  }

  XML_Parser parser;
  XMLReader& reader;
  std::size_t depth = 0;
  std::set<std::string, std::less<>> names;
  std::size_t vocabulary = 0;
  std::int64_t fed = 0;
  bool faulty = false;
};

XMLReader::XMLReader() : expat_(std::make_unique<Expat>(*this)) {}
XMLReader::~XMLReader() = default;

bool XMLReader::feed(std::string_view bytes, bool last) {
  if (expat_->faulty) return false;
  const auto status =
      XML_Parse(expat_->parser, bytes.data(), static_cast<int>(bytes.size()), last ? 1 : 0);
  expat_->fed += static_cast<std::int64_t>(bytes.size());
  expat_->faulty =
      status != XML_STATUS_OK || expat_->fed - positionOf(expat_->parser) > kLongestToken;
  return !expat_->faulty;
}

void ChainParser::startElement(std::string_view name, const char** attributes) {
  if (name != "hashlist") return;
  inEntry_ = true;
  current_ = {sequenceOf(attributeOf(attributes, "sequencenr")), {}, {}};
}

void ChainParser::endElement(std::string_view name, std::string_view text) {
  if (!inEntry_) return;
  if (name == "path") current_.path = text;
  if (name == "c4") current_.c4 = text;
  if (name == "hashlist") {
    entries_.push_back(std::move(current_));
    inEntry_ = false;
  }
}

void PathParser::startElement(std::string_view name, const char** /*attributes*/) {
  if (name == "hash") inHash_ = true;
}

void PathParser::endElement(std::string_view name, std::string_view text) {
  if (name == "path" && inHash_) found_(text);
  if (name == "hash") inHash_ = false;
}

}  // namespace OffloadKit::MHL
