#include "molecule/ViewTransform.h"

#include <cmath>

#include "basic/Numbers.h"

namespace zelvanor {

namespace {

void NeedFinite(const ViewMatrix& M) {
  for (const auto& Row : M) {
    for (const Double Value : Row) {
      if (!std::isfinite(Value)) throw Failure(failures::Overflow);
    }
  }
}

}  // namespace

void GetViewTransform(const RenderControl& Control, ViewMatrix& M) {
  int Index = 0;
  for (auto& Row : M) {
    for (Double& Value : Row) Value = GetViewTransform(Control, Index++);
  }
}

void SetViewTransform(RenderControl& Control, const ViewMatrix& M) {
  NeedFinite(M);
  int Index = 0;
  for (const auto& Row : M) {
    for (const Double Value : Row) SetViewTransform(Control, Index++, Value);
  }
}

void TransformPoint(ViewVector& V, const ViewMatrix& M) {
  ViewVector Image{};
  for (std::size_t C = 0; C < 3; ++C) Image[C] = V[0] * M[0][C] + V[1] * M[1][C] + V[2] * M[2][C] + M[3][C];
  V = Image;
}

void TranslateView(Single DX, Single DY, Single DZ, ViewMatrix& M) {
  M[3][0] += DX;
  M[3][1] += DY;
  M[3][2] += DZ;
  NeedFinite(M);
}

void RotateAxis(Double Angle, int Axis, ViewMatrix& M) {
  const Double S = std::sin(Angle);
  const Double C = std::cos(Angle);
  for (auto& Row : M) {
    const auto [X, Y, Z] = Row;
    if (Axis == 0) Row = {X, C * Y - S * Z, C * Z + S * Y};
    if (Axis == 1) Row = {S * Z + C * X, Y, C * Z - S * X};
    if (Axis == 2) Row = {C * X - S * Y, C * Y + S * X, Z};
  }
  NeedFinite(M);
}

void MagnifyView(Double Factor, ViewMatrix& M) {
  for (std::size_t Row = 0; Row < 3; ++Row) {
    for (Double& Value : M[Row]) Value *= Factor;
  }
  NeedFinite(M);
}

void RotateAboutCentre(RenderControl& Control, Double RX, Double RY, Double RZ, const ViewVector& Centre) {
  ViewVector V = Centre;
  ViewMatrix M{};
  GetViewTransform(Control, M);
  TransformPoint(V, M);
  TranslateView(ToSingle(-V[0]), ToSingle(-V[1]), ToSingle(-V[2]), M);
  RotateAxis(RX, 0, M);
  RotateAxis(RY, 1, M);
  RotateAxis(RZ, 2, M);
  TranslateView(ToSingle(V[0]), ToSingle(V[1]), ToSingle(V[2]), M);
  SetViewTransform(Control, M);
}

}  // namespace zelvanor
