#include "convert/Records.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "basic/Numbers.h"
#include "basic/TextTools.h"

namespace zelvanor::convert {

namespace {

constexpr std::size_t HeadLength = 4096;
constexpr std::size_t LongestTitle = 200;

struct EndingRow {
  const char* Ending;
  FileKind Kind;
};

// The first of a kind stands for it.
constexpr EndingRow Endings[] = {
    {"sdf", FileKind::Mol},    {"mol", FileKind::Mol},       {"sd", FileKind::Mol},    {"mdl", FileKind::Mol},
    {"smi", FileKind::Smiles}, {"smiles", FileKind::Smiles}, {"mol2", FileKind::Mol2}, {"pdb", FileKind::Pdb},
    {"ent", FileKind::Pdb},    {"xyz", FileKind::Xyz},       {"cml", FileKind::Cml},   {"cif", FileKind::Cif},
};

bool StartsWithAny(TextView Line, std::initializer_list<const char*> Starts) {
  return std::any_of(Starts.begin(), Starts.end(), [&](const char* Start) { return Line.starts_with(Start); });
}

bool IsBlank(TextView Line) { return Line.find_first_not_of(" \t\r\n\v\f") == TextView::npos; }

// Reads on to the end of the line, which is dropped; a line longer than a record is cut. False at the end of the file.
bool ReadLine(RecordSource& Source, Text& Line) {
  if (Source.HasAhead) {
    Line.swap(Source.Ahead);
    Source.HasAhead = false;
    return true;
  }
  Line.clear();
  bool Any = false;
  std::array<char, 65536> Piece;
  while (std::fgets(Piece.data(), Piece.size(), Source.File) != nullptr) {
    Any = true;
    // A NUL ends what fgets tells of a piece: the rest of that line is no text either.
    const TextView Got(Piece.data());
    const bool Ends = Got.empty() || Got.back() == '\n' || Got.size() + 1 < Piece.size();
    if (Line.size() <= LargestRecord) Line += Got;
    if (Ends) break;
  }
  while (!Line.empty() && (Line.back() == '\n' || Line.back() == '\r')) Line.pop_back();
  return Any;
}

void PutBack(RecordSource& Source, Text& Line) {
  Source.Ahead.swap(Line);
  Source.HasAhead = true;
}

// Lines that are too many are counted and dropped.
struct RecordText {
  Record& Target;
  std::size_t Size = 0;

