#include "history/Snapshot.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

namespace zelvanor {

namespace {

// The arrays that grow with the system, of one state or of two at once. One that is left out is copied whole.
template <class Visitor, class... States>
void ForLargeArrays(Visitor Visit, States&... All) {
  Visit(All.AtomNumber...);
  Visit(All.AtomName...);
  Visit(All.AtomicNumber...);
  Visit(All.AtomElement...);
  Visit(All.AtomType...);
  Visit(All.AtomFlags...);
  Visit(All.AtomCharge...);
  Visit(All.AtomX...);
  Visit(All.AtomY...);
  Visit(All.AtomZ...);
  Visit(All.AtomCoordination...);
  Visit(All.AtomNeighbour...);
  Visit(All.AtomBondType...);
  Visit(All.AtomMolecule...);
  Visit(All.AtomInMolecule...);
  Visit(All.MoleculeAtomCount...);
  Visit(All.Shielding...);
  Visit(All.ChemicalShift...);
  Visit(All.ShieldTensor...);
  Visit(All.Coupling...);
  Visit(All.PeakFrequency...);
  Visit(All.PeakIntensity...);
  Visit(All.PeakDegeneracy...);
  Visit(All.PeakLineWidth...);
  Visit(All.MeasuredPoint...);
  Visit(All.PeakSiteEnd...);
  Visit(All.PeakSite...);
  Visit(All.PeakSiteShare...);
  Visit(All.NMRAtomSpinHalf...);
  Visit(All.NMRPairSpinHalf...);
  Visit(All.HostTextLine...);
}

// While it lives the Workspace is without its large arrays.
class LargeArraysAside {
 public:
  LargeArraysAside() { Swap(); }
  ~LargeArraysAside() { Swap(); }
  LargeArraysAside(const LargeArraysAside&) = delete;
  LargeArraysAside& operator=(const LargeArraysAside&) = delete;

