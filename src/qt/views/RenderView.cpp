#include "qt/views/RenderView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Accessible.h"
#include "qt/views/AtomKeys.h"
#include "qt/views/MouseCodes.h"
#include "qt/views/SurfaceMarks.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

constexpr qreal NotchOfWheel = 120;

Single TwipsOf(qreal Pixels) { return static_cast<Single>(std::floor(Pixels) * TwipsPerPixelX); }

// Draws what its control holds, and keeps the picture until that changes.
class RenderView : public KeyedSurface {
 public:
  RenderView(RenderControl& View, QWidget* Parent) : KeyedSurface(Parent), View(View) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setContextMenuPolicy(Qt::PreventContextMenu);  // the right button is the program's
  }

  void ForgetPicture() {
    IsStale = true;
    // Without a molecule the hint that lies below shows.
    setAttribute(Qt::WA_OpaquePaintEvent, !View.Atoms.empty());
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (View.Atoms.empty()) {
      QPainter Painter(this);
      if (ShowsFocus) PaintFocusFrame(Painter, rect());
      return;
    }
    const qreal Ratio = devicePixelRatioF();
    const QSize DeviceSize =
        QSize(static_cast<int>(std::ceil(width() * Ratio)), static_cast<int>(std::ceil(height() * Ratio)))
            .expandedTo({1, 1});
    if (IsStale || Picture.size() != DeviceSize) DrawPicture(DeviceSize, Ratio);
    QPainter Painter(this);
    Painter.drawImage(0, 0, Picture);
    if (ShowsFocus) PaintFocusFrame(Painter, rect());
  }

  // As a notch of the wheel does; the other keys of the view are the program's.
  void keyPressEvent(QKeyEvent* Key) override {
    if (&View == &Main.MolRender1 && MayAct(View) && PressAtomKey(*Key)) return ForgetPicture();
    const int Notches = Key->key() == Qt::Key_Plus ? 1 : Key->key() == Qt::Key_Minus ? -1 : 0;
    if (Notches == 0 || !View.MouseWheel || !MayAct(View)) return KeyedSurface::keyPressEvent(Key);
    Dispatch([&] { View.MouseWheel(Notches); });
  }

  void mousePressEvent(QMouseEvent* Mouse) override {
    if (MayAct(View)) Tell(RenderMouseDown, *Mouse, Mouse->button());
  }
  // A drag that has begun comes to its end also while a command works.
  void mouseReleaseEvent(QMouseEvent* Mouse) override { Tell(RenderMouseUp, *Mouse, Mouse->button()); }
  void mouseMoveEvent(QMouseEvent* Mouse) override {
    if (MayAct(View)) Tell(RenderMouseMove, *Mouse, Mouse->buttons());
  }
  void wheelEvent(QWheelEvent* Wheel) override {
    const Double Notches = Wheel->angleDelta().y() / NotchOfWheel;
    Wheel->accept();
    if (View.MouseWheel && MayAct(View)) Dispatch([&] { View.MouseWheel(Notches); });
  }

 private:
  void DrawPicture(QSize DeviceSize, qreal Ratio) {
    BuildScene(View, Scene);
    PaintScene(Scene, View, Picture, DeviceSize, Ratio, Pieces);
    if (!Scene.Simple) MarkSelection();
    PaintPointedAtom();
    IsStale = false;
  }

  void PaintPointedAtom() {
    const int Atom = PointedAtom();
    if (&View != &Main.MolRender1 || Atom < 0) return;
    QPainter Painter(&Picture);
    PaintAtomPointer(Painter, Scene, Atom);
  }

  void MarkSelection() {
    const int Count = Main.NumSelectedAtoms;
    if (Count == 0 || &View != &Main.MolRender1) return;
    // A drag is not to wait for hundreds of marks; they come back with its end.
    constexpr int MostInDrag = 200;
    if (Count > MostInDrag && View.PressedButton != 0) return;
    std::vector<bool> IsSelected(View.Atoms.size());
    for (int Place = 0; Place < Count; ++Place) {
      const int Atom = Main.SelectedAtom[Place];
      if (Atom >= 0 && Atom < static_cast<int>(IsSelected.size())) IsSelected[static_cast<std::size_t>(Atom)] = true;
    }
    QPainter Painter(&Picture);
    PaintAtomMarks(Painter, Scene, IsSelected);
  }

  using Reporter = void (*)(RenderControl&, int, int, Single, Single);
  void Tell(Reporter Report, const QMouseEvent& Mouse, Qt::MouseButtons Buttons) {
    const QPointF Place = Mouse.position();
    Dispatch([&] {
      Report(View, ButtonCode(Buttons), ShiftCode(Mouse.modifiers()), TwipsOf(Place.x()), TwipsOf(Place.y()));
    });
  }

  RenderControl& View;
  RenderScene Scene;
  ScenePieces Pieces;
  QImage Picture;
  bool IsStale = true;
};

QString DescribeMolecule() {
  return QString(
             "%1 atoms, %2 of them NMR atoms, %3 selected. Home and End turn the view, Space fits it to the window, "
             "plus and minus magnify; N and P point at the next and the previous atom, Enter selects it, Backspace "
             "takes it "
             "out of the selection.")
      .arg(Main.MolRender1.Atoms.size())
      .arg(int(Workspace.NumNMRAtoms))
      .arg(int(Main.NumSelectedAtoms));
}

}  // namespace

QWidget* MakeRenderControl(Control& Target, QWidget* Parent) {
  auto& View = static_cast<RenderControl&>(Target);
  auto* Shown = new RenderView(View, Parent);
  SpeakFor(Shown, {QAccessible::Graphic, DescribeMolecule, {}});
  BindWidget(View, Shown, [Shown](Property What) {
    if (What == Property::Picture || What == Property::Place) Shown->ForgetPicture();
  });
  return Shown;
}

}  // namespace zelvanor
