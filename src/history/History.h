#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "basic/Types.h"

namespace zelvanor {

// Undo and redo of everything that changes the document. No routine keeps a history of its own: a command that may
// change the document runs by RunRecorded, and a snapshot from before it becomes a step where it did.

inline constexpr std::size_t MostSteps = 100;
// Steps beyond this are forgotten, the oldest first.
inline constexpr std::size_t MostHistoryBytes = std::size_t{256} << 20;

// Runs a command of the user. Name says what undoing takes back, as "typing a shielding"; with Merges it joins a step
// of the same name before it. A command inside another one belongs to that one.
void RunRecorded(const Text& Name, const std::function<void()>& Work, bool Merges = false);

// Whether a command of the user works now.
bool IsRecording();

// The name of the step that comes next; empty for none.
Text UndoName();
Text RedoName();
// Goes one step and to the view that the command was given in, or left; its name, or none where there is no step to go
// or a command works. Throws Failure or bad_alloc, and nothing has changed then.
std::optional<Text> UndoStep();
std::optional<Text> RedoStep();

// The document has been written as it is now: every other state of it is unsaved from now on.
void NoteSaved();
void ForgetHistory();

// Work that may be given up: TakeBack puts the document back to what it was at BeginTrial. Where memory was too short
// to keep it, nothing happens.
struct Snapshot;
using Trial = std::shared_ptr<Snapshot>;
Trial BeginTrial();
void TakeBack(const Trial& Before);

// After the names of the next steps may have changed.
extern std::function<void()> HistoryChanged;

}  // namespace zelvanor
