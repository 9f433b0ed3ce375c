#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// The manual: Markdown pages, and beside them the list of its contents, a line a page:
//
//   CONTEXT PAGE LEVEL TITLE
//
// CONTEXT is the page's number, 0 for a page without one; PAGE its file in the same folder, "-" for a heading that has
// no page; LEVEL 1 for a chapter, 2 below one, and so on. Lines that begin with ";" and blank ones are passed over.
struct HelpEntry {
  int Context = 0;
  Text Page;  // empty for a heading
  int Level = 1;
  Text Title;
};

// Throws a Failure with file and line for a list that can't be read or makes no sense.
std::vector<HelpEntry> ReadHelpContents(const Text& HelpFile);

// The page of a number; null when there is none.
const HelpEntry* FindHelpEntry(const std::vector<HelpEntry>& Entries, int Context);

// The folder of the pages: that of the list itself, where links lead to.
Text HelpFolder(const Text& HelpFile);

// The anchor that links name a heading by: its letters and digits in lower case, blanks as "-", the rest left out.
Text HelpAnchor(TextView Heading);

}  // namespace zelvanor
