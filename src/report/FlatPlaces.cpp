#include "report/FlatPlaces.h"

#include <algorithm>
#include <array>

#include "basic/Numbers.h"
#include "files/Converter.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "report/MolBlock.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// The places of a converted file's atoms that are no hydrogens, in its order; empty where their elements are not those
// of the list.
std::vector<FlatPlace> TakeConverted(const Text& Converted, const std::vector<int>& Atoms) {
  constexpr std::size_t SymbolWord = 3;
  constexpr std::size_t XWord = 7;
  std::vector<FlatPlace> Places;
  for (TextView Rest = Converted; !Rest.empty();) {
    const std::size_t End = std::min(Rest.find('\n'), Rest.size());
    const std::vector<Text> Words = SplitAtBlanks(Text(Rest.substr(0, End)));
    Rest.remove_prefix(std::min(End + 1, Rest.size()));
    if (Words.size() <= XWord + 1 || Words[0] != "atom" || Words[SymbolWord] == "H") continue;
    if (Places.size() == Atoms.size()) return {};
    if (Words[SymbolWord] != Text(ElementSymbol(W.AtomicNumber[Atoms[Places.size()]]))) return {};
    Places.push_back({PrefixNumber(Words[XWord]), PrefixNumber(Words[XWord + 1])});
  }
  return Places.size() == Atoms.size() ? Places : std::vector<FlatPlace>();
}

std::vector<FlatPlace> AskConverter(const std::vector<int>& Atoms) {
  const bool AnyHydrogen = std::any_of(Atoms.begin(), Atoms.end(), [](int Atom) { return W.AtomicNumber[Atom] <= 1; });
  if (AnyHydrogen || FindConverter().empty()) return {};
  const Text Drawn = Settings.NMRIniPath + PathSeparator + "flat.mol";
  const Text Flat = Settings.NMRIniPath + PathSeparator + "flat.mvs";
  std::vector<FlatPlace> Places;
  IgnoreFailure([&] {
    const BusyState Busy;
    WriteWholeFile(Drawn, BuildMolBlock());
    if (RunConverter({"--flat", "--", Drawn}, Flat).Status == 0) Places = TakeConverted(ReadWholeFile(Flat), Atoms);
  });
  RemoveFile(Drawn);
  RemoveFile(Flat);
  return Places;
}

std::vector<FlatPlace> LookAlongThinnest(const std::vector<int>& Atoms) {
  std::array<Array<Single> WorkspaceState::*, 3> Axes = {&WorkspaceState::AtomX, &WorkspaceState::AtomY,
                                                         &WorkspaceState::AtomZ};
  const auto Extent = [&](Array<Single> WorkspaceState::*Axis) {
    const auto [Least, Most] =
        std::minmax_element(Atoms.begin(), Atoms.end(), [&](int A, int B) { return (W.*Axis)[A] < (W.*Axis)[B]; });
    return (W.*Axis)[*Most] - (W.*Axis)[*Least];
  };
  std::stable_sort(Axes.begin(), Axes.end(), [&](auto A, auto B) { return Extent(A) > Extent(B); });
  std::vector<FlatPlace> Places;
  Places.reserve(Atoms.size());
  for (const int Atom : Atoms) Places.push_back({(W.*Axes[0])[Atom], (W.*Axes[1])[Atom]});
  return Places;
}

}  // namespace

std::vector<FlatPlace> FindFlatPlaces(const std::vector<int>& Atoms) {
  std::vector<FlatPlace> Places = AskConverter(Atoms);
  return Places.empty() ? LookAlongThinnest(Atoms) : Places;
}

}  // namespace zelvanor
