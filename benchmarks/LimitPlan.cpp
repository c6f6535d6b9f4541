#include "benchmarks/LimitPlan.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <getopt.h>
#include <sys/stat.h>

namespace {

constexpr const char* kUsage =
    "LimitBenchmark [--request BYTES] [--depth REQUESTS] [--parts N]\n"
    "               [--write extend|reserve|cached|overwrite] [--read direct|mapped] [--bytes N]\n"
    "               CARD FOLDER...\n";

bool parseWrite(std::string_view text, LimitPlan::Write& write) {
  using Write = LimitPlan::Write;
  if (text == "extend")
    write = Write::extend;
  else if (text == "reserve")
    write = Write::reserve;
  else if (text == "cached")
    write = Write::cached;
  else if (text == "overwrite")
    write = Write::overwrite;
  else
    return false;
  return true;
}

bool parseNumber(const char* text, std::uint64_t& number) {
  char* end = nullptr;
  number = std::strtoull(text, &end, 10);
  return number > 0 && *end == '\0';
}

bool parseRead(std::string_view text, Way& way) {
  way = text == "mapped" ? Way::mapped : Way::direct;
  return text == "mapped" || text == "direct";
}

bool parseOption(int option, LimitPlan& plan) {
  switch (option) {
    case 'r':
      return parseNumber(optarg, plan.request);
    case 'd':
      return parseNumber(optarg, plan.depth);
    case 'p':
      return parseNumber(optarg, plan.parts);
    case 'b':
      return parseNumber(optarg, plan.bytes);
    case 'w':
      return parseWrite(optarg, plan.write);
    case 'R':
      return parseRead(optarg, plan.readWay);
    default:
      return false;
  }
}

}  // namespace

std::vector<std::uint64_t> LimitPlan::requestsOfParts() const {
  std::vector<std::uint64_t> count(parts);
  for (std::uint64_t number = 0; number < requests(); ++number) ++count[partOf(number)];
  return count;
}

std::optional<LimitPlan> LimitPlan::parse(int argc, char** argv) {
  static constexpr std::array<option, 7> kOptions{{{"request", required_argument, nullptr, 'r'},
                                                   {"depth", required_argument, nullptr, 'd'},
                                                   {"parts", required_argument, nullptr, 'p'},
                                                   {"bytes", required_argument, nullptr, 'b'},
                                                   {"write", required_argument, nullptr, 'w'},
                                                   {"read", required_argument, nullptr, 'R'},
                                                   {nullptr, 0, nullptr, 0}}};
  LimitPlan plan;
  bool isRight = true;
  // No other thread runs yet.
  // NOLINTNEXTLINE(concurrency-mt-unsafe)
  for (int option; (option = getopt_long(argc, argv, "", kOptions.data(), nullptr)) >= 0;)
    isRight = parseOption(option, plan) && isRight;
  if (!isRight || argc - optind < 2 || plan.request % kBlock != 0) {
    std::fputs(kUsage, stderr);
    return std::nullopt;
  }
  plan.card = argv[optind];
  plan.folders.assign(argv + optind + 1, argv + argc);
  struct stat info {};
  if (stat(plan.card.c_str(), &info) != 0) {
    std::perror(plan.card.c_str());
    return std::nullopt;
  }
  // The last bytes of a card that is no multiple of a block are left out: the limit must not be too
  // long.
  plan.bytes = std::min(plan.bytes, static_cast<std::uint64_t>(info.st_size)) / kBlock * kBlock;
  if (plan.bytes > 0) return plan;
  std::fprintf(stderr, "%s: shorter than %llu bytes\n", plan.card.c_str(),
               static_cast<unsigned long long>(kBlock));
  return std::nullopt;
}
