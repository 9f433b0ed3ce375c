#include "predict/Outputs.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "atomsets/Equivalence.h"
#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "files/DocumentWriter.h"
#include "pictures/ViewPictures.h"
#include "platform/TextFiles.h"
#include "predict/Task.h"
#include "report/Report.h"
#include "shell/Frame.h"
#include "spectrum/PeakLists.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::predict {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.05;  // Hz

Text Number(Double Value) { return FormatNumber(Value, "0.0###"); }

// Bonds on the shortest way between two atoms, by index.
int BondsBetween(int From, int To) {
  std::vector<int> Distance(static_cast<std::size_t>(W.NumAtoms), -1);
  std::vector<int> Reached = {From};
  Distance[static_cast<std::size_t>(From)] = 0;
  for (std::size_t Place = 0; Place < Reached.size(); ++Place) {
    const int Atom = Reached[Place];
    if (Atom == To) return Distance[static_cast<std::size_t>(To)];
    for (int N = 0; N < W.AtomCoordination[Atom]; ++N) {
      int& Next = Distance.at(static_cast<std::size_t>(int(W.AtomNeighbour(Atom, N))));
      if (Next >= 0) continue;
      Next = Distance[static_cast<std::size_t>(Atom)] + 1;
      Reached.push_back(W.AtomNeighbour(Atom, N));
    }
  }
  return 0;
}

// Three numbers at the head of each line of the peak list.
std::vector<LineRow> ReadLines(const Text& Csv) {
  std::vector<LineRow> Lines;
  for (std::size_t Place = Csv.find('\n') + 1; Place < Csv.size(); Place = Csv.find('\n', Place) + 1) {
    const std::size_t Second = Csv.find(',', Place) + 1;
    const std::size_t Third = Csv.find(',', Second) + 1;
    const auto At = [&](std::size_t From) { return PrefixNumber(TextView(Csv).substr(From, 40)); };
    Lines.push_back({At(Place), At(Second), At(Third)});
  }
  return Lines;
}

// The backend tells the error of a spectrum that it had to cut, in percent, in the description.
Double ToldError() {
  constexpr TextView Words = "estimated error ";
  const Text Told = W.SpectDescription;
  const std::size_t Place = Told.find(Words);
  return Place == Text::npos ? 0 : PrefixNumber(TextView(Told).substr(Place + Words.size())) / 100;
}

void ShowPicture(const Options& Given) {
  EnterSpectrumView();
  if (Rooms.LinesAndEnvelopCommand) Rooms.LinesAndEnvelopCommand();
  const auto Width = static_cast<Single>(Given.Width);
  for (Long Peak = 0; Peak < W.PeakCount; ++Peak) W.PeakLineWidth[Peak] = Width;
  SpectrumView.CurrentLineWidth = Width;
  ComputeLineWidths(true);
  RefreshView();
}

struct FormatRow {
  const char* Name;
  bool Lines;
  std::function<void(const Text& Path)> Write;
};

const std::vector<FormatRow>& FormatRows() {
  static const std::vector<FormatRow> Rows = {
      {"NMR", false,
       [](const Text& Path) {
         if (!IsSet(WriteDocument(Path))) throw Failure("the document can't be written");
       }},
      {"svg", true, [](const Text& Path) { pictures::WriteViewPicture(Path); }},
      {"png", true, [](const Text& Path) { pictures::WriteViewPicture(Path); }},
      {"pdf", true, [](const Text& Path) { pictures::WriteViewPicture(Path); }},
      {"csv", true, [](const Text& Path) { WriteWholeFile(Path, BuildPeakCsv()); }},
      {"jdx", true, [](const Text& Path) { WriteWholeFile(Path, BuildPeakJcamp()); }},
      {"html", false, [](const Text& Path) { WriteWholeFile(Path, BuildReportPage()); }},
      {"sdf", false, [](const Text& Path) { WriteWholeFile(Path, BuildNmreData()); }},
      {"txt", false, [](const Text& Path) { WriteWholeFile(Path, BuildPublicationText()); }},
  };
  return Rows;
}

const FormatRow& RowOf(const Text& Format) {
  const auto& Rows = FormatRows();
  return *std::find_if(Rows.begin(), Rows.end(), [&](const FormatRow& Row) { return Format == Row.Name; });
}

void WriteTables(const Outputs& Numbers, const Text& Head) {
  Text Shifts = "atom,element,shift_ppm,error_ppm,shielding_ppm,class\n";
  for (const ShiftRow& Row : Numbers.Shifts) {
    Shifts += Join(Long{Row.Atom}, ",", Row.Element, ",", Number(Row.Shift), ",",
                   Row.Error > 0 ? Number(Row.Error) : Text(), ",", Number(Row.Shielding), ",", Long{Row.Class}, "\n");
  }
  WriteWholeFile(Head + "shifts.csv", Shifts);
  Text Couplings = "atom1,atom2,j_hz,bonds\n";
  for (const CouplingRow& Row : Numbers.Couplings) {
    Couplings += Join(Long{Row.First}, ",", Long{Row.Second}, ",", Number(Row.J), ",", Long{Row.Bonds}, "\n");
  }
  WriteWholeFile(Head + "couplings.csv", Couplings);
}

