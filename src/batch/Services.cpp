#include "platform/Services.h"

#include <time.h>

#include "batch/Batch.h"
#include "batch/HostCommands.h"
#include "hostbus/HostBus.h"
#include "pictures/ReportPages.h"
#include "pictures/ViewPictures.h"
#include "platform/posix/PosixServices.h"
#include "shell/MainForm.h"

namespace zelvanor::batch {

namespace {

constexpr const char* KindName(BoxKind Kind) {
  switch (Kind) {
    case BoxKind::Warning:
      return "warning";
    case BoxKind::Error:
      return "error";
    case BoxKind::Question:
      return "question";
    default:
      return "plain";
  }
}

constexpr const char* AnswerName(BoxAnswer Answer) {
  switch (Answer) {
    case BoxAnswer::Ok:
      return "ok";
    case BoxAnswer::Yes:
      return "yes";
    case BoxAnswer::No:
      return "no";
    case BoxAnswer::Retry:
      return "retry";
    default:
      return "cancel";
  }
}

bool Fits(BoxButtons Buttons, BoxAnswer Answer) {
  switch (Buttons) {
    case BoxButtons::Ok:
      return Answer == BoxAnswer::Ok;
    case BoxButtons::OkCancel:
      return Answer == BoxAnswer::Ok || Answer == BoxAnswer::Cancel;
    case BoxButtons::YesNo:
      return Answer == BoxAnswer::Yes || Answer == BoxAnswer::No;
    case BoxButtons::YesNoCancel:
      return Answer == BoxAnswer::Yes || Answer == BoxAnswer::No || Answer == BoxAnswer::Cancel;
    default:
      return Answer == BoxAnswer::Retry || Answer == BoxAnswer::Cancel;
  }
}

template <class T>
T TakeFirst(std::deque<T>& Queue) {
  T Value = Queue.front();
  Queue.pop_front();
  return Value;
}

BoxAnswer TakeAnswer(const MessageBox& Box) {
  if (Box.Buttons == BoxButtons::Ok) return BoxAnswer::Ok;
  if (State.Answers.empty()) throw ScriptStop{NoAnswerQueued, "no answer is queued for " + Escaped(Box.Message)};
  const BoxAnswer Answer = TakeFirst(State.Answers);
  if (Fits(Box.Buttons, Answer)) return Answer;
  throw ScriptStop{CannotCarryOut, Text("the box has no button ") + AnswerName(Answer) + ": " + Escaped(Box.Message)};
}

BoxAnswer ShowBox(const MessageBox& Box) {
  const BoxAnswer Answer = TakeAnswer(Box);
  State.Boxes.push_back({KindName(Box.Kind), Box.Message});
  PrintOut(Text("box ") + KindName(Box.Kind) + " " + Escaped(Box.Message) + " " + AnswerName(Answer));
  return Answer;
}

std::optional<Text> ShowFileDialog(const FileDialog& Dialog) {
  if (State.Files.empty())
    throw ScriptStop{NoAnswerQueued, "no file is queued for the dialog " + Escaped(Dialog.Title)};
  std::optional<Text> Chosen = TakeFirst(State.Files);
  PrintOut(Text("dialog ") + (Dialog.Save ? "save " : "open ") + Escaped(Dialog.Title) + " " +
           Chosen.value_or("cancel"));
  return Chosen;
}

std::optional<Colour> ShowColourDialog(Colour /*Current*/) {
  if (State.Colours.empty()) throw ScriptStop{NoAnswerQueued, "no colour is queued for the colour dialog"};
  return TakeFirst(State.Colours);
}

// The script goes on while the form is open; one that ends first closes the form as its user would.
void RunModal(Form& Target) {
  RunScript(&Target);
  if (IsSet(Target.Visible)) CancelForm(Target);
  if (IsSet(Target.Visible)) HideForm(Target);
}

using Clock = std::chrono::steady_clock;

void RunLater(int Milliseconds, Event Work) {
  State.Later.emplace(Clock::now() + std::chrono::milliseconds(Milliseconds), std::move(Work));
}

void RunWhatIsDue() {
  while (!State.Later.empty() && State.Later.begin()->first <= Clock::now()) {
    const Event Work = std::move(State.Later.begin()->second);
    State.Later.erase(State.Later.begin());
    Fire(Work);
  }
}

void DoEvents() {
  // Nothing is pending without a display; while a process runs the processor is better used by it.
  constexpr timespec Millisecond{0, 1000000};
  if (AnyProcessRuns()) nanosleep(&Millisecond, nullptr);
  hostbus::ServeConversations();
  RunWhatIsDue();
}

void ShowChange(Control& Target, Property What) {
  if (State.Trace && What == Property::Text && &Target == &Main.StatusBar) {
    PrintOut("status " + Escaped(Main.StatusBar.Value));
  }
  if (Target.Kind != ControlKind::Form || What != Property::Visible || &Target == &Main.frmNMR) return;
  PrintOut(IsSet(Target.Visible) ? "form " + Target.Name + " " + Escaped(Target.Caption) : "closed " + Target.Name);
}

}  // namespace

void UseBatchServices() {
  Platform.ControlChanged = ShowChange;
  Platform.ShowBox = ShowBox;
  Platform.ShowFileDialog = ShowFileDialog;
  Platform.ShowColourDialog = ShowColourDialog;
  Platform.RunModal = RunModal;
  Platform.DoEvents = DoEvents;
  Platform.RunLater = RunLater;
  // Scripts see the texts of the clipboard; `chart` writes the picture.
  Platform.SetClipboardPicture = [](const ChartControl& /*Chart*/) {};
  Platform.WriteViewPicture = pictures::WriteViewPicture;
  Platform.WriteReportPages = pictures::WriteReportPages;
  UseSimulatedHost();
  Platform.DecimalSeparator = [] { return State.DecimalSeparator; };
  Platform.OtherInstanceRuns = [] { return State.OtherInstance; };

  Main.frmNMR.Width = TwipsFromPixels(800);
  Main.frmNMR.Height = TwipsFromPixels(600);
  Main.StatusBar.Height = TwipsFromPixels(20);
  Main.HScroll1.Height = TwipsFromPixels(17);
  Main.HScroll2.Height = TwipsFromPixels(17);
}

}  // namespace zelvanor::batch
