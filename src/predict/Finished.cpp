#include "predict/Finished.h"

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include "files/Converter.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::predict {

namespace {

// FNV-1a of 64 bits: http://www.isthe.com/chongo/tech/comp/fnv.
struct Hash {
  std::uint64_t Value = 14695981039346656037U;

  void Add(TextView Bytes) {
    for (const char C : Bytes) Value = (Value ^ static_cast<unsigned char>(C)) * 1099511628211U;
    Value = (Value ^ 0xFFU) * 1099511628211U;  // between two texts
  }
  Text Digits() const {
    char Digits[17];
    std::snprintf(Digits, sizeof Digits, "%016llx", static_cast<unsigned long long>(Value));
    return Digits;
  }
};

void AddFile(Hash& Sum, const Text& Path) {
  struct stat About {};
  if (stat(Path.c_str(), &About) != 0) return;
  Sum.Add(Path);
  Sum.Add(std::to_string(About.st_size) + " " + std::to_string(About.st_mtim.tv_sec) + " " +
          std::to_string(About.st_mtim.tv_nsec));
}

Text HashOfFile(const Text& Path) {
  Hash Sum;
  try {
    Sum.Add(ReadWholeFile(Path));
  } catch (const Failure&) {
    return {};
  }
  return Sum.Digits();
}

// By their times and sizes.
void AddTables(Hash& Sum) {
  std::error_code Ignored;
  std::set<Text> Tables;
  for (const auto& Entry : std::filesystem::directory_iterator(Settings.NMRParmPath, Ignored)) {
    Tables.insert(Entry.path());
  }
  for (const Text& Table : Tables) AddFile(Sum, Table);
}

Text FinishedPath(const FinishedList& List) { return List.Folder + "/.zelvanor-predict"; }

Text KeyOf(const Options& Given, const Molecule& One) { return One.Name + "." + Given.Observed->Name; }

// "HASH HASH ...", in the order of FilesOf; empty where one is missing.
Text HashesOf(const FinishedList& List, const Options& Given, const Molecule& One) {
  Text All;
  for (const Text& File : FilesOf(Given, One.Name)) {
    const Text Digits = HashOfFile(List.Folder + "/" + File);
    if (Digits.empty()) return {};
    All += Digits + " ";
  }
  return All;
}

Text CutCell(Text& Line) {
  const std::size_t End = std::min(Line.find('\t'), Line.size());
  Text Cell = Line.substr(0, End);
  Line.erase(0, End + 1);
  return Cell;
}

}  // namespace

void ReadFinished(FinishedList& List, const Text& Folder) {
  List.Folder = Folder;
  std::ifstream File(FinishedPath(List), std::ios::binary);
  Text Line;
  for (long Place = 0; std::getline(File, Line); Place = static_cast<long>(File.tellg())) {
    // A run that was cut off has left a line without its end.
    if (File.eof()) {
      std::ofstream(FinishedPath(List), std::ios::app) << '\n';
      break;
    }
    List.Places[CutCell(Line)] = Place;
  }
}

Text FingerprintOf(const Options& Given, const Molecule& One) {
  Hash Sum;
  Sum.Add(ZELVANOR_VERSION);
  for (const Text& Program : {Text("/proc/self/exe"), Settings.CalcExeFile, FindConverter()}) AddFile(Sum, Program);
  AddTables(Sum);
  // The fast engine takes nothing from there.
  if (Given.Quantum) Sum.Add(HashOfFile(Settings.BackendFile));
  for (int Entry = 0; Entry < NumReferenceEntries; ++Entry) Sum.Add(GeneralForm(Workspace.ReferenceShielding[Entry]));
  Sum.Add(Given.Observed->Name);
  Sum.Add(std::to_string(Given.MHz) + (Given.Quantum ? " quantum " : " fast ") + GeneralForm(Given.Width));
  for (const Text& Format : Given.Formats) Sum.Add(Format);
  Sum.Add(One.Path.empty() ? One.Record.Content : HashOfFile(One.Path));
  Sum.Add(std::to_string(static_cast<int>(One.Kind)));
  return Sum.Digits();
}

bool IsFinished(const FinishedList& List, const Options& Given, const Molecule& One, Result& Made) {
  const auto Found = List.Places.find(KeyOf(Given, One));
  if (Found == List.Places.end()) return false;
  std::ifstream File(FinishedPath(List), std::ios::binary);
  File.seekg(Found->second);
  Text Line;
  if (!std::getline(File, Line) || CutCell(Line) != Found->first) return false;
  if (CutCell(Line) != FingerprintOf(Given, One)) return false;
  Made.Numbers = CutCell(Line);
  const Text Hashes = CutCell(Line);
  if (Hashes.empty() || Hashes != HashesOf(List, Given, One)) return false;
  Made.Json = Line;
  constexpr const char* Done = "\"status\":\"ok\"";
  if (const std::size_t Place = Made.Json.find(Done); Place != Text::npos) {
    Made.Json.replace(Place, Text(Done).size(), "\"status\":\"resumed\"");
  }
  return true;
}

void AddFinished(const FinishedList& List, const Options& Given, const Molecule& One, const Result& Made) {
  const Text Line = KeyOf(Given, One) + "\t" + FingerprintOf(Given, One) + "\t" + Made.Numbers + "\t" +
                    HashesOf(List, Given, One) + "\t" + Made.Json + "\n";
  std::FILE* File = std::fopen(FinishedPath(List).c_str(), "ae");
  const bool Written = File != nullptr && std::fwrite(Line.data(), 1, Line.size(), File) == Line.size();
  if (File != nullptr && std::fclose(File) != 0) throw Failure(FinishedPath(List) + " can't be written");
  if (!Written) throw Failure(FinishedPath(List) + " can't be written");
}

}  // namespace zelvanor::predict
