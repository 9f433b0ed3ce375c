#pragma once

#include <QMimeData>

#include "basic/Types.h"

namespace zelvanor {

// Files that come from elsewhere than the Open dialog: the command line, and what is dropped on the window.

// Runs the Open command, or for a measured spectrum Open Measured, with this file as the answer of its dialog; a
// question about unsaved work comes first.
void OpenDocument(const Text& Path);

// False while a command works, a dialog is open or the Open command is off.
bool MayOpenDocuments();

// What the window takes of what is dragged: a file, else a text.
bool CanTake(const QMimeData& Dragged);
// Opens the file, or pastes the text, as a command of the user.
void TakeDropped(const QString& File, const QString& Words);

// The first local file, or folder of a spectrometer, among what is dragged; empty for none.
QString FirstLocalFile(const QMimeData& Dragged);

}  // namespace zelvanor