Text JsonHead(const Options& Given, const Text& Name, const char* Status, const Text& Message) {
  return Join("{\"name\":", JsonText(Name), ",\"status\":\"", Status, "\",\"message\":", JsonText(Message),
              ",\"nucleus\":\"", Given.Observed->Name, "\",\"mhz\":", Given.MHz);
}

template <class Row, class Show>
Text JsonList(const char* Key, const std::vector<Row>& Rows, const Show& ShowRow) {
  Text List = Join(",\"", Key, "\":[");
  for (std::size_t K = 0; K < Rows.size(); ++K) List += (K > 0 ? "," : "") + ShowRow(Rows[K]);
  return List + "]";
}

Text JsonTail(const Options& Given, Double Error, Double Seconds) {
  return Join(",\"method\":\"", Given.Quantum ? "quantum" : "fast",
              "\",\"exact\":", Error > 0 ? FormatNumber(Error, "0.0#####") : Text("true"),
              ",\"seconds\":", FormatNumber(Seconds, "0.00"), "}");
}

}  // namespace

bool ShowsLines(const Text& Format) { return RowOf(Format).Lines; }

Text WhyNoFormat(const Text& Format) {
  return RowOf(Format).Write ? Text() : "the part that writes " + Format + " is not installed";
}

Outputs CollectOutputs(const Options& Given) {
  Outputs All;
  ComputeChemicalShifts();
  const std::vector<int> Classes = FindAtomClasses();
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Atom = W.NMRAtom[Entry];
    All.Shifts.push_back({.Atom = Atom,
                          .Element = ElementSymbol(W.AtomicNumber[Atom - 1]),
                          .Shift = Double{W.ChemicalShift[Entry]},
                          .Error = Entry <= W.ShieldingError.UpperBound() ? Double{W.ShieldingError[Entry]} : 0,
                          .Shielding = Double{W.Shielding[Entry]},
                          .Class = Classes.at(static_cast<std::size_t>(Atom - 1))});
    for (int Other = Entry + 1; Other < W.NumNMRAtoms; ++Other) {
      const Double J = Double{W.Coupling(Entry, Other)};
      if (std::fabs(J) < LeastCoupling) continue;
      const int Second = W.NMRAtom[Other];
      All.Couplings.push_back({Atom, Second, J, BondsBetween(Atom - 1, Second - 1)});
    }
  }
  if (Given.Observed->SpinHalf) {
    ShowPicture(Given);
    All.Lines = ReadLines(BuildPeakCsv());
    All.Error = ToldError();
  }
  return All;
}

void WriteOutputs(const Options& Given, const Outputs& Numbers, const Text& Head) {
  WriteTables(Numbers, Head);
  for (const Text& Format : Given.Formats) {
    if (Given.Observed->SpinHalf || !ShowsLines(Format)) RowOf(Format).Write(Head + Format);
  }
}

// Bytes beyond ASCII that are no UTF-8 would make the whole line unreadable.
Text JsonText(TextView Value) {
  Text Result = "\"";
  for (const char C : Value) {
    const auto Code = static_cast<unsigned char>(C);
    if (C == '"' || C == '\\') Result += '\\';
    Result += Code < 0x20 ? ' ' : (Code < 0x80 ? C : '?');
  }
  return Result + "\"";
}

Text JsonOf(const Options& Given, const Text& Name, const Outputs& Numbers, Double Seconds) {
  Text Json = JsonHead(Given, Name, "ok", "");
  Json += JsonList("shifts", Numbers.Shifts, [](const ShiftRow& Row) {
    return Join("{\"atom\":", Long{Row.Atom}, ",\"element\":", JsonText(Row.Element), ",\"shift\":", Number(Row.Shift),
                ",\"error\":", Row.Error > 0 ? Number(Row.Error) : Text("null"), ",\"class\":", Long{Row.Class}, "}");
  });
  Json += JsonList("couplings", Numbers.Couplings, [](const CouplingRow& Row) {
    return Join("{\"atom1\":", Long{Row.First}, ",\"atom2\":", Long{Row.Second}, ",\"j\":", Number(Row.J),
                ",\"bonds\":", Long{Row.Bonds}, "}");
  });
  Json += JsonList("lines", Numbers.Lines, [](const LineRow& Row) {
    return Join("{\"ppm\":", FormatNumber(Row.Ppm, "0.0#####"), ",\"hz\":", FormatNumber(Row.Hz, "0.0###"),
                ",\"intensity\":", FormatNumber(Row.Intensity, "0.0#####"), "}");
  });
  return Json + JsonTail(Given, Numbers.Error, Seconds);
}

Text FailedJson(const Options& Given, const Text& Name, const Text& Message, Double Seconds) {
  return JsonHead(Given, Name, "failed", Message) + ",\"shifts\":[],\"couplings\":[],\"lines\":[]" +
         JsonTail(Given, 0, Seconds);
}

Text CsvCell(const Text& Value) {
  if (Value.find_first_of(",\"\r\n") == Text::npos) return Value;
  Text Result = "\"";
  for (const char C : Value) Result += C == '"' ? Text("\"\"") : Text(1, C);
  return Result + "\"";
}

}  // namespace zelvanor::predict
