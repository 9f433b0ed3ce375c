#pragma once

#include <optional>

#include "basic/Types.h"

namespace zelvanor::fuzz {

// A quiet program for inputs that nobody has chosen: boxes are counted and answered, dialogs get the files that are
// queued for them, no process starts, and all files stand in a folder of this process, in memory where there is such a
// place (TMPDIR names another one).

// The program as it is after its start, with the folder's own nmr.ini.
void ResetProgram();

// Boxes that have come up since the last reset.
int NumBoxes();

// What the next file dialog gives.
void QueueFile(const Text& Path);

// Content that a backend would write: Stage 1 or 2 gets it as its result file when the program starts the backend next.
void QueueResult(int Stage, TextView Content);

// The folder, without a separator at its end; it goes with the process.
const Text& Folder();
Text PathOf(TextView Name);
// Makes a file in the folder and returns its path. Two writes never bear the same time, so that nothing is taken from
// an earlier input.
Text WriteInput(TextView Name, TextView Content);
// The nmr.ini of the folder, as it is at the program's start.
void WriteOwnSettings();
Text ReadBack(const Text& Path);
// A file of the source tree.
Text SourceFile(TextView Name);

// Stops the process as a sanitizer does: with the reason, and so that the input is kept.
[[noreturn]] void Stop(const Text& Reason);
void Demand(bool Holds, const char* Reason);
// Stops where a promise of the program's state is broken.
void CheckPromises();

// The user's commands on the main window.
void OpenAsUser(const Text& Path);
// Goes through all views that can be chosen and reads what they show, then saves the document.
void LookAround();

// Whether the document can be saved and read again: every entry of the atom sets names an atom of the table, and a
// spectrum has peaks.
bool CanBeSaved();
// Saves the present document, reads it and saves it once more: the same bytes have to come out.
void CheckRoundTrip();

}  // namespace zelvanor::fuzz
