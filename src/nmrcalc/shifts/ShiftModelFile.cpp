// The file of the shift model. Little-endian; numbers of the networks are whole numbers of 16 bits with a scale for
// each row, which keeps the file small and is read in a millisecond.
//
//   "NMRSHFT1"
//   uint32 length, text: version; uint32 length, text: summary
//   float share of computed values; 10 x 4 floats: factor, power, least, unseen of the heavy nuclei, hydrogen on
//   carbon, others uint32 count, uint32 x count: known surroundings uint32 number of networks, uint32 number of layers
//   each network: its matrices in the order of ReadNetwork, each: uint32 rows, uint32 columns, then for each row
//   float scale, int16 x columns

#include <bit>
#include <cstring>
#include <fstream>

#include "basic/Failure.h"
#include "nmrcalc/shifts/ShiftModel.h"

namespace nmrcalc {

namespace {

static_assert(std::endian::native == std::endian::little, "the model is stored little-endian");

constexpr std::string_view Magic = "NMRSHFT1";
constexpr std::uint32_t LargestSize = 1U << 20;  // of any count in the file

struct Bytes {
  std::string Path{};
  std::string Text{};
  std::size_t Next = 0;
};

const char* Take(Bytes& File, std::size_t Count) {
  if (File.Text.size() - File.Next < Count) {
    throw zelvanor::Failure(File.Path + ": the file of the shift model is cut or damaged");
  }
  const char* Place = File.Text.data() + File.Next;
  File.Next += Count;
  return Place;
}

template <typename Number>
Number TakeNumber(Bytes& File) {
  Number Value{};
  std::memcpy(&Value, Take(File, sizeof Value), sizeof Value);
  return Value;
}

std::uint32_t TakeCount(Bytes& File) {
  const auto Count = TakeNumber<std::uint32_t>(File);
  if (Count > LargestSize) throw zelvanor::Failure(File.Path + ": the file of the shift model is cut or damaged");
  return Count;
}

std::string TakeText(Bytes& File) {
  const std::uint32_t Length = TakeCount(File);
  return {Take(File, Length), Length};
}

WeightMatrix TakeMatrix(Bytes& File) {
  WeightMatrix Matrix{.Rows = TakeCount(File), .Columns = TakeCount(File)};
  const std::size_t RowBytes = sizeof(float) + Matrix.Columns * sizeof(std::int16_t);
  const char* Place = Take(File, Matrix.Rows * RowBytes);
  Matrix.Values.resize(Matrix.Rows * Matrix.Columns);
  std::vector<std::int16_t> Row(Matrix.Columns);
  float* Target = Matrix.Values.data();
  for (std::size_t K = 0; K < Matrix.Rows; ++K, Place += RowBytes) {
    float Scale = 0.0F;
    std::memcpy(&Scale, Place, sizeof Scale);
    std::memcpy(Row.data(), Place + sizeof Scale, Row.size() * sizeof(std::int16_t));
    for (const std::int16_t Value : Row) *Target++ = Scale * Value;
  }
  return Matrix;
}

DenseLayer TakeLayer(Bytes& File) {
  DenseLayer Layer{.Weights = TakeMatrix(File)};
  Layer.Bias = TakeMatrix(File);
  return Layer;
}

EdgeWeights TakeEdges(Bytes& File) {
  EdgeWeights Edges{.Additive = TakeMatrix(File)};
  Edges.Factor = TakeMatrix(File);
  Edges.ByDistance = TakeMatrix(File);
  return Edges;
}

ShiftNetwork TakeNetwork(Bytes& File, std::uint32_t NumLayers) {
  ShiftNetwork Network{.Embedding = TakeMatrix(File)};
  for (std::uint32_t K = 0; K < NumLayers; ++K) {
    MessageLayer& Layer = Network.Layers.emplace_back();
    Layer.Ends = TakeLayer(File);
    Layer.Bonds = TakeEdges(File);
    Layer.Pairs = TakeEdges(File);
    Layer.Inner = TakeLayer(File);
    Layer.Outer = TakeLayer(File);
  }
  Network.HeavyInner = TakeLayer(File);
  Network.HeavyOuter = TakeLayer(File);
  Network.HydrogenEnds = TakeLayer(File);
  Network.HydrogenEdges = TakeEdges(File);
  Network.Contacts = TakeEdges(File);
  Network.HydrogenInner = TakeLayer(File);
  Network.HydrogenMiddle = TakeLayer(File);
  Network.HydrogenOuter = TakeLayer(File);
  return Network;
}

bool Takes(const DenseLayer& Layer, std::size_t Inputs) {
  return Layer.Weights.Columns == Inputs && Layer.Bias.Rows == 1 && Layer.Bias.Columns == Layer.Weights.Rows;
}

bool Fits(const EdgeWeights& Edges, std::size_t Classes, std::size_t Groups) {
  const std::size_t Width = Edges.Additive.Columns;
  return Edges.Additive.Rows == Classes && Edges.Factor.Rows == Classes && Edges.Factor.Columns == Width &&
         Edges.ByDistance.Rows == Groups * NumDistanceRows && (Groups == 0 || Edges.ByDistance.Columns == Width);
}

// Whether every matrix has the size that the graph and the other matrices ask for.
bool IsConsistent(const ShiftNetwork& Network) {
  const std::size_t Width = Network.Embedding.Columns;
  bool Good = Network.Embedding.Rows == NumFeatureRows();
  for (const MessageLayer& Layer : Network.Layers) {
    const std::size_t Both = Layer.Bonds.Additive.Columns + Layer.Pairs.Additive.Columns;
    Good = Good && Takes(Layer.Ends, Width) && Layer.Ends.Weights.Rows == 2 * Both;
    Good = Good && Fits(Layer.Bonds, NumBondClasses, 0) && Fits(Layer.Pairs, NumPairClasses, NumPairGroups);
    Good = Good && Takes(Layer.Inner, Width + Both) && Takes(Layer.Outer, Layer.Inner.Weights.Rows);
    Good = Good && Layer.Outer.Weights.Rows == Width;
  }
  const std::size_t Both = Network.HydrogenEdges.Additive.Columns + Network.Contacts.Additive.Columns;
  Good = Good && Takes(Network.HeavyInner, Width) && Takes(Network.HeavyOuter, Network.HeavyInner.Weights.Rows);
  Good = Good && Network.HeavyOuter.Weights.Rows >= 2 * NumHeavyNuclei;
  Good = Good && Takes(Network.HydrogenEnds, Width) && Network.HydrogenEnds.Weights.Rows == 2 * Both;
  Good = Good && Fits(Network.HydrogenEdges, NumHydrogenClasses, NumHydrogenGroups);
  Good = Good && Fits(Network.Contacts, NumContactClasses, NumContactGroups);
  Good = Good && Takes(Network.HydrogenInner, Width + Both);
  Good = Good && Takes(Network.HydrogenMiddle, Network.HydrogenInner.Weights.Rows);
  return Good && Takes(Network.HydrogenOuter, Network.HydrogenMiddle.Weights.Rows) &&
         Network.HydrogenOuter.Weights.Rows == 3;
}

}  // namespace

ShiftModel ReadShiftModel(const std::string& Path) {
  std::ifstream Stream(Path, std::ios::binary | std::ios::ate);
  if (!Stream) throw zelvanor::Failure("Could not read " + Path);
  Bytes File{.Path = Path};
  File.Text.resize(static_cast<std::size_t>(std::max<std::streamoff>(Stream.tellg(), 0)));
  Stream.seekg(0);
  Stream.read(File.Text.data(), static_cast<std::streamsize>(File.Text.size()));
  if (!Stream || !File.Text.starts_with(Magic)) {
    throw zelvanor::Failure(Path + ": not a file of the shift model, or one of another version");
  }
  File.Next = Magic.size();
  ShiftModel Model{.Version = TakeText(File)};
  Model.Summary = TakeText(File);
  Model.ComputedShare = TakeNumber<float>(File);
  for (ErrorCalibration& Item : Model.Errors) {
    for (double* Field : {&Item.Factor, &Item.Power, &Item.Least, &Item.Unseen}) *Field = TakeNumber<float>(File);
  }
  Model.KnownSurroundings.resize(TakeCount(File));
  for (std::uint32_t& Hash : Model.KnownSurroundings) Hash = TakeNumber<std::uint32_t>(File);
  const std::uint32_t NumNetworks = TakeCount(File);
  const std::uint32_t NumLayers = TakeCount(File);
  for (std::uint32_t K = 0; K < NumNetworks; ++K) {
    Model.Networks.push_back(TakeNetwork(File, NumLayers));
    if (!IsConsistent(Model.Networks.back())) {
      throw zelvanor::Failure(Path + ": the matrices of the shift model do not fit together");
    }
  }
  if (Model.Networks.empty() || File.Next != File.Text.size()) {
    throw zelvanor::Failure(Path + ": the file of the shift model is cut or damaged");
  }
  return Model;
}

}  // namespace nmrcalc
