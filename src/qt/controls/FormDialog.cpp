#include "qt/controls/FormDialog.h"

#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <utility>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/FormBuilder.h"
#include "qt/controls/KeyFilter.h"
#include "qt/controls/Pointer.h"
#include "qt/frame/MainWindow.h"
#include "qt/frame/Remembered.h"
#include "qt/help/HelpWindow.h"

namespace zelvanor {

FormDialog::FormDialog(Form& Target, QWidget* Parent) : QDialog(Parent), Target(Target) {
  setObjectName(ToQt(Target.Name));
  // The windows that opened it wait; the manual does not.
  setWindowModality(Qt::WindowModal);
  InstallKeyFilter(this, Target);
  AddHelpKey(this, Target);
}

void FormDialog::BindForm(bool CanUseRoom) {
  Resizable = CanUseRoom;
  if (Resizable) {
    OwnSize = sizeHint().expandedTo({PixelsFromTwips(Target.Width), PixelsFromTwips(Target.Height)});
    const QSize Kept = RememberedSize(objectName());
    resize(Kept.isValid() ? Kept.boundedTo(screen()->availableSize()) : OwnSize);
    setSizeGripEnabled(true);
  } else {
    layout()->setSizeConstraint(QLayout::SetFixedSize);
  }
  Bind(Target, this, [this](Property What) { ShowForm(What); });
}

void FormDialog::ShowForm(Property What) {
  if (What == Property::Caption) setWindowTitle(ToQt(Target.Caption).replace("[*]", "[*][*]"));
  // Showing waits for Run: the form's own handlers may still hide it before.
  if (What == Property::Visible && !IsSet(Target.Visible)) {
    hide();
    if (Loop != nullptr) Loop->quit();
  }
}

// Of a group of option buttons the one that is set.
QWidget* SetOptionOf(const Form& Target, const OptionButton& First) {
  for (const Control* Item : Target.Controls) {
    if (Item->Kind != ControlKind::OptionButton) continue;
    const auto& Option = static_cast<const OptionButton&>(*Item);
    if (Option.Group == First.Group && IsSet(Option.Value)) return WidgetOf(Option);
  }
  return WidgetOf(First);
}

// The focus on the first control, and Enter for the default button again, as when it was shown for the first time.
void FormDialog::StartAtFirstField() {
  QWidget* First = nullptr;
  QPushButton* Default = nullptr;
  for (Control* Item : Target.Controls) {
    QWidget* Shown = WidgetOf(*Item);
    if (Shown == nullptr) continue;
    const bool TakesFocus = (Shown->focusPolicy() & Qt::TabFocus) && IsSet(Item->Enabled) && IsSet(Item->Visible);
    if (First == nullptr && TakesFocus) {
      First = Item->Kind == ControlKind::OptionButton ? SetOptionOf(Target, static_cast<OptionButton&>(*Item)) : Shown;
    }
    if (Item->Kind == ControlKind::CommandButton && static_cast<CommandButton*>(Item)->IsDefault) {
      Default = static_cast<QPushButton*>(Shown);
    }
  }
  if (First != nullptr) First->setFocus(Qt::TabFocusReason);
  if (Default != nullptr && qobject_cast<QPushButton*>(First) == nullptr) Default->setDefault(true);
}

// A size that nobody has changed goes on following font and contents.
void FormDialog::KeepSize() {
  if (!Resizable || size() == OwnSize || isMaximized()) return;
  OwnSize = size();
  RememberSize(objectName(), size());
}

void FormDialog::Run() {
  QEventLoop Inner;
  QEventLoop* Outer = std::exchange(Loop, &Inner);
  StartAtFirstField();
  show();
  if (IsSet(Target.Visible) && !ProgramHasEnded()) Inner.exec();
  KeepSize();
  hide();
  Loop = Outer;
}

void FormDialog::reject() {
  Dispatch([this] { CancelForm(Target); });
}

void FormDialog::resizeEvent(QResizeEvent* Resize) {
  QDialog::resizeEvent(Resize);
  Target.Width = TwipsFromPixels(width());
  Target.Height = TwipsFromPixels(height());
  if (isVisible()) Dispatch([this] { Fire(Target.Resize); });
}

void RunModalForm(Form& Target) {
  QWidget* Opener = TopWindow();
  auto* Dialog = static_cast<FormDialog*>(DialogOf(Target, Opener));
  if (Opener != Dialog && Dialog->parentWidget() != Opener) Dialog->setParent(Opener, Dialog->windowFlags());
  {
    const PlainPointer Pointer;
    Dialog->Run();
  }
  PassEnd();
}

}  // namespace zelvanor
