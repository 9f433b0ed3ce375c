#include <algorithm>
#include <cmath>
#include <filesystem>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "measured/MeasuredSpectrum.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

namespace fs = std::filesystem;

bool HasFile(const Text& Folder, const char* Name) { return IsSet(FileExists(Join(Folder, PathSeparator, Name))); }
bool HoldsSpectrum(const Text& Folder) { return HasFile(Folder, "1r") && HasFile(Folder, "procs"); }
bool HoldsFid(const Text& Folder) { return HasFile(Folder, "fid") && HasFile(Folder, "acqus"); }

// The folders below one, by name: experiments and processings are numbered.
std::vector<Text> FoldersIn(const Text& Folder) {
  std::vector<Text> Found;
  std::error_code Ignored;
  constexpr std::size_t Most = 10000;
  for (fs::directory_iterator Each(Folder, Ignored), End; !Ignored && Each != End; Each.increment(Ignored)) {
    if (Each->is_directory(Ignored)) Found.push_back(Each->path().string());
    if (Found.size() > Most) break;
  }
  std::sort(Found.begin(), Found.end(), [](const Text& A, const Text& B) {
    return std::pair(A.size(), A) < std::pair(B.size(), B);  // 2 before 10
  });
  return Found;
}

// A processed spectrum is preferred to its measurement, the first experiment to the later ones.
MeasuredSpectrum ReadFolder(const Text& Folder, int Depth = 0) {
  if (HoldsSpectrum(Folder)) return ReadBrukerSpectrum(Folder);
  for (const Text& Processed : FoldersIn(Folder + PathSeparator + "pdata")) {
    if (HoldsSpectrum(Processed)) return ReadBrukerSpectrum(Processed);
  }
  if (HoldsFid(Folder)) return ReadBrukerFid(Folder);
  if (Depth == 0) {
    for (const Text& Experiment : FoldersIn(Folder)) {
      if (HoldsFid(Experiment) || fs::is_directory(Experiment + PathSeparator + "pdata")) {
        return ReadFolder(Experiment, Depth + 1);
      }
    }
  }
  throw Failure("the folder holds no spectrum: neither 1r with procs nor fid with acqus");
}

Text FolderOf(const Text& Path) {
  const TextView Name = FileTitleOf(Path);
  return Name.size() == Path.size() ? Text(".") : Path.substr(0, Path.size() - Name.size() - 1);
}

bool IsWord(TextView Name, std::initializer_list<const char*> Words) {
  return std::any_of(Words.begin(), Words.end(), [&](const char* Word) { return Name == Word; });
}

}  // namespace

Text NucleusOf(TextView Written) {
  Text Digits;
  Text Letters;
  for (const char C : Written) {
    if (C >= '0' && C <= '9') Digits += C;
    if (UpperChar(C) >= 'A' && UpperChar(C) <= 'Z') Letters += C;
  }
  constexpr std::size_t LongestSymbol = 2;
  constexpr std::size_t LongestMass = 3;
  if (EqualsIgnoringCase(Letters, "proton")) return "1H";
  if (Letters.empty() || Letters.size() > LongestSymbol || Digits.empty() || Digits.size() > LongestMass) return {};
  Text Nucleus = Digits + UpperChar(Letters[0]);
  for (const char C : Letters.substr(1)) Nucleus += C >= 'A' && C <= 'Z' ? static_cast<char>(C - 'A' + 'a') : C;
  return Nucleus;
}

