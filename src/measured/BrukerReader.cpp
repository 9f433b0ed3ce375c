// The folders of a spectrometer: 1r with procs (a processed spectrum), fid with acqus (the measurement itself). The
// parameter files are JCAMP-DX records whose labels begin with "$".

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "measured/JcampRecords.h"
#include "measured/MeasuredSpectrum.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct Parameters {
  Text Content;
  std::vector<JcampBlock> Blocks;

  TextView Value(TextView Label) const { return Blocks.empty() ? TextView() : JcampValue(Blocks.front(), Label); }
  Double Number(TextView Label) const { return PrefixNumber(Value(Label)); }
  // "<...>" without its brackets.
  Text Word(TextView Label) const {
    const TextView Written = Value(Label);
    return Written.size() >= 2 && Written.front() == '<' && Written.back() == '>'
               ? Text(Written.substr(1, Written.size() - 2))
               : Text(Written);
  }
};

Parameters ReadParameters(const Text& Path) {
  Parameters Read{ReadWholeFile(Path), {}};
  Read.Blocks = SplitJcamp(Read.Content);
  return Read;
}

bool IsThere(const Text& Path) { return IsSet(FileExists(Path)); }

Parameters ReadParametersIfThere(const Text& Path) { return IsThere(Path) ? ReadParameters(Path) : Parameters(); }

// A number of Size bytes, the first one lowest unless BigEndian.
std::uint64_t BytesAt(TextView Bytes, std::size_t Place, std::size_t Size, bool BigEndian) {
  std::uint64_t Value = 0;
  for (std::size_t Byte = 0; Byte < Size; ++Byte) {
    const std::size_t Shift = 8 * (BigEndian ? Size - 1 - Byte : Byte);
    Value |= std::uint64_t{static_cast<unsigned char>(Bytes[Place + Byte])} << Shift;
  }
  return Value;
}

// Type 0: whole numbers of 32 bits; any other: floating point of 64.
std::vector<Double> ReadNumbers(TextView Bytes, bool BigEndian, bool Floating) {
  const std::size_t Size = Floating ? 8 : 4;
  const std::size_t Count = Bytes.size() / Size;
  if (Count > 2 * static_cast<std::size_t>(MostMeasuredPoints)) throw Failure("the file has too many points");
  std::vector<Double> Values(Count);
  for (std::size_t Place = 0; Place < Count; ++Place) {
    const std::uint64_t Bits = BytesAt(Bytes, Place * Size, Size, BigEndian);
    Values[Place] =
        Floating ? std::bit_cast<Double>(Bits) : Double(std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(Bits)));
    if (!std::isfinite(Values[Place])) throw Failure("the file holds something that is no number");
  }
  return Values;
}

Text InFolder(const Text& Folder, TextView Name) { return Join(Folder, PathSeparator, Name); }

Text TitleIn(const Text& Folder) {
  const Text Path = InFolder(Folder, "title");
  if (!IsThere(Path)) return {};
  const Text Content = ReadWholeFile(Path);
  const TextView Whole = TrimWhite(Content);
  return Text(TrimWhite(Whole.substr(0, Whole.find_first_of("\r\n"))));
}

void TakeAcquisition(const Parameters& Acquired, MeasuredSpectrum& To) {
  To.Nucleus = NucleusOf(Acquired.Value("$NUC1"));
  if (To.Nucleus.empty()) To.Nucleus = NucleusOf(Acquired.Value("$NUCLEUS"));
  To.Solvent = Acquired.Word("$SOLVENT");
}

}  // namespace

Double FindGroupDelay(Double Stated, int Firmware, Double Decimation) {
  if (Stated > 0 && Stated < 1.0e4) return Stated;
  // Twice the delay times the decimation, by firmware 10 to 13. W. M. Westler and F. Abildgaard, "DMX digital filters
  // and non-Bruker offline processing III" (1996).
  constexpr int NumDecimations = 21;
  constexpr int FirstFirmware = 10;
  constexpr std::array<int, NumDecimations> Decimations = {2,  3,   4,   6,   8,   12,  16,  24,   32,   48,  64,
                                                           96, 128, 192, 256, 384, 512, 768, 1024, 1536, 2048};
  constexpr std::array<std::array<int, NumDecimations>, 4> Delays = {{
      {179,   201,   533,   709,   1097,  1449,  2225,  2929,   4481,   5889,  8993,
       11809, 18017, 23649, 36065, 47329, 72161, 94689, 144353, 189409, 288737},
      {184,   219,   384,   602,   852,   1668,  2312,   3368,   4656,   6768,  9344,
       13568, 18560, 27392, 36992, 55040, 73856, 110336, 147584, 220928, 295040},
      {184,   219,   384,   602,   852,   1668,  2292,   3368,   4616,   6768,  9264,
       13568, 18560, 27392, 36992, 55040, 73856, 110336, 147584, 220928, 295040},
      {11, 17, 23, 35, 47, 71, 95, 143, 191, 287, 383, 575, 0, 0, 0, 0, 0, 0, 0, 0, 0},
  }};
  const int Row = Firmware - FirstFirmware;
  if (Row < 0 || Row >= static_cast<int>(Delays.size())) return 0;
  for (std::size_t Place = 0; Place < Decimations.size(); ++Place) {
    if (std::fabs(Decimations[Place] - Decimation) < 0.5) {
      return Delays[static_cast<std::size_t>(Row)][Place] / (2.0 * Decimations[Place]);
    }
  }
  return 0;
}

