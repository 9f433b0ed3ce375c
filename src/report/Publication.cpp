#include <algorithm>
#include <cmath>
#include <vector>

#include "basic/NumberText.h"
#include "report/Report.h"
#include "report/Signals.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// One entry of the list: atoms whose signals read the same.
struct Listed {
  Double Ppm = 0;
  Double Low = 0;
  Double High = 0;
  Text Words;  // of the multiplet; empty for a shift alone
  Long Atoms = 0;
};

constexpr const char* NoOrder = "m";

bool ReadsAs(const Listed& One, const Listed& Other) {
  if (One.Words != Other.Words) return false;
  if (One.Words == NoOrder) return One.Low <= Other.High && Other.Low <= One.High;
  constexpr Double SamePpm = 0.005;
  return std::fabs(One.Ppm - Other.Ppm) < SamePpm;
}

// Multiplets without an order that overlap are one, over the range of both; signals that read the same are one.
void AddListed(std::vector<Listed>& To, const Listed& One) {
  const auto Same = std::find_if(To.begin(), To.end(), [&](const Listed& Each) { return ReadsAs(Each, One); });
  if (Same == To.end()) return To.push_back(One);
  Same->Atoms += One.Atoms;
  Same->Low = std::min(Same->Low, One.Low);
  Same->High = std::max(Same->High, One.High);
}

std::vector<Listed> ListSignals() {
  std::vector<Listed> All;
  for (const Signal& Each : FindSignals()) {
    const Text Words = MultipletWords(Each.Of);
    const bool Plain = Each.Of.Kind.empty();
    AddListed(All, {Each.Of.Ppm, Each.Low, Each.High, Plain ? Text() : Words.substr(Words.find(' ') + 1),
                    static_cast<Long>(Each.Of.Atoms.size())});
  }
  for (Listed& Each : All) {
    if (Each.Words == NoOrder) Each.Ppm = (Each.Low + Each.High) / 2;
  }
  std::stable_sort(All.begin(), All.end(), [](const Listed& A, const Listed& B) { return A.Ppm > B.Ppm; });
  return All;
}

Text PlaceOf(const Listed& Of, const char* Pattern) {
  const Text High = FormatNumber(Of.High, Pattern);
  const Text Low = FormatNumber(Of.Low, Pattern);
  if (Of.Words != NoOrder || High == Low) return FormatNumber(Of.Ppm, Pattern);
  return Join(High, EnDash, Low);
}

}  // namespace

Text BuildPublicationText() {
  if (!IsSet(W.ShieldingAvailable)) throw Failure("There are no shifts to report");
  ComputeChemicalShifts();
  const Text Nucleus = ObservedNucleus();
  const bool Proton = W.SpectraType == 0;
  const Text Element = Nucleus.substr(Nucleus.find_first_not_of("0123456789"));
  Text Line = Join(Nucleus, " NMR (", W.NMRFrequency, " MHz");
  if (!W.MeasuredSolvent.empty()) Line += ", " + W.MeasuredSolvent;
  Line += AreShiftsMeasured() ? ") δ " : ", calculated) δ ";
  bool First = true;
  for (const Listed& Each : ListSignals()) {
    Text Details = Each.Words == "s" && !Proton ? Text() : Each.Words;
    if (Proton || Each.Atoms > 1) Details += Join(Details.empty() ? "" : ", ", Each.Atoms, Element);
    Line += Join(First ? "" : ", ", PlaceOf(Each, Proton ? "0.00" : "0.0"));
    if (!Details.empty()) Line += Join(" (", Details, ")");
    First = false;
  }
  return Line + ".\n";
}

}  // namespace zelvanor
