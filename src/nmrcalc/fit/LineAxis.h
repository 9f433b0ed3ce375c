#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace nmrcalc {

// From lines to the samples of a spectrum. Lines are spread over the nodes of a fine grid by cubic B-splines, and the
// line shape is put on in the domain of time, where the splines are divided out again: the work of a line does not
// depend on its width, and the samples follow its place smoothly, so that they have derivatives.
// (U. Essmann et al., J. Chem. Phys. 103 (1995) 8577, on the splines.)

// The grid: a whole number of nodes for each measured point, and room on both sides.
struct LineAxis {
  double First = 0.0;          // Hz, of node 0
  double Step = 1.0;           // Hz
  std::size_t Size = 0;        // nodes, a power of two
  std::size_t FirstPoint = 0;  // the node of the first measured point
  std::size_t Stride = 1;      // nodes from one point to the next
  std::size_t NumPoints = 0;
};

LineAxis MakeLineAxis(double FirstHz, double StepHz, std::size_t NumPoints);

// Adds a line, and the change of a line whose intensity and whose frequency times intensity change by so much. What
// lies beyond the grid is left out.
inline void AddToNodes(const LineAxis& Axis, double Frequency, double Intensity, double Shifted, double* Nodes) {
  const double Place = (Frequency - Axis.First) / Axis.Step;
  const double Whole = std::floor(Place);
  if (!(Whole >= 1.0 && Whole < double(Axis.Size) - 2.0)) return;
  const double X = Place - Whole;
  const double Y = 1.0 - X;
  double* Target = Nodes + static_cast<std::size_t>(Whole) - 1;
  const double Value = Intensity / 6.0;
  const double Slope = 0.5 * Shifted / Axis.Step;
  Target[0] += Value * Y * Y * Y - Slope * Y * Y;
  Target[1] += Value * (4.0 - 3.0 * X * X * (2.0 - X)) - Slope * X * (4.0 - 3.0 * X);
  Target[2] += Value * (4.0 - 3.0 * Y * Y * (2.0 - Y)) + Slope * Y * (4.0 - 3.0 * Y);
  Target[3] += Value * X * X * X + Slope * X * X;
}

// Full widths at half height, in Hz.
struct LineShape {
  double Lorentz = 1.0;
  double Gauss = 0.0;
};
enum class ShapePart { Value, ByLorentz, ByGauss };  // itself, or its derivative by a width

// What the shape makes of each moment of the domain of time, for ShapeLines.
std::vector<double> FactorsOf(const LineAxis& Axis, const LineShape& Shape, ShapePart Part = ShapePart::Value);
// The samples at the measured points, in units of intensity per Hz.
std::vector<double> ShapeLines(const LineAxis& Axis, const std::vector<double>& Nodes,
                               const std::vector<double>& Factors);

// Blurs values at equal distances by a Gauss function of this full width at half height; beyond both ends they are 0.
void BlurValues(std::vector<double>& Values, double StepHz, double WidthHz);

}  // namespace nmrcalc
