#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The host text format: one record a line, told by its first word. Workspace.HostTextLine keeps the lines, so that what
// the program does not look at reaches documents and the backend unchanged.

// More lines than this are no system: atoms and molecules are counted by Integers, and each stored line takes 256
// bytes.
inline constexpr std::size_t MostHostLines = std::size_t{1} << 20;

// Puts a line behind the others. Throws a Failure where they are too many.
void AppendHostLine(std::vector<TextView>& Lines, TextView Line);
// Makes these lines the stored ones.
void StoreHostLines(const std::vector<TextView>& Lines);

// Fills HostTextLine from a file. Reports its failures.
Flag ReadHostFile(const Text& Path);

// Builds the atom table from HostTextLine. Title stands for the source in messages: a path, or what gave the text.
// Reports its failures; the atom table is then not to be used.
Flag ParseHostText(const Text& Title);

// Write the system to an open file: from HostTextLine, or from the atom table for a system that has no stored lines.
// The first gives no message when it fails, the second does.
Flag WriteHostText(Integer FileNumber);
Flag WriteConvertedHostText(Integer FileNumber);
// The one of the two that the system's origin asks for.
Flag WriteSystem(Integer FileNumber);

}  // namespace zelvanor
