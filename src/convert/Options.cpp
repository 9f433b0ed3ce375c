#include "convert/Options.h"

#include "basic/Numbers.h"
#include "basic/OptionRows.h"

namespace zelvanor::convert {

const char* const Usage =
    R"(usage: zelvanor-convert [OPTION...] FILE
Writes the molecule of a file (mol, sdf, mol2, pdb, ent, xyz, smi; cml and cif where obabel is installed) in the host
text format. Hydrogens that the file implies are added, coordinates that it lacks are made, and bonds that it lacks are
found from the distances. "-" reads SMILES from standard input, one a line, a name behind a blank.

  -s, --smiles TEXT  this molecule instead of FILE
  -r, --record N     the Nth record of the file, from 1 (1)
      --stream       all records, each between the lines "; Record N NAME" and "; End N"
      --list         a line for each record: number, name and formula, separated by tabs
      --flat         a drawing: flat coordinates, implied hydrogens counted in comments
  -o, --out FILE     writes FILE, whole or not at all
      --source TEXT  what the output names as its source
      --messages FILE  what goes wrong goes there instead of standard error
      --time N       limit in seconds for a record (30); 0 none
  -h, --help         this text
      --version

Exit status: 0 all well, 1 a record could not be converted, 2 bad options or a file that cannot be read, 3 a file of no
known format.
)";

namespace {

Long NumberFrom(const Text& Option, const Text& Value, Long Least) {
  try {
    const Long Number = StrictLong(Value);
    if (Number >= Least) return Number;
  } catch (const Failure&) {
    // the same text as for a number that is too small
  }
  throw Failure(Option + " takes a number from " + std::to_string(Least) + ", not \"" + Value + "\"");
}

constexpr OptionRow<Options> Rows[] = {
    {"-s", "--smiles", true, [](Options& All, const Text& Value) { All.Smiles = Value; }},
    {"-r", "--record", true, [](Options& All, const Text& Value) { All.Record = NumberFrom("--record", Value, 1); }},
    {"-o", "--out", true, [](Options& All, const Text& Value) { All.Output = Value; }},
    {"", "--source", true, [](Options& All, const Text& Value) { All.Source = Value; }},
    {"", "--messages", true, [](Options& All, const Text& Value) { All.Messages = Value; }},
    {"", "--time", true, [](Options& All, const Text& Value) { All.Seconds = NumberFrom("--time", Value, 0); }},
    {"", "--stream", false, [](Options& All, const Text&) { All.Does = Work::All; }},
    {"", "--list", false, [](Options& All, const Text&) { All.Does = Work::List; }},
    {"", "--flat", false, [](Options& All, const Text&) { All.Flat = true; }},
    {"-h", "--help", false, [](Options& All, const Text&) { All.Help = true; }},
    {"", "--version", false, [](Options& All, const Text&) { All.Version = true; }},
};

}  // namespace

Options ReadOptions(const std::vector<Text>& Words) {
  Options All;
  TakeOptionWords(Words, Rows, All, [&All](const Text& Word) {
    if (!All.Input.empty()) throw Failure("more than one file: " + Word);
    All.Input = Word;
  });
  if (!All.Help && !All.Version && All.Input.empty() == All.Smiles.empty()) {
    throw Failure(All.Input.empty() ? "no file is named" : "a file and a SMILES");
  }
  return All;
}

}  // namespace zelvanor::convert
