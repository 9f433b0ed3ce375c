// JCAMP-DX 4.24 to 6 for NMR: spectra and FIDs as XYDATA, XYPOINTS or NTUPLES, in blocks or alone.
// Sources: R. S. McDonald and P. A. Wilks, Applied Spectroscopy 42 (1988) 151 (the table forms); A. N. Davies and
// P. Lampen, Applied Spectroscopy 47 (1993) 1093 (NMR, NTUPLES); P. Lampen and others, Pure and Applied Chemistry 71
// (1999) 1549 (version 5.01).

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "measured/JcampRecords.h"
#include "measured/JcampTable.h"
#include "measured/MeasuredSpectrum.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

Double NumberOf(const JcampBlock& Block, TextView Label) { return PrefixNumber(JcampValue(Block, Label)); }
bool Has(const JcampBlock& Block, TextView Label) { return !JcampValue(Block, Label).empty(); }
bool Holds(TextView Value, TextView Part) { return UpperCase(Value).find(Part) != Text::npos; }

// Where an axis begins, and how far its points lie apart.
struct Axis {
  Text Units;  // upper case
  JcampTableForm Form;
  Double LastX = 0;
  bool HasLast = false;
  Double YFactor = 1;
  Double NumPoints = 0;
};

Double FactorOf(TextView Written) {
  const Double Factor = PrefixNumber(Written);
  return Factor == 0.0 ? 1.0 : Factor;
}

void SetStep(Axis& To) {
  if (!To.Form.HasX || !To.HasLast || To.NumPoints < 2) return;
  To.Form.DeltaX = (To.LastX - To.Form.FirstX) / (To.NumPoints - 1.0);
}

Axis AxisOfXyData(const JcampBlock& Block) {
  Axis Made;
  Made.Units = UpperCase(JcampValue(Block, "XUNITS"));
  Made.Form.XFactor = FactorOf(JcampValue(Block, "XFACTOR"));
  Made.YFactor = FactorOf(JcampValue(Block, "YFACTOR"));
  Made.NumPoints = NumberOf(Block, "NPOINTS");
  Made.Form.HasX = Has(Block, "FIRSTX");
  Made.Form.FirstX = NumberOf(Block, "FIRSTX");
  Made.HasLast = Has(Block, "LASTX");
  Made.LastX = NumberOf(Block, "LASTX");
  SetStep(Made);
  if (Made.Form.DeltaX == 0.0) Made.Form.DeltaX = NumberOf(Block, "DELTAX");
  return Made;
}

TextView Entry(const JcampBlock& Block, TextView Label, std::size_t Place) {
  const std::vector<TextView> List = JcampList(Block, Label);
  return Place < List.size() ? List[Place] : TextView();
}

Axis AxisOfNTuples(const JcampBlock& Block, std::size_t Ordinate) {
  Axis Made;
  Made.Units = UpperCase(Entry(Block, "UNITS", 0));
  Made.Form.XFactor = FactorOf(Entry(Block, "FACTOR", 0));
  Made.YFactor = FactorOf(Entry(Block, "FACTOR", Ordinate));
  Made.NumPoints = PrefixNumber(Entry(Block, "VARDIM", 0));
  Made.Form.HasX = !Entry(Block, "FIRST", 0).empty();
  Made.Form.FirstX = PrefixNumber(Entry(Block, "FIRST", 0));
  Made.HasLast = !Entry(Block, "LAST", 0).empty();
  Made.LastX = PrefixNumber(Entry(Block, "LAST", 0));
  SetStep(Made);
  return Made;
}

// Reads a table; what is missing of it or too much becomes a warning.
std::vector<Double> ReadTable(const JcampRecord& Record, Axis& From, MeasuredSpectrum& To) {
  From.Form.FirstLine = Record.Line;
  JcampTable Table = ReadJcampTable(Record.Value, From.Form);
  if (!From.Form.HasX) From.Form.FirstX = Table.FirstX;
  To.Warnings.insert(To.Warnings.end(), Table.Warnings.begin(), Table.Warnings.end());
  const auto Count = static_cast<Double>(Table.Values.size());
  if (From.NumPoints > 0 && Count != From.NumPoints) {
    To.Warnings.push_back(Join("the table has ", Count, " points of the ", From.NumPoints, " that the file tells"));
    // Points behind the told end have no place on the axis.
    if (Count > From.NumPoints) Table.Values.resize(static_cast<std::size_t>(From.NumPoints));
  }
  for (Double& Value : Table.Values) Value *= From.YFactor;
  To.Factor = From.YFactor;
  return Table.Values;
}

// The place of the last point that has been read.
Double LastPlace(const Axis& Of, std::size_t Count) {
  const Double Steps = static_cast<Double>(Count) - 1.0;
  if (Of.Form.DeltaX != 0.0) return Of.Form.FirstX + Steps * Of.Form.DeltaX;
  return Of.LastX;
}

