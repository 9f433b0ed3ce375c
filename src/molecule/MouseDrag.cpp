#include "molecule/MouseDrag.h"

#include <cmath>
#include <numbers>

#include "molecule/MoleculeView.h"
#include "platform/Picture.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

MoleculeViewState& V = ShownMolecule;
RenderControl& View = Main.MolRender1;

constexpr int RotateMode = 2;
constexpr int TranslateMode = 3;

// A drag over this share of MouseViewSize doubles the magnification, as four notches of the wheel do.
constexpr Double DoublingShare = 0.25;
constexpr Double DoublingNotches = 4;
// With more atoms the view draws plain forms while it moves.
constexpr int FullDrawingAtoms = 2000;
constexpr Double LeastScale = 1.0e-3;
constexpr Double MostScale = 1.0e5;

// A step of the drag: pixels since the last one, x to the right, y up.
struct DragStep {
  Double DX;
  Double DY;
};

void RotateBy(const DragStep& Step) {
  if (!(V.MouseViewSize > 0)) return;
  const Double Angle = std::numbers::pi / V.MouseViewSize;
  // The near side of the system goes with the pointer.
  RotateAboutCentre(View, -Step.DY * Angle, Step.DX * Angle, 0, V.RotationCentre);
}

// The direction of a place as seen from the middle of the control.
Double DirectionOf(Single X, Single Y) { return std::atan2(View.Height / 2.0 - Y, X - View.Width / 2.0); }

void TurnInPlane(Single X, Single Y) {
  const Double Swept = std::remainder(DirectionOf(X, Y) - DirectionOf(V.LastX, V.LastY), 2 * std::numbers::pi);
  RotateAboutCentre(View, 0, 0, Swept, V.RotationCentre);
}

void TranslateBy(const DragStep& Step) {
  ViewMatrix M{};
  GetViewTransform(View, M);
  TranslateView(static_cast<Single>(Step.DX), static_cast<Single>(Step.DY), 0, M);
  SetViewTransform(View, M);
}

void MagnifyBy(Double Factor) {
  ViewMatrix M{};
  GetViewTransform(View, M);
  MagnifyView(Factor, M);
  // Beyond these ends nothing can be seen any more, and further on numbers overflow.
  const Double Stretch = std::hypot(M[0][0], M[0][1], M[0][2]);
  if (Stretch < LeastScale || Stretch > MostScale) return;
  SetViewTransform(View, M);
}

void TakeStep(Single X, Single Y) {
  const DragStep Step{(Double{X} - V.LastX) / TwipsPerPixelX, (Double{V.LastY} - Y) / TwipsPerPixelY};
  switch (V.MouseDragState) {
    case DragRotate:
      return RotateBy(Step);
    case DragTurnInPlane:
      return TurnInPlane(X, Y);
    case DragTranslate:
      return TranslateBy(Step);
    case DragMagnify:
      if (V.MouseViewSize > 0) MagnifyBy(std::exp2(Step.DY / (DoublingShare * V.MouseViewSize)));
      return;
    default:
      return;
  }
}

void BeginDrag(int Button, MouseDrag State, TextView Hint) {
  V.MouseDragButton = Button;
  V.MouseDragState = State;
  View.SimpleDrawing = GetAtomCount(View) > FullDrawingAtoms;
  ShowStatus(Hint);
}

}  // namespace

void MolRender1_MouseDown(int Button, int /*Shift*/, Single X, Single Y) {
  V.MouseDownX = X;
  V.MouseDownY = Y;
  V.MouseViewSize = static_cast<Single>(View.Height <= View.Width ? static_cast<Double>(View.Height) / TwipsPerPixelY
                                                                  : static_cast<Double>(View.Width) / TwipsPerPixelX);
  if (V.MouseDragState != NoDrag) return;
  V.LastX = X;
  V.LastY = Y;
  const bool Left = Button == LeftButton;
  if (Main.MouseMode == RotateMode) {
    BeginDrag(Button, Left ? DragRotate : DragTurnInPlane, "L-drag for 3-D rotation, R-drag for in-plane rotation.");
  } else if (Main.MouseMode == TranslateMode) {
    BeginDrag(Button, Left ? DragTranslate : DragMagnify,
              Left ? "Drag the mouse to translate the system." : "Drag the mouse vertically to change magnification.");
  } else {
    V.MouseDragState = NoDrag;
  }
}

void MolRender1_MouseMove(int /*Button*/, int /*Shift*/, Single X, Single Y) {
  if (V.MouseDragState == NoDrag) return;
  IgnoreFailure([X, Y] { TakeStep(X, Y); });
  V.LastX = X;
  V.LastY = Y;
}

void MolRender1_MouseUp(int Button, int /*Shift*/, Single /*X*/, Single /*Y*/) {
  if (V.MouseDragState == NoDrag || Button != V.MouseDragButton) return;
  V.MouseDragState = NoDrag;
  View.SimpleDrawing = false;
  RepaintRender(View);
}

void MolRender1_MouseWheel(Double Notches) {
  IgnoreFailure([Notches] { MagnifyBy(std::exp2(Notches / DoublingNotches)); });
}

}  // namespace zelvanor