 private:
  void Swap() {
    ForLargeArrays([](auto& First, auto& Second) { std::swap(First, Second); }, Workspace, Aside);
  }
  WorkspaceState Aside;
};

// What is of the session and not of the document.
void CopySessionFields(const WorkspaceState& From, WorkspaceState& To) {
  To.ViewMode = From.ViewMode;
  To.LogFilePath = From.LogFilePath;
}

void CopyPlaceFields(const WorkspaceState& From, WorkspaceState& To) {
  To.DocumentTitle = From.DocumentTitle;
  To.DocumentPath = From.DocumentPath;
  To.HostTextPath = From.HostTextPath;
  To.ZMatrixPath = From.ZMatrixPath;
  To.DocumentDirty = From.DocumentDirty;
}

WorkspaceState CopyRest() {
  const LargeArraysAside Aside;
  return Workspace;
}

template <class T>
std::pair<int, int> BoundsOf(const Array<T>& Whole) {
  return {Whole.UpperBound(), -1};
}
template <class T>
std::pair<int, int> BoundsOf(const Array2<T>& Whole) {
  return {Whole.UpperRow(), Whole.UpperColumn()};
}
template <class T>
void GiveBounds(Array<T>& Whole, const SharedArray& Kept) {
  Whole.ReDim(Kept.UpperRow);
}
template <class T>
void GiveBounds(Array2<T>& Whole, const SharedArray& Kept) {
  Whole.ReDim(Kept.UpperRow, Kept.UpperColumn);
}

template <class Whole>
std::span<const std::byte> BytesOf(Whole& Items) {
  static_assert(std::is_trivially_copyable_v<typename decltype(Items.Span())::element_type>);
  return std::as_bytes(Items.Span());
}

// The bytes of piece Place.
std::span<const std::byte> PieceOf(std::span<const std::byte> Bytes, std::size_t Place) {
  const std::size_t Start = Place * SharedArray::PieceBytes;
  return Bytes.subspan(Start, std::min(SharedArray::PieceBytes, Bytes.size() - Start));
}

bool SameBytes(std::span<const std::byte> Now, const std::vector<std::byte>& Kept) {
  return Now.size() == Kept.size() && std::memcmp(Now.data(), Kept.data(), Kept.size()) == 0;
}

template <class Whole>
bool IsSame(Whole& Items, const SharedArray& Kept) {
  const std::span<const std::byte> Bytes = BytesOf(Items);
  if (BoundsOf(Items) != std::pair(Kept.UpperRow, Kept.UpperColumn) || Bytes.size() != Kept.Bytes) return false;
  for (std::size_t Place = 0; Place < Kept.Pieces.size(); ++Place) {
    if (!SameBytes(PieceOf(Bytes, Place), *Kept.Pieces[Place])) return false;
  }
  return true;
}

template <class Whole>
std::shared_ptr<const SharedArray> Share(Whole& Items, const std::shared_ptr<const SharedArray>& Former,
                                         std::size_t& OwnBytes) {
  if (Former != nullptr && IsSame(Items, *Former)) return Former;
  const std::span<const std::byte> Bytes = BytesOf(Items);
  auto Fresh = std::make_shared<SharedArray>();
  std::tie(Fresh->UpperRow, Fresh->UpperColumn) = BoundsOf(Items);
  Fresh->Bytes = Bytes.size();
  const std::size_t Count = (Bytes.size() + SharedArray::PieceBytes - 1) / SharedArray::PieceBytes;
  Fresh->Pieces.reserve(Count);
  OwnBytes += Count * sizeof Fresh->Pieces.front();
  for (std::size_t Place = 0; Place < Count; ++Place) {
    const std::span<const std::byte> Piece = PieceOf(Bytes, Place);
    if (Former != nullptr && Place < Former->Pieces.size() && SameBytes(Piece, *Former->Pieces[Place])) {
      Fresh->Pieces.push_back(Former->Pieces[Place]);
      continue;
    }
    Fresh->Pieces.push_back(std::make_shared<const std::vector<std::byte>>(Piece.begin(), Piece.end()));
    OwnBytes += Piece.size();
  }
  return Fresh;
}

template <class Whole>
void FillFrom(Whole& Items, const SharedArray& Kept) {
  GiveBounds(Items, Kept);
  const std::span<std::byte> Bytes = std::as_writable_bytes(Items.Span());
  std::size_t Start = 0;
  for (const auto& Piece : Kept.Pieces) {
    std::copy(Piece->begin(), Piece->end(), Bytes.begin() + static_cast<std::ptrdiff_t>(Start));
    Start += Piece->size();
  }
}

}  // namespace

std::shared_ptr<Snapshot> TakeSnapshot(const Snapshot* Former) {
  auto Fresh = std::make_shared<Snapshot>();
  Fresh->Rest = CopyRest();
  ForLargeArrays(
      [&](auto& Items) {
        const std::size_t Place = Fresh->Arrays.size();
        Fresh->Arrays.push_back(Share(Items, Former == nullptr ? nullptr : Former->Arrays[Place], Fresh->OwnBytes));
      },
      Workspace);
  return Fresh;
}

bool IsUnchanged(const Snapshot& Before) {
  WorkspaceState Rest = CopyRest();
  CopySessionFields(Before.Rest, Rest);
  CopyPlaceFields(Before.Rest, Rest);
  if (!(Rest == Before.Rest)) return false;
  bool Same = true;
  std::size_t Place = 0;
  ForLargeArrays([&](auto& Items) { Same = Same && IsSame(Items, *Before.Arrays[Place++]); }, Workspace);
  return Same;
}

void RestoreSnapshot(const Snapshot& Kept) {
  WorkspaceState Fresh = Kept.Rest;
  CopySessionFields(Workspace, Fresh);
  std::size_t Place = 0;
  ForLargeArrays([&](auto& Items) { FillFrom(Items, *Kept.Arrays[Place++]); }, Fresh);
  Workspace = std::move(Fresh);
}

}  // namespace zelvanor
