#pragma once

#include <array>

#include "platform/Render.h"

namespace zelvanor {

// The arithmetic of the view matrix: rows 0..2 turn and magnify, row 3 moves, points are row vectors. A result that is
// no finite number throws "Overflow"; the control then keeps the matrix that it had.
using ViewMatrix = std::array<std::array<Double, 3>, 4>;
using ViewVector = std::array<Double, 3>;

void GetViewTransform(const RenderControl& Control, ViewMatrix& M);
void SetViewTransform(RenderControl& Control, const ViewMatrix& M);

// Replaces V by its image.
void TransformPoint(ViewVector& V, const ViewMatrix& M);
void TranslateView(Single DX, Single DY, Single DZ, ViewMatrix& M);
// Turns the whole view about the origin of view space; Axis is 0 (x), 1 (y) or 2 (z), another one does nothing.
void RotateAxis(Double Angle, int Axis, ViewMatrix& M);
// Multiplies the linear part and leaves the translation.
void MagnifyView(Double Factor, ViewMatrix& M);
// Turns about a point of the model by RX about x, then RY about y, then RZ about z, all in radians. The point stays
// where it is, to the precision of a Single.
void RotateAboutCentre(RenderControl& Control, Double RX, Double RY, Double RZ, const ViewVector& Centre);

// With pi to 15 digits: scripts see the view matrices that come from it.
constexpr Double DegreesToRadians(Double Degrees) { return Degrees * 3.14159265358979 / 180; }

}  // namespace zelvanor
