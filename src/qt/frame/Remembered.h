#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <map>

namespace zelvanor {

// What the window keeps between sessions, in zelvanor/zelvanor.conf of the user's configuration directory. A file that
// can't be read or written, and whatever in it makes no sense, is as good as none.

void RememberGeometry(const QWidget& Window);
bool RestoreGeometry(QWidget& Window);  // false: nothing fit to use was kept

// The help window: its place, that of the bar between contents and page, and how many steps larger the letters are.
struct HelpPlace {
  QByteArray Geometry;  // empty for none
  QByteArray Halves;
  int ZoomSteps = 0;
};
void RememberHelpPlace(const HelpPlace& Place);
HelpPlace RememberedHelpPlace();

// Sizes of dialogs, by form. The empty size where none is kept.
void RememberSize(const QString& Form, QSize Size);
QSize RememberedSize(const QString& Form);

// The folder of the last file that was chosen; one that is gone counts as none (empty).
void RememberFolderOf(const QString& Path);
QString RememberedFolder();
// The kind of file that was opened last, by a dialog of this title.
void RememberFileKind(const QString& Title, const QString& Filter);
QString RememberedFileKind(const QString& Title);

// Lists of texts, the last one first: the files that were opened, the views of documents.
void RememberList(const QString& Name, const QStringList& Entries);
QStringList RememberedList(const QString& Name);

// Whether the message that no host runs has been turned off.
void RememberHostSilence(bool Silent);
bool RememberedHostSilence();

// Widths in twips that the user has dragged columns to, by the column's place in the body of the table.
using ColumnWidths = std::map<int, int>;
void RememberWidths(const QString& View, const ColumnWidths& Widths);
ColumnWidths RememberedWidths(const QString& View);

}  // namespace zelvanor
