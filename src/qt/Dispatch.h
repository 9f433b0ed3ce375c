#pragma once

#include <functional>

#include "platform/Controls.h"

namespace zelvanor {

// Runs a piece of the program for an event of the window system. Nothing escapes from it: a failure becomes a warning
// box, and where the program ends itself, every event loop is left.
void Dispatch(const std::function<void()>& Work);

// Run before a dispatched event, unless it comes within another, and after every one, to bring up to date what hangs on
// the document as a whole.
extern std::function<void()> BeforeDispatch;
extern std::function<void()> AfterDispatch;

bool ProgramHasEnded();

// After a nested event loop, in a service that the program has called: throws ProgramEnded on, so that the routines of
// the program unwind when it has ended within the loop.
void PassEnd();

// Whether the user may act on a control now. While a command of the main window works, none of its controls start
// another one; the help menu stays open.
bool MayAct(const Control& Target);

// No command of the main window starts while one of these lives.
struct CommandPause {
  CommandPause();
  ~CommandPause();
  CommandPause(const CommandPause&) = delete;
  CommandPause& operator=(const CommandPause&) = delete;
};

bool CommandsPause();

// A control's event, on the user's account.
void DispatchEvent(const Control& Target, const Event& Handler);

}  // namespace zelvanor
