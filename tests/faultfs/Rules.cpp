#include "tests/faultfs/Rules.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <sstream>
#include <thread>

namespace FaultFs {

bool Rules::set(Rule& rule, const std::string& key, const std::string& value) {
  if (key == "at") {
    rule.at = value;
    return true;
  }
  std::int64_t number = 0;
  const char* end = value.data() + value.size();
  if (std::from_chars(value.data(), end, number).ptr != end || number < 0) return false;
  if (key == "from") {
    rule.from = number;
  } else if (key == "to") {
    rule.to = number;
  } else if (key == "nth") {
    rule.nth = number;
  } else if (key == "times") {
    rule.times = number;
  } else if (key == "delay") {
    rule.delay = number;
  } else if (key == "hold") {
    rule.hold = number != 0;
  } else if (key == "flip") {
    rule.effect.flip = number != 0;
  } else if (key == "error") {
    rule.effect.error = static_cast<int>(number);
  } else if (key == "short") {
    rule.effect.most = static_cast<std::size_t>(number);
  } else {
    return false;
  }
  return true;
}

bool Rules::parse(const std::string& line, Rule& rule) {
  std::istringstream words(line);
  words >> rule.call;
  for (std::string word; words >> word;) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) return false;
    if (!set(rule, word.substr(0, equals), word.substr(equals + 1))) return false;
  }
  return !rule.call.empty();
}

bool Rules::replace(const std::string& lines) {
  std::vector<Rule> rules;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    if (!parse(line, rules.emplace_back())) return false;
  }
  const std::lock_guard lock(mutex_);
  rules_ = std::move(rules);
  ++generation_;
  replaced_.notify_all();
  return true;
}

std::string Rules::counts() const {
  const std::lock_guard lock(mutex_);
  std::string text;
  for (const Rule& rule : rules_) text += std::to_string(rule.done) + "\n";
  return text;
}

Effect Rules::onCall(std::string_view call, std::string_view path, std::int64_t offset,
                     std::size_t size) {
  Effect effect;
  std::int64_t delay = 0;
  bool hold = false;
  std::unique_lock lock(mutex_);
  const std::int64_t end = offset + static_cast<std::int64_t>(size);
  for (Rule& rule : rules_) {
    const bool everywhere = rule.from == 0 && rule.to == kEnd;
    const bool touches = everywhere || (size > 0 && offset < rule.to && rule.from < end);
    if ((rule.call != "any" && rule.call != call) || !path.ends_with(rule.at) || !touches) continue;
    if (++rule.seen < rule.nth || rule.done >= rule.times) continue;
    ++rule.done;
    delay += rule.delay;
    hold = hold || rule.hold;
    if (rule.effect.error != 0) effect.error = rule.effect.error;
    effect.most = std::min(effect.most, rule.effect.most);
    effect.flip = effect.flip || rule.effect.flip;
  }
  if (hold) replaced_.wait(lock, [&, before = generation_] { return generation_ != before; });
  lock.unlock();
  if (delay > 0) std::this_thread::sleep_for(std::chrono::microseconds(delay));
  return effect;
}

}  // namespace FaultFs
