#include <unistd.h>

#include <cstdio>

#include "convert/Options.h"
#include "convert/Records.h"
#include "convert/Toolkit.h"
#include "convert/Worker.h"

namespace zelvanor::convert {

namespace {

constexpr int RecordFailed = 1;
constexpr int CannotRun = 2;

int Complain(const Text& Reason, int Status) {
  std::fprintf(stderr, "zelvanor-convert: %s\n", Reason.c_str());
  return Status;
}

int ComplainOf(const Text& Input, const Record& Given, const Text& Reason) {
  const Text Name = Given.Title.empty() ? Text() : " (" + Given.Title + ")";
  return Complain(Input + " record " + std::to_string(Given.Number) + Name + ": " + PlainTitle(Reason), RecordFailed);
}

// Whole or not at all: written beside its place and renamed.
void PutOut(const Options& Given, const Text& Content) {
  if (Given.Output.empty() || Given.Does != Work::One) {
    std::fwrite(Content.data(), 1, Content.size(), stdout);
    if (std::fflush(stdout) != 0) throw Failure("standard output can't be written");
    return;
  }
  const Text Beside = Given.Output + ".part" + std::to_string(getpid());
  std::FILE* File = std::fopen(Beside.c_str(), "we");
  if (File == nullptr) throw Failure(Given.Output + " can't be written");
  const bool Written = std::fwrite(Content.data(), 1, Content.size(), File) == Content.size();
  if (std::fclose(File) != 0 || !Written || std::rename(Beside.c_str(), Given.Output.c_str()) != 0) {
    std::remove(Beside.c_str());
    throw Failure(Given.Output + " can't be written");
  }
}

Outcome Convert(const Options& Given, FileKind Kind, const Record& Next) {
  Text Source = Given.Source;
  if (Source.empty()) {
    Source = Given.Smiles.empty() ? Given.Input + ", record " + std::to_string(Next.Number) : Given.Smiles;
  }
  return DoApart([&] { return HostTextOf(ConvertRecord(Kind, Next, Given.Flat), Source); }, Given.Seconds);
}

int ConvertOne(const Options& Given, FileKind Kind, const Record& Next) {
  const Outcome Made = Convert(Given, Kind, Next);
  if (!Made.Problem.empty()) return ComplainOf(Given.Smiles.empty() ? Given.Input : Given.Smiles, Next, Made.Problem);
  PutOut(Given, Made.Output);
  return 0;
}

int ConvertAll(const Options& Given, RecordSource& Source) {
  int Status = 0;
  Record Next;
  while (NextRecord(Source, Next)) {
    const Outcome Made = Convert(Given, Source.Kind, Next);
    const Text Number = std::to_string(Next.Number);
    if (!Made.Problem.empty()) {
      Status = ComplainOf(Given.Input, Next, Made.Problem);
      continue;
    }
    PutOut(Given, "; Record " + Number + " " + Next.Title + "\n");
    PutOut(Given, Made.Output);
    PutOut(Given, "; End " + Number + "\n");
  }
  return Source.Given == 0 ? Complain(Given.Input + ": there is no molecule in it", RecordFailed) : Status;
}

// A toolkit that crashes over one record costs the formulas of that one.
int ListAll(const Options& Given, RecordSource& Source) {
  constexpr std::size_t Together = 256;
  std::vector<Record> Some;
  const auto Show = [&] {
    const auto FormulaAt = [&](std::size_t K) { return FormulaOfRecord(Source.Kind, Some[K]); };
    const Outcome All = DoApart(
        [&] {
          Text Formulas;
          for (std::size_t K = 0; K < Some.size(); ++K) Formulas += FormulaAt(K) + "\n";
          return Formulas;
        },
        Given.Seconds);
    Text Rest = All.Output;
    for (std::size_t K = 0; K < Some.size(); ++K) {
      Text Formula;
      if (All.Problem.empty()) {
        Formula = Rest.substr(0, Rest.find('\n'));
        Rest.erase(0, Formula.size() + 1);
      } else {
        Formula = DoApart([&] { return FormulaAt(K) + " "; }, 1).Output;
      }
      std::printf("%ld\t%s\t%s\n", long{Some[K].Number}, Some[K].Title.c_str(), Formula.c_str());
    }
    std::fflush(stdout);
    Some.clear();
  };
  Record Next;
  while (NextRecord(Source, Next)) {
    Some.push_back(std::move(Next));
    if (Some.size() == Together) Show();
  }
  Show();
  return Source.Given == 0 ? Complain(Given.Input + ": there is no molecule in it", RecordFailed) : 0;
}

int ConvertFile(const Options& Given) {
  RecordSource Source;
  try {
    OpenRecords(Source, Given.Input);
  } catch (const Failure& Problem) {
    return Complain(Given.Input + ": " + Problem.What, Problem.Number == UnknownKind ? UnknownKind : CannotRun);
  }
  if (Given.Does != Work::One) {
    const Text Beside = Given.Output + ".part" + std::to_string(getpid());
    if (!Given.Output.empty() && std::freopen(Beside.c_str(), "we", stdout) == nullptr) {
      throw Failure(Given.Output + " can't be written");
    }
    const int Status = Given.Does == Work::List ? ListAll(Given, Source) : ConvertAll(Given, Source);
    if (std::fflush(stdout) == 0 && (Given.Output.empty() || std::rename(Beside.c_str(), Given.Output.c_str()) == 0)) {
      return Status;
    }
    throw Failure("the output can't be written");
  }
  Record Next;
  while (NextRecord(Source, Next)) {
    if (Next.Number == Given.Record) return ConvertOne(Given, Source.Kind, Next);
  }
  if (Source.Given == 0) return Complain(Given.Input + ": there is no molecule in it", RecordFailed);
  return Complain(Given.Input + ": it has " + std::to_string(Source.Given) + " records, none has the number " +
                      std::to_string(Given.Record),
                  RecordFailed);
}

}  // namespace

int Run(const std::vector<Text>& Words) {
  try {
    const Options Given = ReadOptions(Words);
    if (Given.Help || Given.Version) {
      std::fputs(Given.Help ? Usage : "zelvanor-convert " ZELVANOR_VERSION "\n", stdout);
      return 0;
    }
    if (!Given.Messages.empty() && std::freopen(Given.Messages.c_str(), "w", stderr) == nullptr) return CannotRun;
    SilenceToolkit();
    if (Given.Smiles.empty()) return ConvertFile(Given);
    return ConvertOne(Given, FileKind::Smiles, {.Number = 1, .Content = Given.Smiles});
  } catch (const Failure& Problem) {
    return Complain(Problem.What, CannotRun);
  }
}

}  // namespace zelvanor::convert

int main(int Count, char** Words) {
  const int Status = zelvanor::convert::Run({Words + 1, Words + Count});
  // The toolkit's leave-taking takes longer than a small molecule.
  std::fflush(nullptr);
  _exit(Status);
}
