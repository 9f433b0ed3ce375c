#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"

namespace zelvanor {

namespace {

constexpr int BackspaceKey = 8;
constexpr int FirstPrintable = 32;

// The character that a key gives, as the program counts them; 0 for keys that type nothing.
int KeyAsciiOf(const QKeyEvent& Key) {
  if (Key.key() == Qt::Key_Backspace) return BackspaceKey;
  if (Key.text().size() != 1) return 0;
  const int Code = Key.text().front().unicode();
  return Code >= FirstPrintable && Code != 127 ? Code : 0;
}

// A line whose keys go through the program's KeyPress one by one.
class FieldLine : public QLineEdit {
 public:
  FieldLine(TextField& Field, QWidget* Parent) : QLineEdit(Parent), Field(Field) {}

 protected:
  void keyPressEvent(QKeyEvent* Key) override {
    const int Code = KeyAsciiOf(*Key);
    if (Code == 0 || !Field.KeyPress) return QLineEdit::keyPressEvent(Key);
    const int Wanted = Offer(Code);
    if (Wanted == 0) return Key->accept();
    if (Wanted == Code) return QLineEdit::keyPressEvent(Key);
    insert(QString(QChar(static_cast<char16_t>(Wanted))));
  }

  void inputMethodEvent(QInputMethodEvent* Input) override {
    if (!Field.KeyPress || Input->commitString().isEmpty()) return QLineEdit::inputMethodEvent(Input);
    QString Passed;
    for (const QChar Typed : Input->commitString()) {
      if (const int Wanted = Offer(Typed.unicode()); Wanted != 0) Passed += QChar(static_cast<char16_t>(Wanted));
    }
    QInputMethodEvent Rest(Input->preeditString(), Input->attributes());
    Rest.setCommitString(Passed, Input->replacementStart(), Input->replacementLength());
    QLineEdit::inputMethodEvent(&Rest);
  }

 private:
  int Offer(int Code) {
    Dispatch([&] { Field.KeyPress(Code); });
    return Code;
  }

  TextField& Field;
};

// The control after a label, when the label's access key is to lead there.
Control* LabelledBy(const Label& Target) {
  const auto& Controls = Target.Owner->Controls;
  for (std::size_t Place = 0; Place + 1 < Controls.size(); ++Place) {
    if (Controls[Place] != &Target) continue;
    switch (Controls[Place + 1]->Kind) {
      case ControlKind::TextField:
      case ControlKind::ListBox:
      case ControlKind::ComboBox:
      case ControlKind::ScrollBar:
      case ControlKind::SpinButton:
      case ControlKind::Grid:
        return Controls[Place + 1];
      default:
        return nullptr;
    }
  }
  return nullptr;
}

}  // namespace

QWidget* MakeTextField(Control& Target, QWidget* Parent) {
  auto& Field = static_cast<TextField&>(Target);
  auto* Shown = new FieldLine(Field, Parent);
  const auto ShowText = [&Field, Shown] {
    const QString Wanted = ToQt(Field.Value);
    if (Shown->text() == Wanted) return;
    const QSignalBlocker Quiet(Shown);
    const int Cursor = Shown->cursorPosition();
    Shown->setText(Wanted);
    if (Shown->hasFocus()) Shown->setCursorPosition(Cursor);
  };
  QObject::connect(Shown, &QLineEdit::textChanged, Shown, [&Field, ShowText](const QString& Typed) {
    if (MayAct(Field)) Dispatch([&] { SetText(Field, FromQt(Typed)); });
    ShowText();
  });
  Shown->setReadOnly(IsSet(Field.ReadOnly));
  constexpr int WideCharacters = 40;
  if (Field.Wide) Shown->setMinimumWidth(WideCharacters * Shown->fontMetrics().averageCharWidth());
  BindWidget(Field, Shown, [ShowText](Property What) {
    if (What == Property::Text) ShowText();
  });
  return Shown;
}

QWidget* MakeLabel(Control& Target, QWidget* Parent) {
  auto& Words = static_cast<Label&>(Target);
  auto* Shown = new QLabel(Parent);
  Shown->setTextFormat(Qt::PlainText);
  Shown->setWordWrap(Words.Wraps);
  if (Words.Wraps) Shown->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  Control* Labelled = LabelledBy(Words);
  BindWidget(Words, Shown, [&Words, Shown, Labelled](Property What) {
    if (What != Property::Caption) return;
    // Only with a buddy does a label read "&" as an access mark.
    QWidget* Buddy = Labelled == nullptr ? nullptr : WidgetOf(*Labelled);
    Shown->setBuddy(Buddy);
    Shown->setText(Buddy == nullptr ? PlainCaption(Words.Caption) : ToQtLines(Words.Caption));
    if (Buddy != nullptr && Labelled->AccessibleName.empty()) Buddy->setAccessibleName(PlainCaption(Words.Caption));
  });
  return Shown;
}

}  // namespace zelvanor
