#include "report/Content.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "basic/NumberText.h"
#include "measured/MeasuredTrace.h"
#include "report/Report.h"
#include "spectrum/PeakLists.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.05;  // Hz

// In the order of Hill: carbon and hydrogen first, then by the alphabet.
Text FormulaOfSystem() {
  std::map<Text, Long> Counts;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    if (W.AtomicNumber[Atom] > 0) ++Counts[ElementSymbol(W.AtomicNumber[Atom])];
  }
  Text Formula;
  const auto Add = [&](const Text& Symbol) {
    const auto Found = Counts.find(Symbol);
    if (Found == Counts.end()) return;
    Formula += Join(Symbol, Found->second > 1 ? GeneralForm(Found->second) : Text());
    Counts.erase(Found);
  };
  if (Counts.contains("C")) {
    Add("C");
    Add("H");
  }
  while (!Counts.empty()) Add(Text(Counts.begin()->first));
  return Formula;
}

ReportRow RowOf(const std::vector<int>& Entries, int Signal) {
  ReportRow Row;
  Row.Entries = Entries;
  Row.Names = NameEntries(Entries);
  Row.Signal = Signal;
  const int First = Entries.front();
  Row.Ppm = W.ChemicalShift[First];
  Row.Shielding = W.Shielding[First];
  if (First <= W.ShieldingError.UpperBound()) Row.Error = W.ShieldingError[First];
  Double Sum = 0;
  int Count = 0;
  for (const int Entry : Entries) {
    Double Ppm = 0;
    if (!FindAssignedShift(Entry, Ppm)) continue;
    Sum += Ppm;
    ++Count;
  }
  Row.HasMeasured = Count > 0;
  if (Row.HasMeasured) Row.Measured = Sum / Count;
  return Row;
}

void AddRows(ReportContent& To) {
  std::vector<bool> Told(static_cast<std::size_t>(W.NumNMRAtoms), false);
  for (std::size_t Place = 0; Place < To.Signals.size(); ++Place) {
    const Multiplet& Of = To.Signals[Place].Of;
    ReportRow Row = RowOf(Of.Atoms, static_cast<int>(Place));
    if (const Text Words = MultipletWords(Of); !Of.Kind.empty()) Row.Pattern = Words.substr(Words.find(' ') + 1);
    for (const int Entry : Of.Atoms) Told[static_cast<std::size_t>(Entry)] = true;
    To.Rows.push_back(std::move(Row));
  }
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    if (!Told[static_cast<std::size_t>(Entry)]) To.Rows.push_back(RowOf({Entry}, -1));
  }
  for (const ReportRow& Row : To.Rows) {
    To.AnyError = To.AnyError || Row.Error > 0;
    To.AnyMeasured = To.AnyMeasured || (Row.HasMeasured && !To.IsMeasured);
  }
}

// Bonds from an atom (an index) to every other one; 0 where none lead there.
std::vector<int> CountBonds(int From) {
  std::vector<int> Bonds(static_cast<std::size_t>(W.NumAtoms), 0);
  std::vector<int> Ring = {From};
  for (int Distance = 1; !Ring.empty(); ++Distance) {
    std::vector<int> Next;
    for (const int Atom : Ring) {
      for (int K = 0; K < W.AtomCoordination[Atom]; ++K) {
        const int Other = W.AtomNeighbour(Atom, K);
        int& Known = Bonds[static_cast<std::size_t>(Other)];
        if (Other == From || Known > 0) continue;
        Known = Distance;
        Next.push_back(Other);
      }
    }
    Ring = std::move(Next);
  }
  return Bonds;
}

void AddCouplings(ReportContent& To) {
  if (!IsSet(W.CouplingAvailable)) return;
  for (std::size_t First = 0; First < To.Rows.size(); ++First) {
    const int Own = To.Rows[First].Entries.front();
    const int Atom = AtomOfEntry(Own);
    const std::vector<int> Bonds = Atom >= 0 ? CountBonds(Atom) : std::vector<int>();
    for (std::size_t Second = First + 1; Second < To.Rows.size(); ++Second) {
      const int Other = To.Rows[Second].Entries.front();
      const Double Hz = W.Coupling(Own, Other);
      if (std::fabs(Hz) < LeastCoupling) continue;
      const int Partner = AtomOfEntry(Other);
      To.Couplings.push_back({static_cast<int>(First), static_cast<int>(Second), Hz,
                              Atom >= 0 && Partner >= 0 ? Bonds[static_cast<std::size_t>(Partner)] : 0});
    }
  }
}