// Lines of two numbers: shift in ppm and intensity, separated by blanks, tabs, commas or semicolons. Lines that hold
// something else may stand at the head.
MeasuredSpectrum ReadTwoColumns(TextView Content) {
  std::vector<std::pair<Double, Double>> Points;
  int Number = 0;
  while (!Content.empty()) {
    const std::size_t End = Content.find('\n');
    Text Line(Content.substr(0, End));
    Content.remove_prefix(End == TextView::npos ? Content.size() : End + 1);
    ++Number;
    std::replace_if(
        Line.begin(), Line.end(), [](char C) { return C == ',' || C == ';' || C == '\r'; }, ' ');
    std::vector<TextView> Words;
    ForEachWord(Line, [&](TextView Word) { Words.push_back(Word); });
    if (Words.empty()) continue;
    try {
      if (Words.size() < 2) throw Failure("");
      Points.emplace_back(StrictNumber(Words[0]), StrictNumber(Words[1]));
    } catch (const Failure&) {
      if (!Points.empty()) throw Failure(Join("line ", Long{Number}, " does not hold two numbers"));
      constexpr int LongestHead = 100;
      if (Number > LongestHead) throw Failure("the file is of no kind of spectrum that can be read");
      continue;
    }
    if (Points.size() > MostMeasuredPoints) throw Failure("the file has too many points");
  }
  if (Points.size() < 2) throw Failure("the file is of no kind of spectrum that can be read");
  MeasuredSpectrum Made;
  Made.First = Points.front().first;
  Made.Last = Points.back().first;
  const Double Step = (Made.Last - Made.First) / (static_cast<Double>(Points.size()) - 1.0);
  if (Step == 0.0) throw Failure("all points lie at the same place");
  // Shifts are often rounded to three digits: what counts is that no point lies far from its place.
  Double Farthest = 0;
  for (std::size_t Point = 0; Point < Points.size(); ++Point) {
    Farthest = std::max(Farthest, std::fabs(Points[Point].first - Made.First - static_cast<Double>(Point) * Step));
    Made.Real.push_back(Points[Point].second);
  }
  if (Farthest > std::max(0.6 * std::fabs(Step), 0.0011)) throw Failure("the points do not lie at equal distances");
  return Made;
}

namespace {

MeasuredSpectrum ReadByContent(const Text& Path) {
  const Text Name(FileTitleOf(Path));
  if (IsWord(Name, {"1r", "1i", "procs", "proc"})) return ReadBrukerSpectrum(FolderOf(Path));
  if (IsWord(Name, {"fid", "acqus", "acqu"}) && HasFile(FolderOf(Path), "acqus")) return ReadBrukerFid(FolderOf(Path));
  const Text Content = ReadWholeFile(Path);
  const TextView Head = TrimWhite(Content);
  if (Head.starts_with("##")) return ReadJcamp(Content);
  return ReadTwoColumns(Content);
}

// What no reader may let through.
void Check(const MeasuredSpectrum& Read) {
  constexpr std::size_t FewestPoints = 2;
  if (Read.Real.size() < FewestPoints) throw Failure("the file holds no points");
  if (Read.Real.size() > MostMeasuredPoints) throw Failure("the file has too many points");
  for (const std::vector<Double>* Values : {&Read.Real, &Read.Imaginary}) {
    if (!std::all_of(Values->begin(), Values->end(), [](Double Value) { return std::fabs(Value) < 1.0e30; })) {
      throw Failure("the file holds something that is no number");
    }
  }
  constexpr Double Farthest = 1.0e12;  // Hz
  const auto Sane = [](Double Value) { return std::fabs(Value) < Farthest; };
  if (!Sane(Read.First) || !Sane(Read.Last) || !Sane(Read.MHz) || !Sane(Read.SweepHz) || !Sane(Read.CentrePpm)) {
    throw Failure("the axis makes no sense");
  }
  if (!Read.IsFid && Read.First == Read.Last) throw Failure("all points lie at the same place");
}

}  // namespace

bool IsSpectrometerFolder(const Text& Folder) {
  const auto Holds = [](const Text& Each) {
    return HoldsSpectrum(Each) || HoldsFid(Each) ||
           HoldsSpectrum(Join(Each, PathSeparator, "pdata", PathSeparator, "1"));
  };
  if (Holds(Folder)) return true;
  const std::vector<Text> Inside = FoldersIn(Folder);
  return std::any_of(Inside.begin(), Inside.end(), Holds);
}

MeasuredSpectrum ReadMeasuredFile(const Text& Path) {
  std::error_code Ignored;
  MeasuredSpectrum Read = fs::is_directory(Path, Ignored) ? ReadFolder(Path) : ReadByContent(Path);
  Check(Read);
  if (Read.Title.empty()) Read.Title = Text(FileTitleOf(Path));
  return Read;
}

}  // namespace zelvanor
