#include "qt/views/PictureReplay.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

#include "qt/TextConversion.h"

namespace zelvanor {

namespace {

// Rows of a column; empty when First is above Last.
struct Rows {
  int First = 0;
  int Last = -1;

  bool IsEmpty() const { return First > Last; }
  bool Holds(const Rows& Other) const { return First <= Other.First && Other.Last <= Last; }
  bool Touches(const Rows& Other) const { return First <= Other.Last + 1 && Other.First <= Last + 1; }
};

// What the present pen has painted in a column, so that the lines of thousands of peaks in one column are painted once.
// Two runs are enough: peaks have a marker at the top and a line at the foot.
struct Column {
  int Stamp = 0;
  Rows Painted[2];
};

struct Replay {
  QPainter* Painter = nullptr;
  QSize Size;  // in pixels of the record, rounded up
  qreal Ratio = 1.0;
  int Stroke = 1;  // width of a pen in device pixels
  Colour Pen = Black;
  QColor PenColor;
  int Stamp = 1;  // of the present run of lines with one pen
  std::vector<Column> Columns;
  std::vector<QPoint> Chain;  // joined lines of one pen that are still to be painted
  bool ChainIsStraight = true;
};

void TakePen(Replay& To, Colour Pen) {
  if (Pen == To.Pen && To.PenColor.isValid()) return;
  To.Pen = Pen;
  To.PenColor = ToQt(Pen);
  ++To.Stamp;
}

int DevicePlace(const Replay& To, int Pixel) { return static_cast<int>(std::floor(Pixel * To.Ratio)); }

// Adds rows to what is painted in a column; false when all of them are painted already.
bool Extend(Column& Where, const Rows& New, int Stamp) {
  if (Where.Stamp != Stamp) Where = {Stamp, {}};
  Rows* Room = &Where.Painted[1];
  for (Rows& Run : Where.Painted) {
    if (Run.IsEmpty()) {
      Room = &Run;
      break;
    }
    if (Run.Holds(New)) return false;
    if (Run.Touches(New)) {
      Run = {std::min(Run.First, New.First), std::max(Run.Last, New.Last)};
      return true;
    }
  }
  *Room = New;
  return true;
}

void FillRows(Replay& To, int DeviceLeft, int DeviceWidth, const Rows& Wanted) {
  const int Top = DevicePlace(To, Wanted.First);
  To.Painter->fillRect(DeviceLeft, Top, DeviceWidth, DevicePlace(To, Wanted.Last + 1) - Top, To.PenColor);
}

// With a broken ratio there is now and then a device pixel between two columns; where both are painted, so is it.
void CloseGap(Replay& To, int LeftColumn, int OtherColumn, const Rows& Wanted) {
  if (OtherColumn < 0 || OtherColumn >= To.Size.width()) return;
  const int Start = DevicePlace(To, LeftColumn) + To.Stroke;
  const int Width = DevicePlace(To, LeftColumn + 1) - Start;
  const Column& Other = To.Columns[static_cast<std::size_t>(OtherColumn)];
  if (Width <= 0 || Other.Stamp != To.Stamp) return;
  for (const Rows& Run : Other.Painted) {
    const Rows Both = {std::max(Run.First, Wanted.First), std::min(Run.Last, Wanted.Last)};
    if (!Both.IsEmpty()) FillRows(To, Start, Width, Both);
  }
}

void PaintUpright(Replay& To, int X, int Y1, int Y2) {
  if (X < 0 || X >= To.Size.width()) return;
  const Rows Wanted = {std::max(std::min(Y1, Y2), 0), std::min(std::max(Y1, Y2), To.Size.height() - 1)};
  if (Wanted.IsEmpty() || !Extend(To.Columns[static_cast<std::size_t>(X)], Wanted, To.Stamp)) return;
  FillRows(To, DevicePlace(To, X), To.Stroke, Wanted);
  CloseGap(To, X - 1, X - 1, Wanted);
  CloseGap(To, X, X + 1, Wanted);
}

void PaintLevel(Replay& To, int X1, int X2, int Y) {
  if (Y < 0 || Y >= To.Size.height()) return;
  const int Left = std::max(std::min(X1, X2), 0);
  const int Right = std::min(std::max(X1, X2), To.Size.width() - 1);
  if (Left > Right) return;
  const int Start = DevicePlace(To, Left);
  To.Painter->fillRect(Start, DevicePlace(To, Y), DevicePlace(To, Right + 1) - Start, To.Stroke, To.PenColor);
}

bool IsStraight(QPoint From, QPoint End) { return From.x() == End.x() || From.y() == End.y(); }

void PaintCurve(Replay& To) {
  QPolygonF Curve;
  Curve.reserve(static_cast<qsizetype>(To.Chain.size()));
  // Through the middle of the pixels.
  for (const QPoint Place : To.Chain) Curve << (QPointF(Place) + QPointF(0.5, 0.5)) * To.Ratio;
  To.Painter->setRenderHint(QPainter::Antialiasing, true);
  To.Painter->setPen(QPen(To.PenColor, std::max(To.Ratio, 1.0), Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  To.Painter->drawPolyline(Curve);
  To.Painter->setRenderHint(QPainter::Antialiasing, false);
}

void PaintChain(Replay& To) {
  if (!To.ChainIsStraight) {
    PaintCurve(To);
  } else {
    for (std::size_t Place = 1; Place < To.Chain.size(); ++Place) {
      const QPoint From = To.Chain[Place - 1];
      const QPoint End = To.Chain[Place];
      if (From.x() == End.x()) {
        PaintUpright(To, From.x(), From.y(), End.y());
      } else {
        PaintLevel(To, From.x(), End.x(), From.y());
      }
    }
  }
  To.Chain.clear();
  To.ChainIsStraight = true;
}

void PaintLines(Replay& To, const std::vector<PictureLine>& Lines) {
  for (const PictureLine& Line : Lines) {
    const QPoint From(Line.X1, Line.Y1);
    const QPoint End(Line.X2, Line.Y2);
    if (To.Chain.empty() || Line.Pen != To.Pen || To.Chain.back() != From) {
      PaintChain(To);
      TakePen(To, Line.Pen);
      To.Chain.push_back(From);
    }
    To.Chain.push_back(End);
    To.ChainIsStraight = To.ChainIsStraight && IsStraight(From, End);
  }
  PaintChain(To);
}

// A stroked outline would not be the same to the pixel each time.
void PaintRim(QPainter& Painter, QPointF Place, const QString& Words, Colour Rim) {
  Painter.setPen(ToQt(Rim));
  for (int X = -RimPixels; X <= RimPixels; ++X) {
    for (int Y = -RimPixels; Y <= RimPixels; ++Y) {
      if (X != 0 || Y != 0) Painter.drawText(Place + QPointF(X, Y), Words);
    }
  }
}

void PaintTexts(QPainter& Painter, const PictureSurface& Surface, qreal Ratio) {
  Painter.scale(Ratio, Ratio);
  Painter.setFont(SurfaceFont());
  const qreal Ascent = QFontMetricsF(Painter.font()).ascent();
  for (const PictureText& Words : Surface.Texts) {
    const QPointF Place(Words.X, Words.Y + Ascent);
    if (Words.Rimmed) PaintRim(Painter, Place, ToQt(Words.Value), Surface.BackColor);
    Painter.setPen(ToQt(Words.Pen));
    Painter.drawText(Place, ToQt(Words.Value));
  }
}

}  // namespace

QFont SurfaceFont() {
  QFont Face = QGuiApplication::font();
  Face.setBold(false);
  Face.setItalic(false);
  for (int Size = SurfaceFontPixels; Size > 6; --Size) {
    Face.setPixelSize(Size);
    if (QFontMetricsF(Face).horizontalAdvance('0') <= DigitPixels) break;
  }
  return Face;
}

QImage ReplayPicture(const PictureSurface& Surface, QSize DeviceSize, qreal Ratio) {
  QImage Image(DeviceSize.expandedTo({1, 1}), QImage::Format_RGB32);
  Image.fill(ToQt(Surface.BackColor));
  QPainter Painter(&Image);
  Replay To;
  To.Painter = &Painter;
  To.Ratio = Ratio;
  To.Stroke = std::max(1, static_cast<int>(std::lround(Ratio)));
  To.Size = QSize(static_cast<int>(std::ceil(DeviceSize.width() / Ratio)),
                  static_cast<int>(std::ceil(DeviceSize.height() / Ratio)));
  To.Columns.resize(static_cast<std::size_t>(std::max(To.Size.width(), 0)));
  PaintLines(To, Surface.Lines);
  PaintTexts(Painter, Surface, Ratio);
  Painter.end();
  return Image;
}

}  // namespace zelvanor
