#include "tests/torture/DiskModel.h"

#include <algorithm>
#include <stdexcept>

namespace Torture {

using Kind = Step::Kind;

namespace {

class RecordedFile final : public PassThroughWritable {
 public:
  RecordedFile(Recorder& owner, std::size_t number,
               std::unique_ptr<PlatformKit::WritableFile> below)
      : PassThroughWritable(std::move(below)), owner_(owner), number_(number) {}

  PlatformKit::Result<std::size_t> write(std::span<const std::byte> bytes) override {
    auto count = below_->write(bytes);
    if (count.ok()) {
      owner_.record(0, {Kind::write,
                        {},
                        {},
                        number_,
                        {reinterpret_cast<const char*>(bytes.data()), count.value()}});
    }
    return count;
  }
  int setDates(PlatformKit::Date modified, std::optional<PlatformKit::Date> created) override {
    return owner_.record(below_->setDates(modified, created),
                         {Kind::setDates, {}, {}, number_, {}, modified});
  }
  int flush() override { return owner_.record(below_->flush(), {Kind::flush, {}, {}, number_}); }

 private:
  Recorder& owner_;
  const std::size_t number_;
};

// One that can be flushed, too.
class RecordedReading final : public PassThroughReadable {
 public:
  RecordedReading(Recorder& owner, Step flush, std::unique_ptr<PlatformKit::ReadableFile> below)
      : PassThroughReadable(std::move(below)), owner_(owner), flush_(std::move(flush)) {}

  int flush() override { return owner_.record(below_->flush(), flush_); }

