#include "predict/Options.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "basic/OptionRows.h"

namespace zelvanor::predict {

const char* const Usage =
    R"(usage: zelvanor-predict [OPTION...] INPUT...
Computes the NMR spectrum of each molecule. An INPUT is a molecule file, a document, or - for SMILES on standard input,
one a line, a name behind a blank.

  -s, --smiles SMILES  a molecule as SMILES; may be given often
  -n, --nucleus N      1H, 13C, 15N, 17O, 19F or 31P (1H)
  -m, --mhz N          frequency of this nucleus (that of a 400 MHz spectrometer)
      --method M       fast or quantum (fast)
  -o, --out DIR        where results go; made when missing (.)
  -f, --format LIST    NMR, svg, png, pdf, csv, jdx, html, sdf, txt, separated by commas; none (svg,csv)
  -w, --width HZ       line width in the pictures (1)
  -j, --jobs N         molecules at a time (the number of cores)
      --resume         passes over what an earlier run has finished
      --records A-B    only these records of a file, from 1
      --time SECONDS   limit for one molecule; 0 none (600)
      --json           one JSON object a molecule on standard output
  -q, --quiet          no progress bar
  -h, --help           this text
      --version

Exit status: 0 all well, 1 a molecule failed or an input is missing, 2 bad options, a folder that cannot be written, an
engine that is not installed or no input that can be read, 130 interrupted.
)";

namespace {

constexpr const char* KnownFormats[] = {"NMR", "svg", "png", "pdf", "csv", "jdx", "html", "sdf", "txt"};

[[noreturn]] void Refuse(const Text& Option, const char* Wanted, const Text& Value) {
  throw Failure(Option + " takes " + Wanted + ", not \"" + Value + "\"");
}

Long WholeNumber(const Text& Option, const Text& Value, Long Least) {
  const bool Digits = !Value.empty() && Value.find_first_not_of("0123456789") == Text::npos;
  const Double Number = Digits ? PrefixNumber(Value) : -1;
  if (Number < Least || Number > 1000000000)
    Refuse(Option, Least == 0 ? "a whole number" : "a whole number above 0", Value);
  return static_cast<Long>(Number);
}

void TakeFormats(Options& All, const Text& Value) {
  All.Formats.clear();
  if (Value == "none") return;
  for (std::size_t Place = 0; Place <= Value.size();) {
    const std::size_t End = std::min(Value.find(',', Place), Value.size());
    const Text Name = Value.substr(Place, End - Place);
    if (std::find(std::begin(KnownFormats), std::end(KnownFormats), Name) == std::end(KnownFormats)) {
      Refuse("--format", "NMR, svg, png, pdf, csv, jdx, html, sdf, txt or none", Name);
    }
    if (std::find(All.Formats.begin(), All.Formats.end(), Name) == All.Formats.end()) All.Formats.push_back(Name);
    Place = End + 1;
  }
}

void TakeNucleus(Options& All, const Text& Value) {
  All.Observed = FindNucleus(Value);
  if (All.Observed == nullptr) Refuse("--nucleus", "1H, 13C, 15N, 17O, 19F or 31P", Value);
}

void TakeMethod(Options& All, const Text& Value) {
  if (Value != "fast" && Value != "quantum") Refuse("--method", "fast or quantum", Value);
  All.Quantum = Value == "quantum";
}

void TakeWidth(Options& All, const Text& Value) {
  try {
    All.Width = StrictNumber(Value);
  } catch (const Failure&) {
    All.Width = 0;
  }
  if (!(All.Width > 0 && All.Width <= 10000)) Refuse("--width", "a number of hertz above 0", Value);
}

void TakeRecords(Options& All, const Text& Value) {
  const std::size_t Dash = Value.find('-');
  if (Dash == Text::npos) {
    All.FirstRecord = All.LastRecord = WholeNumber("--records", Value, 1);
    return;
  }
  All.FirstRecord = WholeNumber("--records", Value.substr(0, Dash), 1);
  All.LastRecord = WholeNumber("--records", Value.substr(Dash + 1), 1);
  if (All.LastRecord < All.FirstRecord) Refuse("--records", "A-B with A at most B", Value);
}

constexpr OptionRow<Options> Rows[] = {
    {"-s", "--smiles", true,
     [](Options& All, const Text& Value) {
       All.Inputs.push_back({{}, Value});
     }},
    {"-n", "--nucleus", true, TakeNucleus},
    {"-m", "--mhz", true, [](Options& All, const Text& Value) { All.MHz = WholeNumber("--mhz", Value, 1); }},
    {"", "--method", true, TakeMethod},
    {"-o", "--out", true, [](Options& All, const Text& Value) { All.Folder = Value; }},
    {"-f", "--format", true, TakeFormats},
    {"-w", "--width", true, TakeWidth},
    {"-j", "--jobs", true,
     [](Options& All, const Text& Value) {
       All.Jobs = static_cast<int>(std::min<Long>(WholeNumber("--jobs", Value, 1), 1024));
     }},
    {"", "--resume", false, [](Options& All, const Text&) { All.Resume = true; }},
    {"", "--records", true, TakeRecords},
    {"", "--time", true, [](Options& All, const Text& Value) { All.Seconds = WholeNumber("--time", Value, 0); }},
    {"", "--json", false, [](Options& All, const Text&) { All.Json = true; }},
    {"-q", "--quiet", false, [](Options& All, const Text&) { All.Quiet = true; }},
    {"-h", "--help", false, [](Options& All, const Text&) { All.Help = true; }},
    {"", "--version", false, [](Options& All, const Text&) { All.Version = true; }},
};

void Check(const Options& All) {
  constexpr Long LargestFrequency = 1000000;
  if (All.Inputs.empty()) throw Failure("no input is named");
  if (All.Folder.empty()) throw Failure("--out takes a folder");
  if (All.MHz > LargestFrequency) throw Failure("--mhz is at most 1000000");
  for (const Input& One : All.Inputs) {
    if (One.Path.empty() && One.Smiles.empty()) throw Failure("an input without a name");
  }
}

}  // namespace

Options ReadOptions(const std::vector<Text>& Words) {
  Options All;
  All.Observed = &Nuclei[0];
  All.Formats = {"svg", "csv"};
  All.Jobs = static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
  TakeOptionWords(Words, Rows, All, [&All](const Text& Word) { All.Inputs.push_back({Word, {}}); });
  if (!All.Help && !All.Version) Check(All);
  if (All.MHz == 0) All.MHz = static_cast<Long>(std::lround(400.0 * All.Observed->Percent / 100.0));
  return All;
}

}  // namespace zelvanor::predict
