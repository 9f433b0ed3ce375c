#include "qt/frame/Accessible.h"

#include <QAccessibleWidget>
#include <unordered_map>

namespace zelvanor {

namespace {

std::unordered_map<const QObject*, SpokenState>& States() {
  static std::unordered_map<const QObject*, SpokenState> Table;
  return Table;
}

class SpokenWidget : public QAccessibleWidget {
 public:
  SpokenWidget(QWidget* Shown, const SpokenState& State) : QAccessibleWidget(Shown, State.Role), State(State) {}

  QString text(QAccessible::Text What) const override {
    if (What == QAccessible::Name) return widget()->accessibleName();
    if (What == QAccessible::Description && State.Description) return State.Description();
    if (What == QAccessible::Value && State.Value) return State.Value();
    return QAccessibleWidget::text(What);
  }

 private:
  SpokenState State;
};

// Asked for each class of each object: those spoken for here are told by the object.
QAccessibleInterface* MakeInterface(const QString& /*Class*/, QObject* Object) {
  const auto Entry = States().find(Object);
  if (Entry == States().end()) return nullptr;
  return new SpokenWidget(static_cast<QWidget*>(Object), Entry->second);
}

}  // namespace

void SpeakFor(QWidget* Shown, SpokenState State) {
  static const bool Installed = [] { return QAccessible::installFactory(MakeInterface), true; }();
  static_cast<void>(Installed);
  States()[Shown] = std::move(State);
  QObject::connect(Shown, &QObject::destroyed, [](QObject* Gone) { States().erase(Gone); });
}

void SpeakChange(QWidget* Shown) {
  if (!QAccessible::isActive()) return;
  const auto Entry = States().find(Shown);
  if (Entry == States().end() || !Entry->second.Value) return;
  QAccessibleValueChangeEvent Change(Shown, Entry->second.Value());
  QAccessible::updateAccessibility(&Change);
}

}  // namespace zelvanor
