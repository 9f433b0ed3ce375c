#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "nmrcalc/shifts/ShiftGraph.h"

namespace nmrcalc {

// The numbers of the shift model: a network of messages between the atoms of a ShiftGraph, made by training/ from
// measured and computed shifts. Several networks of one form are averaged.

struct WeightMatrix {
  std::size_t Rows = 0;
  std::size_t Columns = 0;
  std::span<const float> Values{};  // row by row, in the storage of the network or model
};

struct DenseLayer {
  WeightMatrix Weights{};  // outputs x inputs
  WeightMatrix Bias{};     // one row
};

// Messages along one kind of edges: w (class) * silu (a (to) + b (from) + g (class) + R (distance)).
struct EdgeWeights {
  WeightMatrix Additive{};    // g, classes x width
  WeightMatrix Factor{};      // w, classes x width
  WeightMatrix ByDistance{};  // R, (groups of classes x DistanceRows) x width; no rows where distances do not count
};

struct MessageLayer {
  DenseLayer Ends{};  // a and b of the bonds, then of the pairs
  EdgeWeights Bonds{};
  EdgeWeights Pairs{};
  DenseLayer Inner{};
  DenseLayer Outer{};
};

struct ShiftNetwork {
  std::shared_ptr<float[]> Storage{};  // of all matrices
  WeightMatrix Embedding{};
  std::vector<MessageLayer> Layers{};
  DenseLayer HeavyInner{};
  DenseLayer HeavyOuter{};  // value and log scale of each nucleus
  DenseLayer HydrogenEnds{};
  EdgeWeights HydrogenEdges{};
  EdgeWeights Contacts{};
  DenseLayer HydrogenInner{};
  DenseLayer HydrogenMiddle{};
  DenseLayer HydrogenOuter{};  // value, difference of computed and measured values, log scale
};

// Heavy nuclei that the networks have outputs for.
inline constexpr std::size_t NumHeavyNuclei = 8;
inline constexpr std::array<int, NumHeavyNuclei> HeavyNuclei = {6, 15, 9, 5, 7, 8, 14, 78};

// What turns the scale that a network tells into an error bar that 68 of 100 measured values keep, found on molecules
// that the networks were not made from: bar = Factor * scale ^ Power, at least Least, times Unseen where the
// surroundings of the atom did not occur in the training.
struct ErrorCalibration {
  double Factor = 1.0;
  double Power = 1.0;
  double Least = 0.0;  // ppm
  double Unseen = 1.0;
};

struct ShiftModel {
  std::string Version{};
  std::string Summary{};         // expected errors, for the description of the results
  double LargestComputed = 0.0;  // ppm, of the difference between computed and measured hydrogens, that is added
  // Of the heavy nuclei, of hydrogen on carbon, and of hydrogens that may exchange.
  std::array<ErrorCalibration, NumHeavyNuclei + 2> Errors{};
  std::vector<std::uint32_t> KnownSurroundings{};  // rising
  // What share of that difference is added, from what all networks know of a hydrogen: 1 / (1 + exp (-output)).
  std::shared_ptr<float[]> ShareStorage{};
  DenseLayer ShareInner{};
  DenseLayer ShareOuter{};
  std::vector<ShiftNetwork> Networks{};
};

// Throws Failure when the file cannot be read, is cut or of another form.
ShiftModel ReadShiftModel(const std::string& Path);

// One atom's shift against the usual reference of its element.
struct ShiftEstimate {
  double Shift = 0.0;    // ppm
  double Error = 0.0;    // ppm; 0: unknown
  bool Known = false;    // false: nothing is known of the element; Shift is 0
  bool Seen = true;      // whether the training had such surroundings
  std::string Origin{};  // for the log
};

struct ShiftPrediction {
  std::vector<ShiftEstimate> Nodes{};      // of each node of the graph
  std::vector<ShiftEstimate> Hydrogens{};  // of each hydrogen; Known is false for one without a heavy neighbour
};

// Equivalent atoms get equal numbers.
ShiftPrediction PredictShifts(const ShiftModel& Model, const Molecule& System);

// A number for the element, bonds and neighbours of each node, the same for every order of the atoms.
std::vector<std::uint32_t> HashAllSurroundings(const ShiftGraph& Graph);

}  // namespace nmrcalc
