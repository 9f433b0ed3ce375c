#include "qt/help/HelpSearch.h"

#include <QFile>
#include <QTextDocument>
#include <algorithm>

#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

constexpr int TitleWeight = 100;
constexpr int LongestLine = 120;

bool HoldsAll(const HelpText& Page, const QStringList& Words) {
  return std::all_of(Words.begin(), Words.end(),
                     [&](const QString& Word) { return Page.Content.contains(Word, Qt::CaseInsensitive); });
}

// A word in the title counts most, then how often the words stand in the text.
int RankOf(const HelpText& Page, const QStringList& Words) {
  int Rank = 0;
  const QString Title = ToQt(Page.Entry.Title);
  for (const QString& Word : Words) {
    if (Title.contains(Word, Qt::CaseInsensitive)) Rank += TitleWeight;
    Rank += static_cast<int>(Page.Content.count(Word, Qt::CaseInsensitive));
  }
  return Rank;
}

QString LineWith(const QString& Content, const QString& Word) {
  const qsizetype Place = Content.indexOf(Word, 0, Qt::CaseInsensitive);
  const qsizetype Begin = Content.lastIndexOf('\n', Place) + 1;
  const qsizetype From = std::max(Begin, Place - LongestLine / 3);
  QString Line = Content.mid(From, LongestLine);
  Line.truncate(Line.indexOf('\n') < 0 ? Line.size() : Line.indexOf('\n'));
  return (From > Begin ? "..." : "") + Line.trimmed();
}

}  // namespace

std::vector<HelpText> LoadHelpTexts(const std::vector<HelpEntry>& Entries, const QString& Folder) {
  std::vector<HelpText> Pages;
  for (const HelpEntry& Entry : Entries) {
    QFile Source(Folder + "/" + PathToQt(Entry.Page));
    if (Entry.Page.empty() || !Source.open(QIODevice::ReadOnly)) continue;
    QTextDocument Document;
    Document.setMarkdown(QString::fromUtf8(Source.readAll()));
    Pages.push_back({Entry, Document.toPlainText()});
  }
  return Pages;
}

QStringList SearchWords(const QString& Typed) { return Typed.simplified().split(' ', Qt::SkipEmptyParts); }

std::vector<HelpHit> SearchHelp(const std::vector<HelpText>& Pages, const QStringList& Words) {
  std::vector<HelpHit> Hits;
  if (Words.isEmpty()) return Hits;
  for (const HelpText& Page : Pages) {
    if (!HoldsAll(Page, Words)) continue;
    Hits.push_back({PathToQt(Page.Entry.Page), ToQt(Page.Entry.Title), LineWith(Page.Content, Words.front()),
                    RankOf(Page, Words)});
  }
  std::stable_sort(Hits.begin(), Hits.end(), [](const HelpHit& A, const HelpHit& B) { return A.Rank > B.Rank; });
  return Hits;
}

}  // namespace zelvanor
