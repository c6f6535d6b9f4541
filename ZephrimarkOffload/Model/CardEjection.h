#pragma once

#include "DeviceKit/Reason.h"
#include "ZephrimarkOffload/Model/Background.h"

#include <string>
#include <variant>

#include <QObject>

namespace ZephrimarkOffload {

/// Ejects a card in the background and keeps how that went, as one state: none, going on, done or
/// failed. One at a time; it takes as long as disk and user do. Main thread.
class CardEjection final : public QObject {
  Q_OBJECT

 public:
  /// `background` outlives this object.
  explicit CardEjection(Background& background) : background_(background) {}

  /// Ejects the disk under the volume mounted at `volume`, which sentences call `name`, one line.
  /// Ignored while another ejection goes on.
  void begin(const PlatformKit::Path& volume, const std::string& name);

  /// Forgets how the last one went, without a signal; one that goes on is left alone.
  void forget();

  [[nodiscard]] bool isGoingOn() const { return std::holds_alternative<GoingOn>(state_); }
  /// Whether the last one worked, and the card may be taken out.
  [[nodiscard]] bool isDone() const { return std::holds_alternative<Ejected>(state_); }
  /// How the last one went, in a sentence for people; empty before its end, and without one.
  [[nodiscard]] std::string message() const;

 signals:
  /// One began, or ended in whatever way.
  void changed();

 private:
  struct None {};
  struct GoingOn {};
  struct Ejected {
    std::string name;
  };
  struct Failed {
    DeviceKit::Reason reason;
  };

  Background& background_;
  std::variant<None, GoingOn, Ejected, Failed> state_;
};

}  // namespace ZephrimarkOffload
