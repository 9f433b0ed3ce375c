#include "qt/views/SpectrumExtras.h"

#include <QScrollBar>
#include <algorithm>
#include <optional>
#include <utility>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/views/SurfaceMarks.h"
#include "shell/MainForm.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

using Slide = QAbstractSlider::SliderAction;

const PictureSurface& Surface() { return Main.Spectrum1; }

// The column of the line in the selection colour; none where there is none.
std::optional<int> SelectedColumn() {
  const Long Peak = SpectrumView.SelectedPeak;
  if (!IsSet(Workspace.SpectraAvailable) || Peak < 0 || Peak >= SpectrumView.ViewPeakCount) return {};
  if (Workspace.PeakFrequency[Peak] == 0.0F && Workspace.PeakIntensity[Peak] == 0.0F) return {};
  return static_cast<int>(FGetPeakRX(Workspace.PeakFrequency[Peak]));
}

// The stroke at the top edge with which each line begins.
bool IsTopStroke(const PictureLine& Line) { return Line.Y1 == 0 && Line.X1 == Line.X2 && Line.Y2 > 0; }

void SlideBar(const ScrollBar& Bar, Slide Action) {
  if (auto* Shown = qobject_cast<QScrollBar*>(WidgetOf(Bar))) Shown->triggerAction(Action);
}

void Drag(int Button, int FromPixel, int ToPixel) {
  const auto Twips = [](int Pixel) { return static_cast<Single>(TwipsFromPixels(Pixel)); };
  const Single Y = Twips(PixelsFromTwips(Surface().Height) / 2);
  Dispatch([&] {
    Surface().MouseDown(Button, 0, Twips(FromPixel), Y);
    if (FromPixel != ToPixel) Surface().MouseMove(Button, 0, Twips(ToPixel), Y);
    Surface().MouseUp(Button, 0, Twips(ToPixel), Y);
  });
}

void ZoomToMiddle() {
  const int Width = PixelsFromTwips(Surface().Width);
  Drag(LeftButton, Width / 4, Width - Width / 4);
}

// The line in the window that follows the picked one to the right or to the left; at an end, and with none picked, the
// first one from the other side.
void PickNextLine(bool ToTheRight) {
  const int Width = PixelsFromTwips(Surface().Width);
  const int From = SelectedColumn().value_or(-1);
  std::optional<int> Next;
  std::optional<int> First;
  const auto IsCloser = [&](int X, std::optional<int> Than) { return !Than || (ToTheRight ? X < *Than : X > *Than); };
  for (const PictureLine& Line : Surface().Lines) {
    const int X = Line.X1;
    if (!IsTopStroke(Line) || X < 0 || X >= Width || X == From) continue;
    if (IsCloser(X, First)) First = X;
    if ((ToTheRight ? X > From : X < From) && IsCloser(X, Next)) Next = X;
  }
  if (const std::optional<int> Wanted = Next ? Next : First) Drag(LeftButton, *Wanted, *Wanted);
}

}  // namespace

void PaintSelectedLine(QPainter& Painter) {
  const std::optional<int> Column = SelectedColumn();
  if (!Column) return;
  for (const PictureLine& Line : Surface().Lines) {
    constexpr int Gap = 2;
    if (IsTopStroke(Line) && Line.X1 == *Column) return PaintLineMark(Painter, *Column, Line.Y2 + Gap);
  }
}

bool PressSpectrumKey(const QKeyEvent& Key) {
  const bool Shown = IsSet(Workspace.SpectraAvailable) || Workspace.MeasuredCount > 0;
  if (!Shown || !MayAct(Main.Spectrum1)) return false;
  const bool Ctrl = Key.modifiers() & Qt::ControlModifier;
  switch (Key.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right: {
      const bool Right = Key.key() == Qt::Key_Right;
      if (Ctrl) return PickNextLine(Right), true;
      return SlideBar(Main.HScroll1, Right ? Slide::SliderSingleStepAdd : Slide::SliderSingleStepSub), true;
    }
    case Qt::Key_PageUp:
      return SlideBar(Main.HScroll1, Slide::SliderPageStepSub), true;
    case Qt::Key_PageDown:
      return SlideBar(Main.HScroll1, Slide::SliderPageStepAdd), true;
    case Qt::Key_Up:
      return SlideBar(Main.HScroll2, Slide::SliderSingleStepAdd), true;
    case Qt::Key_Down:
      return SlideBar(Main.HScroll2, Slide::SliderSingleStepSub), true;
    case Qt::Key_Plus:
      return ZoomToMiddle(), true;
    case Qt::Key_Minus:
      return Drag(RightButton, 0, 0), true;
    default:
      return false;
  }
}

QString DescribeSpectrum() {
  if (!IsSet(Workspace.SpectraAvailable) && Workspace.MeasuredCount == 0) return {};
  const double MHz = SpectrumView.SpectrometerMHz;
  const auto Ppm = [MHz](double Frequency) {
    return MHz == 0.0 ? QString() : QString::number(-Frequency / MHz, 'f', 3);
  };
  const double Offset = SpectrumView.HorizontalOffset;
  const QString Measured = Workspace.MeasuredCount > 0 ? QString("Measured spectrum %1, %2 integrals. ")
                                                             .arg(ToQt(Workspace.MeasuredTitle))
                                                             .arg(Workspace.IntegralCount)
                                                       : QString();
  return Measured +
         QString(
             "%1 lines; shown from %2 to %3 ppm. Left and right pan, up and down change the line width, plus and "
             "minus zoom, Backspace goes one zoom back, Ctrl with left and right picks the next line, Ctrl with up and "
             "down "
             "stretches the measured spectrum.")
             .arg(SpectrumView.ListPeakCount)
             .arg(Ppm(SpectrumView.ViewLow + Offset), Ppm(SpectrumView.ViewHigh + Offset));
}

}  // namespace zelvanor
