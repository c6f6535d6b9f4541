#include "OffloadKit/Proof/MHLDocuments.h"

#include "OffloadKit/Proof/Markup.h"
#include "OffloadKit/Records/Version.h"
#include "PlatformKit/Posix/HostName.h"
#include "TextKit/DateText.h"

namespace OffloadKit::MHL {
namespace {

using TextKit::localInternetDateText;
using TextKit::Precision;

// Lists have hundreds of thousands of rows: everything is appended to one text, nothing formatted.
void appendHeader(std::string& text, PlatformKit::Date now) {
  text +=
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<hashlist version=\"2.0\" xmlns=\"urn:ASC:MHL:v2.0\">\n"
      "  <creatorinfo>\n"
      "    <creationdate>";
  text += localInternetDateText(now, Precision::seconds);
  text += "</creationdate>\n    <hostname>";
  text += escapeMarkup(carriedPath(PlatformKit::hostName()));
  text += "</hostname>\n    <tool version=\"";
  text += escapeMarkup(productVersion());
  text +=
      "\">Zephrimark Offload</tool>\n"
      "  </creatorinfo>\n"
      "  <processinfo>\n"
      "    <process>transfer</process>\n"
      "    <ignore>\n";
  for (const std::string_view pattern : ignorePatterns) {
    text += "      <pattern>";
    text += escapeMarkup(pattern);
    text += "</pattern>\n";
  }
  text +=
      "    </ignore>\n"
      "  </processinfo>\n"
      "  <hashes>\n";
}

void appendRow(std::string& text, const Entry& row, bool known, std::string_view element,
               const std::string& hashDate) {
  text += "    <hash>\n      <path size=\"";
  text += std::to_string(row.size);
  text += "\" lastmodificationdate=\"";
  text += localInternetDateText(row.modified, Precision::seconds);
  text += "\">";
  text += escapeMarkup(carriedPath(row.path));
  text += "</path>\n      <";
  text += element;
  text += known ? " action=\"verified\" hashdate=\"" : " action=\"original\" hashdate=\"";
  text += hashDate;
  text += "\">";
  text += row.hash;
  text += "</";
  text += element;
  text += ">\n    </hash>\n";
}

}  // namespace

std::string generationDocument(const std::vector<Entry>& rows, const std::vector<bool>& known,
                               HashKit::HashAlgorithm algorithm, PlatformKit::Date now) {
  constexpr std::size_t kUsualRow = 320;  // bytes
  std::string text;
  text.reserve(1024 + rows.size() * kUsualRow);
  appendHeader(text, now);
  const std::string hashDate = localInternetDateText(now, Precision::milliseconds);
  const std::string_view element = mhlName(algorithm);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    appendRow(text, rows[i], known[i], element, hashDate);
  }
  text += "  </hashes>\n</hashlist>\n";
  return text;
}

std::string chainDocument(const std::vector<ChainEntry>& chain) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<ascmhldirectory xmlns=\"urn:ASC:MHL:DIRECTORY:v2.0\">\n";
  for (const ChainEntry& entry : chain) {
    text += "  <hashlist sequencenr=\"" + std::to_string(entry.sequence) + "\">\n";
    text += "    <path>" + escapeMarkup(entry.path) + "</path>\n";
    text += "    <c4>" + escapeMarkup(entry.c4) + "</c4>\n";
    text += "  </hashlist>\n";
  }
  return text + "</ascmhldirectory>\n";
}

}  // namespace OffloadKit::MHL
