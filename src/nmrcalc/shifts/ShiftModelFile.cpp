// The file of the shift model. Little-endian; numbers of the networks are whole numbers of 16 bits with a scale for
// each row, which keeps the file small and is read in a millisecond.
//
//   "NMRSHFT2"
//   uint32 length, text: version; uint32 length, text: summary
//   float ppm: the largest difference of computed hydrogens that is added
//   10 x 4 floats: factor, power, least, unseen of the heavy nuclei, hydrogen on carbon, others
//   uint32 count, uint32 x count: known surroundings
//   uint32 count of the numbers in the matrices of the share, then these: weights and bias of the inner, of the outer
//   layer
//   uint32 number of networks, uint32 number of layers
//   each network: its matrices in the order of TakeNetwork
//   A matrix: uint32 rows, uint32 columns, then for each row float scale, int16 x columns

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>

#include "basic/Failure.h"
#include "nmrcalc/shifts/ShiftModel.h"

namespace nmrcalc {

namespace {

static_assert(std::endian::native == std::endian::little, "the model is stored little-endian");

constexpr std::string_view Magic = "NMRSHFT2";
constexpr std::uint32_t LargestSize = 1U << 20;  // of any count in the file

// The file as far as it is read. It is not kept whole: touching new memory takes longer than reading.
struct Bytes {
  const std::string& Path;
  std::ifstream Stream;
  std::size_t Left = 0;
  std::vector<char> Taken{};
  std::size_t NumFloatsLeft = 0;  // of the storage that is being filled
  float* NextFloat = nullptr;
};

[[noreturn]] void ThrowDamaged(const std::string& Path) {
  throw zelvanor::Failure(Path + ": the file of the shift model is cut or damaged");
}

const char* Take(Bytes& File, std::size_t Count) {
  if (File.Left < Count) ThrowDamaged(File.Path);
  if (File.Taken.size() < Count) File.Taken.resize(Count);
  if (!File.Stream.read(File.Taken.data(), static_cast<std::streamsize>(Count))) ThrowDamaged(File.Path);
  File.Left -= Count;
  return File.Taken.data();
}

template <typename Number>
Number TakeNumber(Bytes& File) {
  Number Value{};
  std::memcpy(&Value, Take(File, sizeof Value), sizeof Value);
  return Value;
}

std::uint32_t TakeCount(Bytes& File) {
  const auto Count = TakeNumber<std::uint32_t>(File);
  if (Count > LargestSize) ThrowDamaged(File.Path);
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
  const std::size_t NumValues = Matrix.Rows * Matrix.Columns;
  if (NumValues > File.NumFloatsLeft) ThrowDamaged(File.Path);
  std::vector<std::int16_t> Row(Matrix.Columns);
  float* Target = File.NextFloat;
  Matrix.Values = {Target, NumValues};
  File.NextFloat += NumValues;
  File.NumFloatsLeft -= NumValues;
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

// Memory for some megabytes of numbers, in large pages where the system has them: a page at a time they take longer to
// come by than to fill.
std::shared_ptr<float[]> MakeStorage(std::size_t NumFloats) {
  constexpr std::size_t LargePage = 2U << 20;
  const std::size_t Size = (NumFloats * sizeof(float) + LargePage - 1) / LargePage * LargePage;
  void* Place = std::aligned_alloc(LargePage, std::max(Size, LargePage));
  if (Place == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  madvise(Place, Size, MADV_HUGEPAGE);
#endif
  return {static_cast<float*>(Place), [](float* Own) { std::free(Own); }};
}

ShiftNetwork TakeNetwork(Bytes& File, std::size_t Size, std::uint32_t NumLayers) {
  ShiftNetwork Network;
  File.NumFloatsLeft = Size / sizeof(std::int16_t);
  Network.Storage = MakeStorage(File.NumFloatsLeft);
  File.NextFloat = Network.Storage.get();
  Network.Embedding = TakeMatrix(File);
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

// The share looks at what every network knows of a hydrogen.
bool FitsNetworks(const ShiftModel& Model) {
  std::size_t Width = 0;
  for (const ShiftNetwork& Network : Model.Networks) Width += Network.HydrogenMiddle.Weights.Rows;
  return Takes(Model.ShareInner, Width) && Takes(Model.ShareOuter, Model.ShareInner.Weights.Rows) &&
         Model.ShareOuter.Weights.Rows == 1;
}

void TakeShare(Bytes& File, ShiftModel& Model) {
  File.NumFloatsLeft = TakeCount(File);
  Model.ShareStorage = std::make_shared<float[]>(File.NumFloatsLeft);
  File.NextFloat = Model.ShareStorage.get();
  Model.ShareInner = TakeLayer(File);
  Model.ShareOuter = TakeLayer(File);
}

[[noreturn]] void ThrowUnfitting(const std::string& Path) {
  throw zelvanor::Failure(Path + ": the matrices of the shift model do not fit together");
}

}  // namespace

ShiftModel ReadShiftModel(const std::string& Path) {
  Bytes File{.Path = Path, .Stream = std::ifstream(Path, std::ios::binary | std::ios::ate)};
  if (!File.Stream) throw zelvanor::Failure("Could not read " + Path);
  File.Left = static_cast<std::size_t>(std::max<std::streamoff>(File.Stream.tellg(), 0));
  File.Stream.seekg(0);
  if (File.Left < Magic.size() || std::string_view(Take(File, Magic.size()), Magic.size()) != Magic) {
    throw zelvanor::Failure(Path + ": not a file of the shift model, or one of another version");
  }
  ShiftModel Model{.Version = TakeText(File)};
  Model.Summary = TakeText(File);
  Model.LargestComputed = TakeNumber<float>(File);
  if (!(Model.LargestComputed >= 0.0)) ThrowDamaged(Path);
  for (ErrorCalibration& Item : Model.Errors) {
    for (double* Field : {&Item.Factor, &Item.Power, &Item.Least, &Item.Unseen}) *Field = TakeNumber<float>(File);
  }
  Model.KnownSurroundings.resize(TakeCount(File));
  for (std::uint32_t& Hash : Model.KnownSurroundings) Hash = TakeNumber<std::uint32_t>(File);
  TakeShare(File, Model);
  const std::uint32_t NumNetworks = TakeCount(File);
  const std::uint32_t NumLayers = TakeCount(File);
  if (NumNetworks == 0 || File.Left % NumNetworks != 0) ThrowDamaged(Path);  // they are of one form
  const std::size_t Size = File.Left / NumNetworks;
  for (std::uint32_t K = 0; K < NumNetworks; ++K) {
    Model.Networks.push_back(TakeNetwork(File, Size, NumLayers));
    if (!IsConsistent(Model.Networks.back())) ThrowUnfitting(Path);
  }
  if (File.Left != 0) ThrowDamaged(Path);
  if (!FitsNetworks(Model)) ThrowUnfitting(Path);
  return Model;
}

}  // namespace nmrcalc
