// Positions from bond lengths, bond angles and dihedral angles, in double precision. The dihedral angle of atom, first,
// second and third reference is positive when the bond in front has to be turned clockwise onto the one behind.

#include <cmath>
#include <numbers>

#include "basic/NumberText.h"
#include "files/ZMatrixRows.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr Double RadiansPerDegree = std::numbers::pi / 180.0;
// Two rows nearer than this (angstrom) stand in one place; three with a smaller sine of their angle on one line.
constexpr Double SamePlace = 1e-4;
constexpr Double OneLine = 1e-4;
constexpr Double LargestReach = 1e6;
constexpr Double FullTurn = 360.0;

Position Minus(const Position& A, const Position& B) { return {A[0] - B[0], A[1] - B[1], A[2] - B[2]}; }

Position Cross(const Position& A, const Position& B) {
  return {A[1] * B[2] - A[2] * B[1], A[2] * B[0] - A[0] * B[2], A[0] * B[1] - A[1] * B[0]};
}

Double Length(const Position& A) { return std::hypot(A[0], A[1], A[2]); }
Position Scaled(const Position& A, Double Factor) { return {A[0] * Factor, A[1] * Factor, A[2] * Factor}; }

// From + A Along + B Aside + C Above.
Position Placed(const Position& From, const Position& Along, const Position& Aside, const Position& Above,
                const Position& Shares) {
  Position Result = From;
  for (std::size_t C = 0; C < 3; ++C) Result[C] += Shares[0] * Along[C] + Shares[1] * Aside[C] + Shares[2] * Above[C];
  return Result;
}

const Position& PlaceOf(const std::vector<Position>& Places, int Row) {
  return Places[static_cast<std::size_t>(Row) - 1];
}

void CheckReach(const ZMatrixRow& Row, const Position& Place) {
  if (Length(Place) > LargestReach) ThrowAtLine(Row.Line, "the row stands too far away");
}

void CheckInternal(const ZMatrixRow& Row) {
  if (Row.Values[0] <= 0) ThrowAtLine(Row.Line, "the bond length is not greater than 0");
  // Angles behind the straight line are odd, but they mean a place.
  if (std::fabs(Row.Values[1]) > FullTurn) ThrowAtLine(Row.Line, "the bond angle is more than a full turn");
}

// The unit vector from the first reference to the second.
Position FindAxis(const ZMatrixRow& Row, const std::vector<Position>& Places) {
  const auto& [First, Second, Third] = Row.References;
  const Position Axis = Minus(PlaceOf(Places, Second), PlaceOf(Places, First));
  const Double Distance = Length(Axis);
  if (Distance < SamePlace) {
    ThrowAtLine(Row.Line, Join("rows ", Long{First}, " and ", Long{Second}, " stand in one place"));
  }
  return Scaled(Axis, 1.0 / Distance);
}

Position PlaceThird(const ZMatrixRow& Row, const std::vector<Position>& Places) {
  const Position Along = FindAxis(Row, Places);
  const Double Angle = Row.Values[1] * RadiansPerDegree;
  // In the xy plane, on the side of positive y for the usual frame.
  Position Aside = Along[0] < 0 ? Position{Along[1], -Along[0], 0.0} : Position{-Along[1], Along[0], 0.0};
  const Double Width = Length(Aside);
  Aside = Width < OneLine ? Position{1.0, 0.0, 0.0} : Scaled(Aside, 1.0 / Width);
  return Placed(PlaceOf(Places, Row.References[0]), Along, Aside, {},
                {Row.Values[0] * std::cos(Angle), Row.Values[0] * std::sin(Angle), 0.0});
}

Position PlaceFurther(const ZMatrixRow& Row, const std::vector<Position>& Places) {
  const auto& [First, Second, Third] = Row.References;
  const Position Along = FindAxis(Row, Places);
  const Double Angle = Row.Values[1] * RadiansPerDegree;
  const Double Dihedral = Row.Values[2] * RadiansPerDegree;
  const Position Back = Minus(PlaceOf(Places, Third), PlaceOf(Places, Second));
  const Position Normal = Cross(Back, Along);
  const Double Distance = Length(Back);
  if (Distance < SamePlace) {
    ThrowAtLine(Row.Line, Join("rows ", Long{Second}, " and ", Long{Third}, " stand in one place"));
  }
  Position Above{};
  if (Length(Normal) < OneLine * Distance) {
    // Straight ahead no dihedral angle is asked for.
    if (std::fabs(std::sin(Angle)) > OneLine) {
      ThrowAtLine(Row.Line, Join("rows ", Long{First}, ", ", Long{Second}, " and ", Long{Third},
                                 " stand on one line, so that the dihedral angle has no meaning"));
    }
  } else {
    Above = Scaled(Normal, 1.0 / Length(Normal));
  }
  const Position Aside = Cross(Along, Above);
  const Double Out = Row.Values[0] * std::sin(Angle);
  return Placed(PlaceOf(Places, First), Along, Aside, Above,
                {Row.Values[0] * std::cos(Angle), Out * std::cos(Dihedral), Out * std::sin(Dihedral)});
}

}  // namespace

std::vector<Position> PlaceZMatrixRows(const ZMatrixRows& Rows) {
  std::vector<Position> Places;
  Places.reserve(Rows.size());
  for (const ZMatrixRow& Row : Rows) {
    const std::size_t Number = Places.size();
    if (Row.Cartesian) {
      Places.push_back(Row.Values);
    } else if (Number == 0) {
      Places.push_back({});
    } else {
      CheckInternal(Row);
      if (Number == 1) {
        Places.push_back(Placed(Places[0], {1.0, 0.0, 0.0}, {}, {}, {Row.Values[0], 0.0, 0.0}));
      } else {
        Places.push_back(Number == 2 ? PlaceThird(Row, Places) : PlaceFurther(Row, Places));
      }
    }
    CheckReach(Row, Places.back());
  }
  return Places;
}

}  // namespace zelvanor