  void Add(TextView Line) {
    Size += Line.size() + 1;
    if (Size > LargestRecord) {
      Target.Problem = "the record is larger than 32 MB";
      Target.Content.clear();
    } else {
      Target.Content.append(Line).push_back('\n');
    }
  }
};

bool NextMol(RecordSource& Source, Record& Next) {
  RecordText Taken{Next};
  Text Line;
  bool Any = false;
  for (int Count = 0; ReadLine(Source, Line); ++Count) {
    if (Line.starts_with("$$$$")) return true;
    if (Count == 0) Next.Title = PlainTitle(Line);
    Any = Any || !IsBlank(Line);
    Taken.Add(Line);
  }
  return Any;
}

bool NextSmiles(RecordSource& Source, Record& Next) {
  RecordText Taken{Next};
  Text Line;
  while (ReadLine(Source, Line)) {
    if (IsBlank(Line)) continue;
    const std::size_t Start = Line.find_first_not_of(Separators);
    const std::size_t End = std::min(Line.find_first_of(Separators, Start), Line.size());
    Next.Title = PlainTitle(TextView(Line).substr(End));
    Taken.Add(TextView(Line).substr(Start, End - Start));
    return true;
  }
  return false;
}

bool NextMol2(RecordSource& Source, Record& Next) {
  RecordText Taken{Next};
  Text Line;
  bool Begun = false;
  int Behind = 0;
  while (ReadLine(Source, Line)) {
    if (Line.starts_with("@<TRIPOS>MOLECULE")) {
      if (Begun) {
        PutBack(Source, Line);
        return true;
      }
      Begun = true;
    } else if (Begun && ++Behind == 1) {
      Next.Title = PlainTitle(Line);
    }
    if (Begun) Taken.Add(Line);
  }
  return Begun;
}

// One frame: the number of atoms, the title, and an atom a line. A wrong number takes the rest of the file with it.
bool NextXyz(RecordSource& Source, Record& Next) {
  RecordText Taken{Next};
  Text Line;
  do {
    if (!ReadLine(Source, Line)) return false;
  } while (IsBlank(Line));
  Taken.Add(Line);
  Double Left = PrefixNumber(Line);
  if (ReadLine(Source, Line)) {
    Next.Title = PlainTitle(Line);
    Taken.Add(Line);
  }
  if (!(Left >= 1 && Left <= 1e7)) {
    while (ReadLine(Source, Line)) Taken.Add(Line);
  }
  for (; Left >= 1 && ReadLine(Source, Line); Left -= 1) Taken.Add(Line);
  return true;
}

// All of the file but its models behind the first: bonds stand behind all of them.
bool NextPdb(RecordSource& Source, Record& Next) {
  RecordText Taken{Next};
  Text Line;
  bool Any = false;
  int Models = 0;
  while (ReadLine(Source, Line)) {
    if (Line.starts_with("MODEL ")) ++Models;
    if (StartsWithAny(Line, {"ATOM  ", "HETATM"})) Any = true;
    if (Next.Title.empty() && Line.starts_with("COMPND")) Next.Title = PlainTitle(TextView(Line).substr(6));
    if (Models < 2 || Line.starts_with("CONECT")) Taken.Add(Line);
  }
  return Any || Source.Given == 0;
}

const char* ObabelName(FileKind Kind) {
  if (Kind == FileKind::Cml) return "cml";
  return Kind == FileKind::Cif ? "cif" : nullptr;
}

// Starts obabel on the open file; what it writes is what the source reads from then on.
void ReadThroughObabel(RecordSource& Source, const char* Format) {
  int Ends[2];
  if (pipe2(Ends, O_CLOEXEC) != 0) throw Failure(FailureTextFromErrno(errno));
  posix_spawn_file_actions_t Actions;
  posix_spawn_file_actions_init(&Actions);
  posix_spawn_file_actions_adddup2(&Actions, fileno(Source.File), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&Actions, Ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&Actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  Text Program = "obabel";
  Text Input = Text("-i") + Format;
  Text Output = "-osdf";
  char* const Arguments[] = {Program.data(), Input.data(), Output.data(), nullptr};
  rewind(Source.File);
  lseek(fileno(Source.File), 0, SEEK_SET);
  const int Outcome = posix_spawnp(&Source.Child, "obabel", &Actions, nullptr, Arguments, environ);
  posix_spawn_file_actions_destroy(&Actions);
  close(Ends[1]);
  if (Outcome != 0) {
    Source.Child = 0;
    close(Ends[0]);
    throw Failure(Text("the program obabel, which reads ") + Format + " files, is not installed");
  }
  std::fclose(Source.File);
  Source.File = fdopen(Ends[0], "r");
  Source.Kind = FileKind::Mol;
}

void RefuseFolder(std::FILE* File) {
  struct stat About {};
  if (fstat(fileno(File), &About) == 0 && S_ISDIR(About.st_mode)) throw Failure("it is a folder");
}

Text ReadHead(std::FILE* File) {
  Text Head(HeadLength, '\0');
  Head.resize(std::fread(Head.data(), 1, Head.size(), File));
  rewind(File);
  return Head;
}

bool LooksLikeXyz(const std::vector<TextView>& Lines) {
  if (Lines.size() < 3 || IsBlank(Lines[0]) || Lines[0].find_first_not_of("0123456789 \t\r") != TextView::npos) {
    return false;
  }
  const std::vector<Text> Words = SplitAtBlanks(Text(Lines[2]));
  return Words.size() >= 4 && Words[1].find('.') != Text::npos && Words[3].find('.') != Text::npos;
}

std::vector<TextView> SplitLines(TextView Head) {
  std::vector<TextView> Lines;
  while (!Head.empty()) {
    const std::size_t End = std::min(Head.find('\n'), Head.size());
    Lines.push_back(Head.substr(0, End));
    Head.remove_prefix(std::min(End + 1, Head.size()));
  }
  return Lines;
}

}  // namespace

FileKind KindOfEnding(TextView Path) {
  const std::size_t Dot = Path.rfind('.');
  if (Dot == TextView::npos) return FileKind::Unknown;
  for (const EndingRow& Row : Endings) {
    if (EqualsIgnoringCase(Path.substr(Dot + 1), Row.Ending)) return Row.Kind;
  }
  return FileKind::Unknown;
}

const char* EndingOfKind(FileKind Kind) {
  for (const EndingRow& Row : Endings) {
    if (Row.Kind == Kind) return Row.Ending;
  }
  return "";
}

FileKind KindOfContent(TextView Head) {
  const std::vector<TextView> Lines = SplitLines(Head);
  if (Lines.size() > 3 && (Lines[3].find("V2000") != TextView::npos || Lines[3].find("V3000") != TextView::npos)) {
    return FileKind::Mol;
  }
  if (Head.find("<molecule") != TextView::npos || Head.find("<cml") != TextView::npos) return FileKind::Cml;
  bool Data = false;
  for (const TextView Line : Lines) {
    if (Line.starts_with("@<TRIPOS>")) return FileKind::Mol2;
    if (StartsWithAny(Line, {"M  END", "$$$$"})) return FileKind::Mol;
    if (StartsWithAny(Line, {"HETATM", "HEADER  ", "COMPND  ", "CRYST1", "ATOM   "}) && Line.size() > 10) {
      return FileKind::Pdb;
    }
    Data = Data || Line.starts_with("data_");
    if (Data && StartsWithAny(Line, {"_cell_", "_atom_", "_symmetry", "_space_group", "loop_"})) return FileKind::Cif;
  }
  return LooksLikeXyz(Lines) ? FileKind::Xyz : FileKind::Unknown;
}

Text PlainTitle(TextView Value) {
  Text Plain;
  for (const char C : Value) {
    const auto Code = static_cast<unsigned char>(C);
    if (Plain.size() == LongestTitle) break;
    if (Code >= 0x20 && Code != 0x7F) Plain += C;
    if (C == '\t') Plain += ' ';
  }
  const std::size_t Start = Plain.find_first_not_of(' ');
  if (Start == Text::npos) return {};
  return Plain.substr(Start, Plain.find_last_not_of(' ') - Start + 1);
}

RecordSource::~RecordSource() {
  if (File != nullptr && File != stdin) std::fclose(File);
  if (Child > 0) {
    kill(Child, SIGKILL);
    waitpid(Child, nullptr, 0);
  }
}

void OpenRecords(RecordSource& Source, const Text& Path) {
  if (Path == "-") {
    Source.File = stdin;
    Source.Kind = FileKind::Smiles;
    return;
  }
  Source.File = std::fopen(Path.c_str(), "re");
  if (Source.File == nullptr) throw Failure(FailureTextFromErrno(errno));
  RefuseFolder(Source.File);
  Source.Kind = KindOfEnding(Path);
  if (Source.Kind == FileKind::Unknown) Source.Kind = KindOfContent(ReadHead(Source.File));
  if (Source.Kind == FileKind::Unknown) throw Failure("the format of the file is not known", UnknownKind);
  if (const char* Format = ObabelName(Source.Kind)) ReadThroughObabel(Source, Format);
}

bool NextRecord(RecordSource& Source, Record& Next) {
  Next = {.Number = Source.Given + 1};
  if (Source.AtEnd) return false;
  bool Found = false;
  switch (Source.Kind) {
    case FileKind::Mol:
      Found = NextMol(Source, Next);
      break;
    case FileKind::Smiles:
      Found = NextSmiles(Source, Next);
      break;
    case FileKind::Mol2:
      Found = NextMol2(Source, Next);
      break;
    case FileKind::Pdb:
      Found = NextPdb(Source, Next);
      Source.AtEnd = true;
      break;
    case FileKind::Xyz:
      Found = NextXyz(Source, Next);
      break;
    default:
      break;
  }
  if (Found) ++Source.Given;
  return Found;
}

}  // namespace zelvanor::convert
