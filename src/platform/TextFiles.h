#pragma once

#include <span>

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

bool AtEnd(Integer FileNumber);
// The next line without its end; it stays valid until the file is closed. Throws "Input past end of file".
TextView LineInput(Integer FileNumber);

// What a reader has not given yet, in bytes: no list in it can be longer.
Double RemainingBytes(Integer FileNumber);

void PrintLine(Integer FileNumber, TextView Line);

// Writes what is left and closes. Closing a number that is not open does nothing.
void CloseFile(Integer FileNumber);
// The same where a failure has been met already: no further one is reported.
void CloseFileQuietly(Integer FileNumber);

// Why the file can't be read; empty when it can.
Text WhyUnreadable(const Text& Path);
// Whether something that is no folder can be opened there for reading.
Flag FileExists(const Text& Path);

// Copies a regular file to its own path with "~" behind it, so that a failed replacement loses nothing; does nothing
// for other kinds of file and for one that is not there. A copy that stands there already stays where it ends with a
// line that begins with one of LastLines and the file does not: a failed save has left the file half. True when there
// is a copy now. Throws when it can't be made.
bool KeepFormerContent(const Text& Path, std::span<const TextView> LastLines);
// Makes sure of the file's new content, then removes the copy. Throws where the disk has not taken the content.
void DropFormerContent(const Text& Path);

}  // namespace zelvanor
