#pragma once

#include "basic/Types.h"
#include "history/Recovery.h"

namespace zelvanor {

// The File menu's commands on the one document.

// Guards unsaved work, a value just typed into a table included: 0 go on, -1 the user cancelled or a wanted save did
// not happen.
Flag QuerySave();

// What a file holds, by the words its lines begin with.
enum FileKind { UnknownFile = 0, DocumentFile = 1, HostTextFile = 2, ZMatrixFile = 3 };
// Reports its failure, which counts as unknown.
FileKind DetectFileType(const Text& Path);

// The name of a document for a system from a file of another kind: the path up to its first "." behind the last
// separator, with "NMR" as the ending.
Text SuggestDocumentName(const Text& Path);

// Makes the system that the converter has left the document and shows it. Source stands for it in the title and in
// messages; Path is its file, empty for none.
void TakeConverted(const Text& Source, const Text& Path);

// Opens the file at a path as File > Open does, but without the question about unsaved work.
void OpenPath(const Text& Path);

// False where a file is there and the user wants to keep it.
bool MayReplaceFile(const Text& Path);

void mnuFileNew_Click();
void mnuFileOpen_Click();
void mnuFileSave_Click();
void mnuFileSaveAs_Click();

// Takes over work that a run has left behind, unsaved and under its former names; the question about unsaved work comes
// first. What was left stays until this run keeps it. False: there is none, or the user keeps the present document.
bool TakeLeftWork(const LeftWork& Left);

}  // namespace zelvanor