MeasuredSpectrum ReadBrukerSpectrum(const Text& Folder) {
  const Parameters Processed = ReadParameters(InFolder(Folder, "procs"));
  if (IsThere(InFolder(Folder, "2rr")) || Processed.Number("$PPARMOD") > 0) {
    throw Failure("the folder holds a two-dimensional spectrum");
  }
  MeasuredSpectrum Made;
  TakeAcquisition(ReadParametersIfThere(InFolder(Folder, "../../acqus")), Made);
  if (Made.Nucleus.empty()) Made.Nucleus = NucleusOf(Processed.Value("$AXNUC"));
  Made.Title = TitleIn(Folder);
  Made.MHz = Processed.Number("$SF");
  const Double Sweep = Processed.Number("$SWP");
  if (!(Made.MHz > 0) || !(Sweep > 0)) throw Failure("procs does not say the frequency or the sweep");
  const auto Read = [&](const char* Name) {
    return ReadNumbers(ReadWholeFile(InFolder(Folder, Name)), Processed.Number("$BYTORDP") == 1.0,
                       Processed.Number("$DTYPP") > 0);
  };
  Made.Real = Read("1r");
  const Double Told = Processed.Number("$SI");
  const auto Count = static_cast<Double>(Made.Real.size());
  if (Told > 0 && Told != Count) {
    Made.Warnings.push_back(Join("the file 1r has ", Count, " points of the ", Told, " that procs tells"));
    if (Count > Told) Made.Real.resize(static_cast<std::size_t>(Told));
  }
  if (IsThere(InFolder(Folder, "1i"))) Made.Imaginary = Read("1i");
  if (Made.Imaginary.size() != Made.Real.size()) Made.Imaginary.clear();
  const Double Scale = std::exp2(Processed.Number("$NCPROC"));
  if (!(Scale > 0) || !std::isfinite(Scale)) throw Failure("procs has an impossible scale");
  Made.Factor = Scale;
  for (std::vector<Double>* Values : {&Made.Real, &Made.Imaginary}) {
    for (Double& Value : *Values) Value *= Scale;
  }
  // OFFSET is the shift of the first point; the points lie SW / SI apart.
  Made.First = Processed.Number("$OFFSET") * Made.MHz;
  const Double Points = Told > 0 ? Told : Count;
  Made.Last = Made.First - Sweep * (static_cast<Double>(Made.Real.size()) - 1.0) / Points;
  return Made;
}

MeasuredSpectrum ReadBrukerFid(const Text& Folder) {
  const Parameters Acquired = ReadParameters(InFolder(Folder, "acqus"));
  if (Acquired.Number("$PARMODE") > 0) throw Failure("the folder holds a two-dimensional measurement");
  MeasuredSpectrum Made;
  Made.IsFid = true;
  TakeAcquisition(Acquired, Made);
  Made.Title = TitleIn(InFolder(Folder, "pdata/1"));
  Made.SweepHz = Acquired.Number("$SWH");
  const Double Carrier = Acquired.Number("$SFO1");
  Made.MHz = Acquired.Number("$BF1");
  // Processed once, the frequency of 0 ppm is known better.
  const Double Referenced = ReadParametersIfThere(InFolder(Folder, "pdata/1/procs")).Number("$SF");
  if (Made.MHz > 0 && std::fabs(Referenced / Made.MHz - 1.0) < 1.0e-3) Made.MHz = Referenced;
  if (!(Made.MHz > 0) || !(Made.SweepHz > 0)) throw Failure("acqus does not say the frequency or the sweep");
  if (Carrier > 0) Made.CentrePpm = (Carrier / Made.MHz - 1.0) * 1.0e6;
  const Double Firmware = Acquired.Number("$DSPFVS");
  Made.GroupDelay = FindGroupDelay(Acquired.Number("$GRPDLY"), Firmware > 0 && Firmware < 100 ? int(Firmware) : 0,
                                   Acquired.Number("$DECIM"));
  std::vector<Double> Samples = ReadNumbers(ReadWholeFile(InFolder(Folder, "fid")), Acquired.Number("$BYTORDA") == 1.0,
                                            Acquired.Number("$DTYPA") > 0);
  const Double Told = Acquired.Number("$TD");
  if (Told > 0 && static_cast<Double>(Samples.size()) > Told) Samples.resize(static_cast<std::size_t>(Told));
  if (Told > static_cast<Double>(Samples.size())) {
    Made.Warnings.push_back(
        Join("the file fid has ", static_cast<Double>(Samples.size()), " values of the ", Told, " that acqus tells"));
  }
  // Modes 1 and 3 hold pairs; in the others there is one channel, twice as fast.
  const Double Mode = Acquired.Number("$AQMOD");
  if (Mode == 1.0 || Mode == 3.0) {
    for (std::size_t Place = 0; Place + 1 < Samples.size(); Place += 2) {
      Made.Real.push_back(Samples[Place]);
      Made.Imaginary.push_back(Samples[Place + 1]);
    }
  } else {
    Made.Real = std::move(Samples);
  }
  return Made;
}

}  // namespace zelvanor
