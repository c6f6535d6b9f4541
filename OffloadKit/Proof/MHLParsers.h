#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace OffloadKit::MHL {

/// One generation as the chain file lists it.
struct ChainEntry {
  std::int64_t sequence = 0;
  std::string path;  ///< the generation file's name, relative to the folder of hash lists
  std::string c4;    ///< C4 identifier of the generation file's bytes

  friend bool operator==(const ChainEntry&, const ChainEntry&) = default;
};

/// Event-driven reader of XML that may be damaged or hostile: it is fed in pieces of any size,
/// takes what is complete, and stops for good at the first fault. Document types, and with them
/// entities, count as a fault; so do a tag that never ends, elements nested too deep and too many
/// different names, since all of these take memory without bound. Element names are compared as
/// written. One thread.
class XMLReader {
 public:
  XMLReader();
  virtual ~XMLReader();
  XMLReader(const XMLReader&) = delete;
  XMLReader& operator=(const XMLReader&) = delete;

  /// Takes the next bytes. False once a fault was met, and from then on. Throws std::bad_alloc.
  bool feed(std::string_view bytes, bool last);

 protected:
  /// `attributes`: names and values in turn, then null.
  virtual void startElement(std::string_view name, const char** attributes) = 0;
  /// `text`: the characters since the last tag, without spaces and line breaks at both ends.
  virtual void endElement(std::string_view name, std::string_view text) = 0;

 private:
  struct Expat;
  std::unique_ptr<Expat> expat_;
  std::string text_;
};

/// Reader of a chain file.
class ChainParser final : public XMLReader {
 public:
  /// The entries that were complete, in the order of the file.
  [[nodiscard]] const std::vector<ChainEntry>& entries() const { return entries_; }

 private:
  void startElement(std::string_view name, const char** attributes) override;
  void endElement(std::string_view name, std::string_view text) override;

  std::vector<ChainEntry> entries_;
  ChainEntry current_;
  bool inEntry_ = false;
};

/// Reader of the paths in one generation file.
class PathParser final : public XMLReader {
 public:
  /// `found` gets every path of a file as soon as it is complete.
  explicit PathParser(std::function<void(std::string_view)> found) : found_(std::move(found)) {}

 private:
  void startElement(std::string_view name, const char** attributes) override;
  void endElement(std::string_view name, std::string_view text) override;

  std::function<void(std::string_view)> found_;
  bool inHash_ = false;
};

}  // namespace OffloadKit::MHL