void TakeParameters(const JcampBlock& Block, MeasuredSpectrum& To) {
  To.Title = Text(JcampValue(Block, "TITLE"));
  To.Nucleus = NucleusOf(JcampValue(Block, ".OBSERVENUCLEUS"));
  if (To.Nucleus.empty()) To.Nucleus = NucleusOf(JcampValue(Block, "$NUC1"));
  To.Solvent = Text(JcampValue(Block, ".SOLVENTNAME"));
  // The frequency of 0 ppm is what divides Hz into ppm; the observe frequency, which the standard has, is that of the
  // carrier, a few ppm off.
  for (const char* Label : {"$SF", "$BF1", ".OBSERVEFREQUENCY", "$SFO1"}) {
    if (To.MHz == 0.0) To.MHz = std::fabs(NumberOf(Block, Label));
  }
}

// The shift reference says which point has which shift: point number from 1, and ppm.
void TakeShiftReference(const JcampBlock& Block, const Axis& Of, MeasuredSpectrum& To) {
  const std::vector<TextView> Words = JcampList(Block, ".SHIFTREFERENCE");
  constexpr std::size_t PointPlace = 2;
  constexpr std::size_t ShiftPlace = 3;
  if (Words.size() <= ShiftPlace || Words[PointPlace].empty() || Words[ShiftPlace].empty()) return;
  const Double Point = PrefixNumber(Words[PointPlace]);
  const Double Shift = PrefixNumber(Words[ShiftPlace]);
  if (To.IsFid) {
    const Double Middle = (Of.NumPoints + 1.0) / 2.0;
    if (To.MHz > 0 && Of.NumPoints > 0 && Point > 0) {
      To.CentrePpm = Shift + (Point - Middle) * To.SweepHz / Of.NumPoints / To.MHz;
    }
    return;
  }
  if (Of.Units != "HZ" || To.MHz == 0.0 || Of.Form.DeltaX == 0.0) return;
  const Double Move = Shift * To.MHz - (Of.Form.FirstX + (Point - 1.0) * Of.Form.DeltaX);
  To.First += Move;
  To.Last += Move;
}

void TakeFidParameters(const JcampBlock& Block, const Axis& Of, MeasuredSpectrum& To) {
  const Double Dwell = std::fabs(Of.Form.DeltaX);
  To.SweepHz = Dwell > 0 ? 1.0 / Dwell : 0.0;
  if (Of.Units.find("MILLI") != Text::npos || Of.Units == "MS") To.SweepHz *= 1000.0;
  if (Of.Units.find("MICRO") != Text::npos || Of.Units == "US") To.SweepHz *= 1.0e6;
  if (!(To.SweepHz > 0)) To.SweepHz = NumberOf(Block, "$SWH");
  if (!(To.SweepHz > 0)) throw Failure("the FID does not say how far its samples lie apart");
  const Double Carrier = NumberOf(Block, "$SFO1");
  if (Carrier > 0 && To.MHz > 0) To.CentrePpm = (Carrier / To.MHz - 1.0) * 1.0e6;
  const Double Firmware = NumberOf(Block, "$DSPFVS");
  if (Has(Block, "$DECIM")) {
    To.GroupDelay = FindGroupDelay(NumberOf(Block, "$GRPDLY"), Firmware > 0 && Firmware < 100 ? int(Firmware) : 0,
                                   NumberOf(Block, "$DECIM"));
  }
}

void TakeAxis(const JcampBlock& Block, const Axis& Of, MeasuredSpectrum& To) {
  if (To.IsFid) {
    TakeFidParameters(Block, Of, To);
  } else if (Of.Units == "HZ") {
    if (To.MHz == 0.0) throw Failure("the file does not say the spectrometer's frequency");
    To.First = Of.Form.FirstX;
    To.Last = LastPlace(Of, To.Real.size());
  } else if (Of.Units == "PPM" || Of.Units.empty()) {
    const Double Scale = To.MHz == 0.0 ? 1.0 : To.MHz;
    To.First = Of.Form.FirstX * Scale;
    To.Last = LastPlace(Of, To.Real.size()) * Scale;
  } else {
    throw Failure(Join("the axis is in ", Of.Units, ", not in Hz or ppm"));
  }
  TakeShiftReference(Block, Of, To);
}

MeasuredSpectrum ReadXyData(const JcampBlock& Block, const JcampRecord& Record) {
  MeasuredSpectrum Made;
  TakeParameters(Block, Made);
  Made.IsFid = Holds(JcampValue(Block, "DATATYPE"), "FID");
  Axis Of = AxisOfXyData(Block);
  Made.Real = ReadTable(Record, Of, Made);
  TakeAxis(Block, Of, Made);
  return Made;
}

