#include "CommandLine/ResultJson.h"

#include "TextKit/DateText.h"

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using nlohmann::json;
using OffloadKit::OffloadedFile;

json paths(const std::vector<PlatformKit::Path>& list) {
  json array = json::array();
  for (const auto& path : list) array.push_back(path.native());
  return array;
}

json outcome(const OffloadedFile::Outcome& outcome) {
  if (outcome.isVerified()) return {{"verified", true}, {"resumed", outcome.isResumed()}};
  return {{"verified", false}, {"reason", outcome.reason()->english()}};
}

json destinations(const OffloadKit::OffloadResult& result) {
  json array = json::array();
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    const auto error = result.destinationErrors.find(i);
    array.push_back(
        {{"path", result.plan.destinations[i].native()},
         {"verified", result.verifiedCount(i)},
         {"readThroughCache", result.readThroughCache.contains(i)},
         {"error",
          error == result.destinationErrors.end() ? json() : json(error->second.english())}});
  }
  return array;
}

json failed(const OffloadKit::OffloadResult& result) {
  json array = json::array();
  for (const OffloadedFile* file : result.failedFiles()) {
    json outcomes = json::array();
    for (const auto& one : file->outcomes) outcomes.push_back(outcome(one));
    array.push_back({{"path", file->file.relativePath}, {"outcomes", std::move(outcomes)}});
  }
  return array;
}

json unreadable(const OffloadKit::OffloadResult& result) {
  json array = json::array();
  for (const auto& item : result.unreadable) {
    array.push_back({{"path", item.relativePath}, {"reason", item.reason.english()}});
  }
  return array;
}

json missingRecords(const OffloadKit::OffloadResult& result) {
  json array = json::array();
  for (const auto& missing : result.missingRecords) {
    const bool isReport = missing.kind == OffloadKit::MissingRecord::Kind::report;
    array.push_back({{"destination", result.plan.destinations.at(missing.destination).native()},
                     {"record", isReport ? "report" : "hashList"},
                     {"reason", missing.reason.english()}});
  }
  return array;
}

json cardImage(const OffloadKit::OffloadResult& result) {
  if (!result.cardImage) return nullptr;
  const auto& image = *result.cardImage;
  return {{"path", image.url.native()},
          {"size", image.size},
          {"verified", image.outcome.isVerified()},
          {"reason", image.outcome.isVerified() ? json() : json(image.outcome.reason()->english())},
          {"unreadableBlocks", image.unreadableBlocks}};
}

}  // namespace

json resultJson(const OffloadKit::OffloadResult& result, const OffloadKit::Verdict& verdict) {
  return {{"type", "result"},
          {"allVerified", !verdict.has(OffloadKit::Verdict::Finding::notVerified)},
          {"files", result.files.size()},
          {"totalBytes", result.totalBytes()},
          {"started", TextKit::internetDateText(result.started)},
          {"finished", TextKit::internetDateText(result.finished)},
          {"destinations", destinations(result)},
          {"failed", failed(result)},
          {"unreadable", unreadable(result)},
          {"hashLists", paths(result.mhlFiles)},
          {"reports", paths(result.reports)},
          {"missingRecords", missingRecords(result)},
          {"cardImage", cardImage(result)}};
}

}  // namespace CommandLine
