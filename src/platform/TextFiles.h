#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Text files under file numbers. A reader takes the whole file in when it is opened; lines end with CR LF, LF or CR.
// A writer ends its lines with CR LF and hands its text over in large pieces, the last one when the file is closed.
// Every routine throws a Failure with the system's text.

// No reader takes in more than this, whatever a file says about itself: a document with ten million peaks is smaller.
inline constexpr std::size_t LargestFile = std::size_t{512} << 20;

// The content of a regular file; pipes, devices and folders are refused. Throws a Failure with the system's text.
Text ReadWholeFile(const Text& Path);
// Puts Content in the place of what the file holds, in one step; where that fails the file is as it was. A link stays
// one. Throws a Failure.
void ReplaceFile(const Text& Path, TextView Content);

// Makes a file of this content, in place. Throws a Failure that names the path.
void WriteWholeFile(const Text& Path, TextView Content);

Integer FreeFile();
void OpenForInput(const Text& Path, Integer FileNumber);
// Creates the file, or empties the one that is there.
void OpenForOutput(const Text& Path, Integer FileNumber);
// What is written stands beside the file and takes its place when CloseFile finds it whole and on the disk; until then,
// and after any failure, the file is as it was. In a folder that takes no second file the file itself is written, by
// CloseFile alone. A link stays one; pipes and devices are written as they stand.
void OpenForReplacement(const Text& Path, Integer FileNumber);

bool AtEnd(Integer FileNumber);
// The next line without its end; it stays valid until the file is closed. Throws "Input past end of file".
TextView LineInput(Integer FileNumber);

// What a reader has not given yet, in bytes: no list in it can be longer.
Double RemainingBytes(Integer FileNumber);

void PrintLine(Integer FileNumber, TextView Line);

// Writes what is left and closes. Closing a number that is not open does nothing.
void CloseFile(Integer FileNumber);
// The same where a failure has been met already: no further one is reported, and a replacement is dropped.
void CloseFileQuietly(Integer FileNumber);

// Nothing where there is none, or it can't be removed.
void RemoveFile(const Text& Path);

// Why the file can't be read; empty when it can.
Text WhyUnreadable(const Text& Path);
// Whether something that is no folder can be opened there for reading.
Flag FileExists(const Text& Path);

}  // namespace zelvanor