// The signals with some room beside them.
void ChooseWindow(ReportContent& To) {
  Double High = -INFINITY;
  Double Low = INFINITY;
  for (const Signal& Each : To.Signals) {
    High = std::max({High, Each.High, Each.Of.Ppm});
    Low = std::min({Low, Each.Low, Each.Of.Ppm});
  }
  if (To.Signals.empty()) High = Low = 0;
  constexpr Double Beside = 0.06;
  constexpr Double LeastHz = 40;
  const Double MHz = W.NMRFrequency > 0 ? Double(W.NMRFrequency) : 1.0;
  const Double Room = std::max((High - Low) * Beside, LeastHz / MHz);
  To.HighPpm = High + Room;
  To.LowPpm = Low - Room;
}

Text References(const ReportContent& Of) {
  Text Words;
  std::vector<int> Told;
  for (const ReportRow& Row : Of.Rows) {
    const int Element = W.NMRAtomicNumber[Row.Entries.front()];
    if (std::find(Told.begin(), Told.end(), Element) != Told.end()) continue;
    Told.push_back(Element);
    Words += Join(Words.empty() ? "" : ", ", ElementSymbol(Element), " ",
                  FormatNumber(W.ReferenceShielding[ReferenceEntryOf(Element)], "0.00##"), " ppm");
  }
  return W.ReferenceLevel.empty() ? Words : Join(Words, " (", W.ReferenceLevel, ")");
}

void AddFacts(ReportContent& To) {
  const auto Add = [&](const char* What, const Text& Value) {
    if (!Value.empty()) To.Facts.push_back({What, Value});
  };
  Add("Shieldings and couplings", To.IsMeasured ? Text("the shifts and couplings were measured") : W.ShieldingMethod);
  Add("Reference shieldings", References(To));
  if (!To.Simulated.Points.empty()) {
    Add("Spectrum", W.SpectDescription);
    if (IsSet(W.WeakCouplingApproximation)) Add("Coupling", "weak coupling approximation");
    Add("Lines", Join(W.PeakCount, ", of ", IsSet(SpectrumView.UseGaussian) ? "Gaussian" : "Lorentzian", " shape, ",
                      FormatNumber(ReportLineWidth(), "0.0#"), " Hz wide"));
  }
  if (HasMeasured()) {
    Add("Measured spectrum",
        Join(W.MeasuredTitle.empty() ? Text("untitled") : W.MeasuredTitle, ", ",
             W.MeasuredNucleus.empty() ? Text() : W.MeasuredNucleus + ", ", FormatNumber(W.MeasuredMHz, "0.0##"),
             " MHz", W.MeasuredSolvent.empty() ? Text() : ", " + W.MeasuredSolvent));
  }
  Add("Program", Join(ProgramTitle, " ", ProgramVersion));
}

}  // namespace

ReportContent GatherReport() {
  ReportContent All;
  All.Publication = TrimWhite(BuildPublicationText());
  All.Title = W.DocumentTitle.empty() ? Text("Untitled") : W.DocumentTitle;
  All.Nucleus = ObservedNucleus();
  All.MHz = W.NMRFrequency;
  All.IsMeasured = AreShiftsMeasured();
  if (IsSet(W.MoleculeLoaded)) All.Formula = FormulaOfSystem();
  All.Signals = FindSignals();
  AddRows(All);
  AddCouplings(All);
  All.Structure = DepictMolecules();
  ChooseWindow(All);
  All.Simulated = BuildSimulatedCurve(All.HighPpm, All.LowPpm);
  All.Measured = BuildMeasuredCurve();
  All.Lines = BuildReportLines(All.Signals);
  AddFacts(All);
  return All;
}

}  // namespace zelvanor
