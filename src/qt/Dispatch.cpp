#include "qt/Dispatch.h"

#include <QCoreApplication>
#include <exception>
#include <new>

#include "platform/Services.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace zelvanor {

std::function<void()> BeforeDispatch;
std::function<void()> AfterDispatch;

namespace {

bool Ended = false;
int NumPauses = 0;
int Depth = 0;  // of events within events

void RunReportingFailures(const std::function<void()>& Work) {
  try {
    Work();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  } catch (const std::bad_alloc&) {
    WarnOfFailure(Failure(failures::OutOfMemory));
  } catch (const std::exception& Problem) {
    WarnOfFailure(Failure(Problem.what()));
  }
}

bool IsUnderHelp(const Control& Target) {
  if (Target.Kind != ControlKind::MenuItem) return false;
  const auto* Item = static_cast<const MenuItem*>(&Target);
  while (Item->Parent != nullptr) Item = Item->Parent;
  return Item == &Main.mnuHelp;
}

}  // namespace

void Dispatch(const std::function<void()>& Work) {
  if (Ended) return;
  if (Depth++ == 0 && BeforeDispatch) BeforeDispatch();
  try {
    RunReportingFailures(Work);
  } catch (const ProgramEnded&) {
    Ended = true;
    QCoreApplication::exit(0);
  }
  --Depth;
  if (!Ended && AfterDispatch) AfterDispatch();
}

bool ProgramHasEnded() { return Ended; }

void PassEnd() {
  if (Ended) throw ProgramEnded();
}

CommandPause::CommandPause() { ++NumPauses; }
CommandPause::~CommandPause() { --NumPauses; }

bool CommandsPause() { return NumPauses > 0 || IsSet(Main.IsBusy); }

bool MayAct(const Control& Target) {
  if (Ended) return false;
  if (Target.Owner != &Main.frmNMR || IsUnderHelp(Target)) return true;
  return !CommandsPause();
}

void DispatchEvent(const Control& Target, const Event& Handler) {
  if (MayAct(Target)) Dispatch([&Handler] { Fire(Handler); });
}

}  // namespace zelvanor
