#include "qt/frame/Remembered.h"

#include <QFileInfo>
#include <QSettings>
#include <QStringList>

namespace zelvanor {

namespace {

constexpr const char* GeometryKey = "geometry";
constexpr const char* FolderKey = "folder";
constexpr const char* FileKindKey = "kind of file/";  // and the dialog's title
constexpr const char* SilenceKey = "silent/host";
constexpr const char* HelpGeometryKey = "help/geometry";
constexpr const char* HelpHalvesKey = "help/halves";
constexpr const char* HelpZoomKey = "help/zoom";

// A cut record of a geometry passes for one whose rest is nothing.
constexpr qsizetype LeastBytes = 46;

// Sizes in pixels and widths in twips beyond these are no one's wish.
constexpr int LeastSize = 60;
constexpr int MostSize = 20000;
constexpr int LeastWidth = 100;
constexpr int MostWidth = 20000;
// A table may have thousands of columns; the first ones are those that a user sets.
constexpr std::size_t MostColumns = 200;

QSettings OwnSettings() { return QSettings("zelvanor", "zelvanor"); }

QString SizeKey(const QString& Form) { return "sizes/" + Form; }
QString WidthKey(const QString& View) { return "columns/" + View; }

bool IsBetween(int Value, int Least, int Most) { return Least <= Value && Value <= Most; }

}  // namespace

void RememberGeometry(const QWidget& Window) { OwnSettings().setValue(GeometryKey, Window.saveGeometry()); }

bool RestoreGeometry(QWidget& Window) {
  const QByteArray Kept = OwnSettings().value(GeometryKey).toByteArray();
  return Kept.size() >= LeastBytes && Window.restoreGeometry(Kept);
}

void RememberHelpPlace(const HelpPlace& Place) {
  QSettings Kept = OwnSettings();
  Kept.setValue(HelpGeometryKey, Place.Geometry);
  Kept.setValue(HelpHalvesKey, Place.Halves);
  Kept.setValue(HelpZoomKey, Place.ZoomSteps);
}

HelpPlace RememberedHelpPlace() {
  const QSettings Kept = OwnSettings();
  const QByteArray Geometry = Kept.value(HelpGeometryKey).toByteArray();
  return {Geometry.size() >= LeastBytes ? Geometry : QByteArray(), Kept.value(HelpHalvesKey).toByteArray(),
          Kept.value(HelpZoomKey).toInt()};
}

void RememberSize(const QString& Form, QSize Size) { OwnSettings().setValue(SizeKey(Form), Size); }

QSize RememberedSize(const QString& Form) {
  const QSize Kept = OwnSettings().value(SizeKey(Form)).toSize();
  const bool Usable = IsBetween(Kept.width(), LeastSize, MostSize) && IsBetween(Kept.height(), LeastSize, MostSize);
  return Usable ? Kept : QSize();
}

void RememberFolderOf(const QString& Path) { OwnSettings().setValue(FolderKey, QFileInfo(Path).absolutePath()); }

void RememberFileKind(const QString& Title, const QString& Filter) {
  OwnSettings().setValue(FileKindKey + Title, Filter);
}

QString RememberedFileKind(const QString& Title) { return OwnSettings().value(FileKindKey + Title).toString(); }

QString RememberedFolder() {
  const QString Kept = OwnSettings().value(FolderKey).toString();
  return QFileInfo(Kept).isDir() ? Kept : QString();
}

void RememberList(const QString& Name, const QStringList& Entries) { OwnSettings().setValue("lists/" + Name, Entries); }
QStringList RememberedList(const QString& Name) { return OwnSettings().value("lists/" + Name).toStringList(); }

void RememberHostSilence(bool Silent) { OwnSettings().setValue(SilenceKey, Silent); }
bool RememberedHostSilence() { return OwnSettings().value(SilenceKey).toBool(); }

void RememberWidths(const QString& View, const ColumnWidths& Widths) {
  QStringList Pairs;
  for (const auto& [Column, Twips] : Widths) Pairs << QString("%1:%2").arg(Column).arg(Twips);
  OwnSettings().setValue(WidthKey(View), Pairs.join(' '));
}

ColumnWidths RememberedWidths(const QString& View) {
  ColumnWidths Widths;
  for (const QString& Pair : OwnSettings().value(WidthKey(View)).toString().split(' ')) {
    const QStringList Parts = Pair.split(':');
    bool ColumnOk = false;
    bool TwipsOk = false;
    const int Column = Parts.value(0).toInt(&ColumnOk);
    const int Twips = Parts.value(1).toInt(&TwipsOk);
    if (ColumnOk && TwipsOk && Column >= 0 && IsBetween(Twips, LeastWidth, MostWidth)) Widths[Column] = Twips;
    if (Widths.size() == MostColumns) break;
  }
  return Widths;
}

}  // namespace zelvanor
