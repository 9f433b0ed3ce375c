#pragma once

#include <QMenuBar>
#include <QString>

namespace zelvanor {

// The files that the user has opened or saved last, and the view in which each document was looked at last.

void RememberRecent(const QString& Path);
// A menu of them behind the items of the File menu.
void AddRecentMenu(QMenuBar* Bar);

// After each event: notes the view of the document.
void NoteView();
// The document that has just been opened comes up in its last view, where that still has something to show.
void RestoreView();

}  // namespace zelvanor
