#include "ZephrimarkOffload/Model/SourceMonitor.h"

#include "PlatformKit/Paths.h"
#include "ZephrimarkOffload/Model/Choices.h"

namespace ZephrimarkOffload {

using PlatformKit::Path;

SourceMonitor::SourceMonitor(Background& background, std::function<void()> changed)
    : background_(background), changed_(std::move(changed)) {}

void SourceMonitor::choose(const Path& path) {
  const Path plain = normalized(path);
  if (source_->path != plain) begin(plain);
}

void SourceMonitor::begin(const Path& path) {
  source_ = std::make_shared<ChosenSource>();
  source_->path = path;
  source_->facts.name = PlatformKit::lastComponent(path);
  if (!path.empty()) {
    background_.ask(
        "source " + path.native(), [path](DiskQueries& disks) { return disks.source(path); },
        // An answer about a source that was left in the meantime tells nothing of this one.
        [this, asked = std::weak_ptr(source_)](const SourceFacts& facts) {
          if (asked.lock() != source_) return;
          source_->facts = facts;
          camera_ = facts.camera;
          count();
          changed_();
        });
  }
  changed_();
}

void SourceMonitor::count() {
  background_.ask(
      "count " + source_->path.native(),
      [path = source_->path](DiskQueries& disks) { return disks.count(path); },
      [this, asked = std::weak_ptr(source_)](const SourceCount& count) {
        if (asked.lock() != source_) return;
        source_->count = count;
        changed_();
      });
}

void SourceMonitor::check() {
  if (source_->count.files == 0) return;
  // Another card can be mounted at the same place before anybody noticed that the first one went.
  background_.ask(
      "check " + source_->path.native(),
      [path = source_->path](DiskQueries& disks) { return disks.source(path); },
      [this, asked = std::weak_ptr(source_)](const SourceFacts& facts) {
        if (asked.lock() != source_ || source_->count.files == 0) return;
        const SourceFacts& known = source_->facts;
        const bool isSame = facts.name == known.name && facts.disk == known.disk &&
                            facts.volume == known.volume &&
                            facts.isVolumeRoot == known.isVolumeRoot;
        if (!isSame) begin(Path(source_->path));
      });
}

}  // namespace ZephrimarkOffload
