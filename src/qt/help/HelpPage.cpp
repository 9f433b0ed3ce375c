#include "qt/help/HelpPage.h"

#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QImageReader>
#include <QTextBlock>
#include <QTextList>
#include <QTextTable>

#include "qt/TextConversion.h"
#include "shell/HelpContents.h"

namespace zelvanor {

namespace {

constexpr int CellPadding = 4;
constexpr int CodeMargin = 8;
constexpr int HeadingSpace = 12;

void DressTable(QTextTable& Table, const QPalette& Colours) {
  QTextTableFormat Look = Table.format();
  Look.setBorder(1);
  Look.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
  Look.setBorderBrush(Colours.mid());
  Look.setBorderCollapse(true);
  Look.setCellPadding(CellPadding);
  Look.setCellSpacing(0);
  Table.setFormat(Look);
  for (int Column = 0; Column < Table.columns(); ++Column) {
    QTextTableCell Cell = Table.cellAt(0, Column);
    QTextCharFormat Head = Cell.format();
    Head.setBackground(Colours.alternateBase());
    Cell.setFormat(Head);
  }
}

void DressTables(const QTextFrame& Frame, const QPalette& Colours) {
  for (QTextFrame* Inner : Frame.childFrames()) {
    if (auto* Table = qobject_cast<QTextTable*>(Inner)) DressTable(*Table, Colours);
    DressTables(*Inner, Colours);
  }
}

// Code has the size of the text around it, so that it grows with it.
void DressCode(QTextCursor& Cursor, const QTextFragment& Piece) {
  QTextCharFormat Look = Piece.charFormat();
  Look.clearProperty(QTextFormat::FontPointSize);
  Look.clearProperty(QTextFormat::FontPixelSize);
  Look.setFontFamilies({QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
  Cursor.setPosition(Piece.position());
  Cursor.setPosition(Piece.position() + Piece.length(), QTextCursor::KeepAnchor);
  Cursor.setCharFormat(Look);
}

// Pictures are given their own size, or the width of the page where that is less. The page's own scaling is coarse: it
// gets them in the size in which they are shown.
void FitPicture(QTextCursor& Cursor, const QTextFragment& Piece, const QString& Folder, int Room) {
  QTextImageFormat Look = Piece.charFormat().toImageFormat();
  const QString Path = Folder + "/" + Look.name();
  const QSize Own = QImageReader(Path).size();
  if (Own.isEmpty()) return;
  const int Width = qMin(Own.width(), Room);
  if (Look.width() == Width) return;
  QImage Picture(Path);
  if (Width < Own.width()) {
    const qreal Ratio = qApp->devicePixelRatio();
    Picture = Picture.scaledToWidth(qRound(Width * Ratio), Qt::SmoothTransformation);
    Picture.setDevicePixelRatio(Ratio);
  }
  Cursor.document()->addResource(QTextDocument::ImageResource, QUrl::fromLocalFile(Path), Picture);
  Look.setWidth(Width);
  Look.setHeight(Own.height() * Width / double(Own.width()));
  Cursor.setPosition(Piece.position());
  Cursor.setPosition(Piece.position() + Piece.length(), QTextCursor::KeepAnchor);
  Cursor.setCharFormat(Look);
}

void FitPictures(QTextDocument& Page, const QString& Folder, int Room) {
  QTextCursor Cursor(&Page);
  for (QTextBlock Block = Page.begin(); Block.isValid(); Block = Block.next()) {
    const int Indent = Block.textList() == nullptr ? 0 : Block.textList()->format().indent();
    const int RoomHere = Room - static_cast<int>(Indent * Page.indentWidth());
    for (auto Piece = Block.begin(); !Piece.atEnd(); ++Piece) {
      if (Piece.fragment().charFormat().isImageFormat()) FitPicture(Cursor, Piece.fragment(), Folder, RoomHere);
    }
  }
}

void DressHeading(QTextCursor& Cursor, const QTextBlock& Block) {
  QTextCharFormat Anchor;
  Anchor.setAnchor(true);
  Anchor.setAnchorNames({ToQt(HelpAnchor(FromQt(Block.text())))});
  Cursor.setPosition(Block.position());
  Cursor.setPosition(Block.position() + Block.length() - 1, QTextCursor::KeepAnchor);
  Cursor.mergeCharFormat(Anchor);
  QTextBlockFormat Space = Block.blockFormat();
  Space.setTopMargin(HeadingSpace);
  Cursor.setBlockFormat(Space);
}

void DressCodeBlock(QTextCursor& Cursor, const QTextBlock& Block, const QPalette& Colours) {
  QTextBlockFormat Look = Block.blockFormat();
  Look.setBackground(Colours.alternateBase());
  Look.setLeftMargin(CodeMargin);
  Look.setRightMargin(CodeMargin);
  Cursor.setPosition(Block.position());
  Cursor.setBlockFormat(Look);
}

void DressBlocks(QTextDocument& Page, const QPalette& Colours) {
  QTextCursor Cursor(&Page);
  for (QTextBlock Block = Page.begin(); Block.isValid(); Block = Block.next()) {
    const QTextBlockFormat Look = Block.blockFormat();
    if (Look.headingLevel() > 0) DressHeading(Cursor, Block);
    if (Look.hasProperty(QTextFormat::BlockCodeFence)) DressCodeBlock(Cursor, Block, Colours);
    // The pieces are counted before one is changed: a change may join it to its neighbour.
    std::vector<QTextFragment> Code;
    for (auto Piece = Block.begin(); !Piece.atEnd(); ++Piece) {
      if (Piece.fragment().charFormat().fontFixedPitch()) Code.push_back(Piece.fragment());
    }
    for (const QTextFragment& Piece : Code) DressCode(Cursor, Piece);
  }
}

}  // namespace

HelpPage::HelpPage(QWidget* Parent) : QTextBrowser(Parent) {
  setOpenExternalLinks(true);
  setAccessibleName("Page");
  document()->setDocumentMargin(HeadingSpace);
  connect(this, &QTextBrowser::sourceChanged, this, &HelpPage::DressPage);
}

void HelpPage::DressPage(const QUrl& Page) {
  // source() still is the page before; a page that is named without its folder stands in the same one.
  if (!Page.isRelative()) Folder = QFileInfo(Page.toLocalFile()).path();
  DressTables(*document()->rootFrame(), palette());
  DressBlocks(*document(), palette());
  FitPictures(*document(), Folder, viewport()->width() - 3 * HeadingSpace);
  document()->setModified(false);
  ShowMarks(!Page.hasFragment());
  if (Page.hasFragment()) scrollToAnchor(Page.fragment());
}

void HelpPage::MarkWords(const QStringList& Words) {
  Marked = Words;
  ShowMarks(true);
}

void HelpPage::ShowMarks(bool Scroll) {
  QList<QTextEdit::ExtraSelection> Marks;
  QTextCharFormat Look;
  Look.setBackground(palette().highlight());
  Look.setForeground(palette().highlightedText());
  int First = -1;
  for (const QString& Word : Marked) {
    for (QTextCursor Place = document()->find(Word); !Place.isNull(); Place = document()->find(Word, Place)) {
      Marks.append({Place, Look});
      if (First < 0 || Place.selectionStart() < First) First = Place.selectionStart();
    }
  }
  setExtraSelections(Marks);
  if (!Scroll || First < 0) return;
  QTextCursor Start(document());
  Start.setPosition(First);
  setTextCursor(Start);
  ensureCursorVisible();
}

bool HelpPage::FindText(const QString& Wanted, bool Backward) {
  const QTextDocument::FindFlags Way = Backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (find(Wanted, Way)) return true;
  const QTextCursor Before = textCursor();
  QTextCursor End(document());
  End.movePosition(Backward ? QTextCursor::End : QTextCursor::Start);
  setTextCursor(End);
  if (find(Wanted, Way)) return true;
  setTextCursor(Before);
  return false;
}

QVariant HelpPage::loadResource(int Type, const QUrl& Name) {
  const bool IsPage = Type == QTextDocument::MarkdownResource;
  if (IsPage && Name.isLocalFile() && !QFileInfo::exists(Name.toLocalFile())) {
    return QString("# Page missing\n\nThe page `%1` of the manual is not there.\n").arg(Name.toLocalFile());
  }
  return QTextBrowser::loadResource(Type, Name);
}

void HelpPage::changeEvent(QEvent* Change) {
  QTextBrowser::changeEvent(Change);
  if (Change->type() == QEvent::PaletteChange && !source().isEmpty()) reload();
}

void HelpPage::resizeEvent(QResizeEvent* Resize) {
  QTextBrowser::resizeEvent(Resize);
  if (!source().isEmpty()) FitPictures(*document(), Folder, viewport()->width() - 3 * HeadingSpace);
}

}  // namespace zelvanor