// Points with an abscissa for each have to lie at equal distances, as everything behind this does.
MeasuredSpectrum ReadXyPoints(const JcampBlock& Block, const JcampRecord& Record) {
  MeasuredSpectrum Made;
  TakeParameters(Block, Made);
  Axis Of = AxisOfXyData(Block);
  const auto Pairs = ReadJcampPairs(Record.Value);
  if (Pairs.size() < 2) throw Failure("the table has no points");
  Of.Form.FirstX = Pairs.front().first * Of.Form.XFactor;
  const Double Range = Pairs.back().first * Of.Form.XFactor - Of.Form.FirstX;
  Of.Form.DeltaX = Range / (static_cast<Double>(Pairs.size()) - 1.0);
  for (std::size_t Point = 0; Point < Pairs.size(); ++Point) {
    const Double Place = Of.Form.FirstX + static_cast<Double>(Point) * Of.Form.DeltaX;
    if (std::fabs(Pairs[Point].first * Of.Form.XFactor - Place) > 0.01 * std::fabs(Range)) {
      throw Failure("the points do not lie at equal distances");
    }
    Made.Real.push_back(Pairs[Point].second * Of.YFactor);
  }
  TakeAxis(Block, Of, Made);
  return Made;
}

// The page of real values and that of imaginary ones.
MeasuredSpectrum ReadNTuples(const JcampBlock& Block) {
  MeasuredSpectrum Made;
  TakeParameters(Block, Made);
  Made.IsFid = Holds(JcampValue(Block, "NTUPLES"), "FID") || Holds(JcampValue(Block, "DATATYPE"), "FID");
  const std::vector<TextView> Symbols = JcampList(Block, "SYMBOL");
  Axis Of;
  for (const JcampRecord& Record : Block.Records) {
    if (Record.Label != "DATATABLE") continue;
    TextView Rest = Record.Value;
    const Text Head = UpperCase(TakeJcampLine(Rest));
    for (std::size_t Place = 1; Place < Symbols.size(); ++Place) {
      const Text Symbol = UpperCase(Symbols[Place]);
      if (Symbol.empty() || Head.find(Join("(", Symbol, "..", Symbol, ")")) == Text::npos) continue;
      const bool Imaginary = Symbol == "I" || Holds(Entry(Block, "VARNAME", Place), "IMAG");
      std::vector<Double>& Values = Imaginary ? Made.Imaginary : Made.Real;
      if (!Values.empty()) throw Failure("the file holds a two-dimensional spectrum");
      Of = AxisOfNTuples(Block, Place);
      Values = ReadTable(Record, Of, Made);
      break;
    }
  }
  if (!Made.Imaginary.empty() && Made.Imaginary.size() != Made.Real.size()) {
    if (Made.IsFid && !Made.Real.empty()) {
      const std::size_t Both = std::min(Made.Real.size(), Made.Imaginary.size());
      Made.Real.resize(Both);
      Made.Imaginary.resize(Both);
    } else {
      Made.Imaginary.clear();
    }
  }
  TakeAxis(Block, Of, Made);
  return Made;
}

// What a block holds, the best first.
enum class BlockKind { Spectrum, Fid, PeakTable, TwoDimensional, Other };

BlockKind KindOf(const JcampBlock& Block) {
  const Text Type = UpperCase(JcampValue(Block, "DATATYPE"));
  const bool Table = FindJcampRecord(Block, "XYDATA") != nullptr || FindJcampRecord(Block, "XYPOINTS") != nullptr ||
                     FindJcampRecord(Block, "DATATABLE") != nullptr;
  const bool Peaks = FindJcampRecord(Block, "PEAKTABLE") != nullptr;
  if (!Type.empty() && Type.find("NMR") == Text::npos) return BlockKind::Other;
  if (NumberOf(Block, "NUMDIM") > 1 || Type.find("ND") == 0) return BlockKind::TwoDimensional;
  if (!Table) return Peaks ? BlockKind::PeakTable : BlockKind::Other;
  return Type.find("FID") != Text::npos ? BlockKind::Fid : BlockKind::Spectrum;
}

MeasuredSpectrum ReadBlock(const JcampBlock& Block) {
  if (FindJcampRecord(Block, "DATATABLE") != nullptr) return ReadNTuples(Block);
  const JcampRecord* Points = FindJcampRecord(Block, "XYPOINTS");
  const JcampRecord* Data = FindJcampRecord(Block, "XYDATA");
  if (Points != nullptr) return ReadXyPoints(Block, *Points);
  TextView Rest = Data->Value;
  if (Holds(TakeJcampLine(Rest), "(XY..XY)")) return ReadXyPoints(Block, *Data);
  return ReadXyData(Block, *Data);
}

}  // namespace

MeasuredSpectrum ReadJcamp(TextView Content) {
  const std::vector<JcampBlock> Blocks = SplitJcamp(Content);
  for (const BlockKind Wanted : {BlockKind::Spectrum, BlockKind::Fid}) {
    for (const JcampBlock& Block : Blocks) {
      if (KindOf(Block) == Wanted) return ReadBlock(Block);
    }
  }
  for (const JcampBlock& Block : Blocks) {
    if (KindOf(Block) == BlockKind::PeakTable) throw Failure("the file holds a list of peaks, no spectrum");
    if (KindOf(Block) == BlockKind::TwoDimensional) throw Failure("the file holds a two-dimensional spectrum");
  }
  throw Failure("the file holds no NMR spectrum");
}

}  // namespace zelvanor
