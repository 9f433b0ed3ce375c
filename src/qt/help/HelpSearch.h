#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "shell/HelpContents.h"

namespace zelvanor {

// A page of the manual as plain text, for the search.
struct HelpText {
  HelpEntry Entry;
  QString Content;
};

struct HelpHit {
  QString Page;
  QString Title;
  QString Line;  // the first one that holds a word that was looked for
  int Rank = 0;
};

// The texts of all pages; a page that can't be read is left out.
std::vector<HelpText> LoadHelpTexts(const std::vector<HelpEntry>& Entries, const QString& Folder);

// The words of a search: what stands between blanks.
QStringList SearchWords(const QString& Typed);

// The pages that hold all the words, in any case, also within longer words; the most fitting first.
std::vector<HelpHit> SearchHelp(const std::vector<HelpText>& Pages, const QStringList& Words);

}  // namespace zelvanor