 private:
  Recorder& owner_;
  const Step flush_;
};

// Content that was not flushed, under a name that may have been.
Item torn(const Item& now, const Item& flushed, std::minstd_rand& random) {
  constexpr std::size_t kSector = 512;
  if (now == flushed) return flushed;
  Item left = now;
  if (now.bytes != flushed.bytes) {
    // Mostly of full size, which is the one that the next run could take for a copy.
    if (random() % 4 == 0) left.bytes.resize(random() % (now.bytes.size() + 1));
    for (std::size_t start = 0; start < left.bytes.size(); start += kSector) {
      const std::size_t length = std::min(kSector, left.bytes.size() - start);
      const auto kind = random() % 4;
      if (kind == 0) left.bytes.replace(start, length, length, '\0');
      if (kind == 1) left.bytes.replace(start, length, length, static_cast<char>(random()));
      if (kind == 2 && start + length <= flushed.bytes.size()) {
        left.bytes.replace(start, length, flushed.bytes, start, length);
      }
    }
  }
  if (random() % 2 == 0) left.modified = flushed.modified;
  return left;
}

}  // namespace

std::string Recorder::relative(const Path& path) const {
  return path.lexically_relative(top_).native();
}

int Recorder::record(int error, Step step) {
  if (error != 0) return error;
  const std::lock_guard lock(mutex_);
  // What lies outside, such as the folders above, is on the drive since long ago.
  if (!step.path.starts_with("..")) steps_.push_back(std::move(step));
  return 0;
}

PlatformKit::Result<std::unique_ptr<PlatformKit::WritableFile>> Recorder::createFile(
    const Path& path) {
  auto created = below_.createFile(path);
  if (!created.ok()) return created;
  const std::size_t number = [&] {
    const std::lock_guard lock(mutex_);
    steps_.push_back({Kind::createFile, relative(path), {}, ++files_});
    numbers_[relative(path)] = files_;
    return files_;
  }();
  return std::unique_ptr<PlatformKit::WritableFile>(
      std::make_unique<RecordedFile>(*this, number, std::move(created.value())));
}

int Recorder::createFolder(const Path& path) {
  return record(below_.createFolder(path), {Kind::createFolder, relative(path)});
}

PlatformKit::Result<std::unique_ptr<PlatformKit::ReadableFile>> Recorder::openForReading(
    const Path& path, PlatformKit::ReadMode mode) {
  auto opened = below_.openForReading(path, mode);
  if (!opened.ok()) return opened;
  Step flush{Kind::flush, relative(path)};
  const std::lock_guard lock(mutex_);
  // It may have another name when it is flushed.
  if (const auto number = numbers_.find(flush.path); number != numbers_.end()) {
    flush.file = number->second;
  }
  return std::unique_ptr<PlatformKit::ReadableFile>(
      std::make_unique<RecordedReading>(*this, std::move(flush), std::move(opened.value())));
}

int Recorder::moved(int error, const Path& from, const Path& to) {
  if (record(error, {Kind::move, relative(from), relative(to)}) != 0) return error;
  const std::lock_guard lock(mutex_);
  if (auto number = numbers_.extract(relative(from))) numbers_[relative(to)] = number.mapped();
  return 0;
}

int Recorder::moveWithoutReplacing(const Path& from, const Path& to) {
  return moved(below_.moveWithoutReplacing(from, to), from, to);
}

int Recorder::moveReplacing(const Path& from, const Path& to) {
  return moved(below_.moveReplacing(from, to), from, to);
}

int Recorder::removeFile(const Path& path) {
  return record(below_.removeFile(path), {Kind::remove, relative(path)});
}

int Recorder::setDates(const Path& path, PlatformKit::Date modified,
                       std::optional<PlatformKit::Date> created) {
  return record(below_.setDates(path, modified, created),
                {Kind::setDates, relative(path), {}, 0, {}, modified});
}

int Recorder::flushFolder(const Path& folder) {
  return record(below_.flushFolder(folder), {Kind::flushFolder, relative(folder)});
}

int Recorder::flushVolume(const Path& folder) {
  return record(below_.flushVolume(folder), {Kind::flushVolume, relative(folder)});
}

DiskModel::DiskModel(const Snapshot& flushed, const Snapshot& cached, bool fat)
    : nodes_(1), fat_(fat) {
  nodes_[0].isFolder = true;
  load(flushed);
  flushBelow(0);
  load(cached);
}

void DiskModel::load(const Snapshot& items) {
  for (const auto& [path, item] : items) {
    const bool isFolder = path.ends_with('/');
    const std::size_t node = add(isFolder ? Path(path).parent_path() : Path(path), isFolder);
    nodes_[node].now = item;
  }
}

std::size_t DiskModel::find(const Path& path) const {
  std::size_t node = 0;
  for (const Path& name : path) {
    if (name != ".") node = nodes_[node].names.at(name);
  }
  return node;
}

std::size_t DiskModel::add(const Path& path, bool isFolder) {
  const std::size_t node = nodes_.size();
  nodes_.emplace_back().isFolder = isFolder;
  change(find(path.parent_path()), {{}, path.filename(), node});
  return node;
}

void DiskModel::change(std::size_t folder, const NameChange& change) {
  nodes_[folder].changes.push_back(change);
  if (!change.from.empty()) nodes_[folder].names.erase(change.from);
  if (!change.to.empty()) nodes_[folder].names[change.to] = change.node;
}

void DiskModel::rename(const std::string& from, const std::string& to) {
  const Path old(from);
  const Path renamed(to);
  if (!to.empty() && old.parent_path() != renamed.parent_path()) {
    throw std::logic_error("moves from folder to folder are not modelled");
  }
  change(find(old.parent_path()), {old.filename(), renamed.filename(), find(old)});
}

void DiskModel::flushNames(std::size_t folder) {
  nodes_[folder].flushedNames = nodes_[folder].names;
  nodes_[folder].changes.clear();
}

void DiskModel::flushBelow(std::size_t node) {
  withoutSize_.erase(node);
  nodes_[node].flushed = nodes_[node].now;
  flushNames(node);
  for (const auto& [name, below] : nodes_[node].names) flushBelow(below);
}

void DiskModel::apply(const Step& step) {
  if (step.kind == Kind::createFile) {
    files_.push_back(add(step.path, false));
    return;
  }
  if (step.kind == Kind::createFolder) {
    add(step.path, true);
    return;
  }
  const std::size_t node = step.file != 0 ? files_.at(step.file - 1) : find(step.path);
  switch (step.kind) {
    case Kind::createFile:
    case Kind::createFolder:
      break;
    case Kind::move:
    case Kind::remove:
      rename(step.path, step.to);
      if (!fat_ || nodes_[node].isFolder || step.to.empty()) break;
      nodes_[node].flushed = {};
      withoutSize_.insert(node);
      break;
    case Kind::write:
      nodes_[node].now.bytes += step.bytes;
      break;
    case Kind::setDates:
      nodes_[node].now.modified = step.date;
      break;
    case Kind::flush:
      nodes_[node].flushed = nodes_[node].now;
      withoutSize_.erase(node);
      break;
    case Kind::flushFolder:
      flushNames(node);
      break;
    case Kind::flushVolume:
      // The drive is the first folder of the path.
      flushBelow(find(*Path(step.path).begin()));
      break;
  }
}

void DiskModel::collect(std::size_t folder, const std::string& path, Names names,
                        std::minstd_rand& random, Snapshot& left) const {
  const Node& node = nodes_[folder];
  auto found = names == Names::kept ? node.names : node.flushedNames;
  if (names == Names::some) {
    for (const NameChange& change : node.changes) {
      if (random() % 2 == 0) continue;
      const auto old = found.find(change.from);
      if (old != found.end() && old->second == change.node) found.erase(old);
      if (!change.to.empty()) found[change.to] = change.node;
    }
  }
  for (const auto& [name, below] : found) {
    const std::string item = path + name;
    if (nodes_[below].isFolder) {
      left[item + "/"];
      collect(below, item + "/", names, random, left);
    } else {
      left[item] = withoutSize_.contains(below)
                       ? Item{}
                       : torn(nodes_[below].now, nodes_[below].flushed, random);
    }
  }
}

Snapshot DiskModel::afterCut(Names names, std::minstd_rand& random) const {
  Snapshot left;
  collect(0, "", names, random, left);
  return left;
}

}  // namespace Torture
