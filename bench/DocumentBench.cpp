#include <benchmark/benchmark.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "files/HostText.h"
#include "platform/TextFiles.h"
#include "platform/posix/PosixServices.h"
#include "workspace/Workspace.h"

// Reading and writing a system of 32,000 atoms beside the floor: the same text split into its words and its numbers
// converted, or its numbers formatted, and nothing else. The promise is three times the floor.

namespace zelvanor {
namespace {

constexpr int NumAtoms = 32000;

struct SystemFile {
  Text Folder = (std::filesystem::temp_directory_path() / ("zelvanor-bench-" + std::to_string(getpid()))).string();
  Text HostText = Folder + "/system.mvs";
  Text Document = Folder + "/system.nmr";
  Text Output = Folder + "/output";

  SystemFile() {
    UsePosixServices();
    std::filesystem::create_directories(Folder);
    Text Content = "forcefield amber\r\nmol 1\r\n";
    char Line[200];
    for (int Atom = 1; Atom <= NumAtoms; ++Atom) {
      const int Next = Atom % NumAtoms + 1;
      const int Before = (Atom + NumAtoms - 2) % NumAtoms + 1;
      std::snprintf(Line, sizeof Line, "atom %d C%d C CT - %.4f %.3f %.3f %.3f 2 %d s %d s\r\n", Atom, Atom % 1000,
                    (Atom % 200 - 100) * 0.001, Atom * 0.0137, 100 - Atom * 0.0171, (Atom % 977) * 0.113, Next, Before);
      Content += Line;
    }
    Content += "endmol 1\r\n";
    std::ofstream(HostText, std::ios::binary) << Content;
    std::ofstream(Document, std::ios::binary)
        << "BeginMVS\r\n"
        << Content
        << "EndMVS\r\nNMRSelectionBegin\r\n0\r\nx\r\nQuantumSelectionBegin\r\n0\r\nx\r\nEquivalentAtomsBegin\r\n"
           "EquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n0\r\nx\r\n";
  }
  ~SystemFile() { std::filesystem::remove_all(Folder); }
};

const SystemFile& System() {
  static const SystemFile File;
  return File;
}

void Fail(benchmark::State& State, Flag Result) {
  if (!IsSet(Result)) State.SkipWithError("the system was not read or written");
}

void ReadHostText(benchmark::State& State) {
  for (auto _ : State) {
    Fail(State, ReadHostFile(System().HostText));
    Fail(State, ParseHostText(System().HostText));
  }
}

void ReadSystemDocument(benchmark::State& State) {
  for (auto _ : State) Fail(State, ReadDocument(System().Document));
}

// The lines of the text in memory are cut at blanks, and every word that is a number is converted.
void ReadFloor(benchmark::State& State) {
  std::ifstream Stream(System().HostText, std::ios::binary);
  const Text Content((std::istreambuf_iterator<char>(Stream)), std::istreambuf_iterator<char>());
  for (auto _ : State) {
    double Sum = 0;
    const char* Place = Content.data();
    const char* const End = Place + Content.size();
    while (Place != End) {
      while (Place != End && (*Place == ' ' || *Place == '\r' || *Place == '\n')) ++Place;
      const char* const First = Place;
      while (Place != End && *Place != ' ' && *Place != '\r' && *Place != '\n') ++Place;
      double Value = 0;
      if (First != Place && (*First == '-' || (*First >= '0' && *First <= '9'))) std::from_chars(First, Place, Value);
      Sum += Value;
    }
    benchmark::DoNotOptimize(Sum);
  }
}

// Writes the present system once.
void WriteOnce(benchmark::State& State, Flag (*Write)(Integer)) {
  const Integer File = FreeFile();
  OpenForOutput(System().Output, File);
  Fail(State, Write(File));
  CloseFile(File);
}

void WriteStoredLines(benchmark::State& State) {
  Fail(State, ReadHostFile(System().HostText));
  Fail(State, ParseHostText(System().HostText));
  for (auto _ : State) WriteOnce(State, WriteHostText);
}

void WriteAtomTable(benchmark::State& State) {
  Fail(State, ReadHostFile(System().HostText));
  Fail(State, ParseHostText(System().HostText));
  for (auto _ : State) WriteOnce(State, WriteConvertedHostText);
}

// The numbers of all atom lines at seven digits, as one text in memory.
void WriteFloor(benchmark::State& State) {
  Fail(State, ReadHostFile(System().HostText));
  Fail(State, ParseHostText(System().HostText));
  const WorkspaceState& W = Workspace;
  for (auto _ : State) {
    Text Content;
    char Buffer[64];
    const auto Put = [&](auto Value) {
      char* Stop = nullptr;
      if constexpr (std::is_same_v<decltype(Value), int>) {
        Stop = std::to_chars(Buffer, Buffer + sizeof Buffer, Value).ptr;
      } else {
        Stop = std::to_chars(Buffer, Buffer + sizeof Buffer, Value, std::chars_format::general, 7).ptr;
      }
      *Stop++ = ' ';
      Content.append(Buffer, Stop);
    };
    for (int Atom = 0; Atom < NumAtoms; ++Atom) {
      Put(int(W.AtomNumber[Atom]));
      for (const Single Value : {W.AtomCharge[Atom], W.AtomX[Atom], W.AtomY[Atom], W.AtomZ[Atom]}) Put(Value);
      Put(int(W.AtomCoordination[Atom]));
      Put(int(W.AtomNeighbour(Atom, 0)) + 1);
      Put(int(W.AtomNeighbour(Atom, 1)) + 1);
    }
    benchmark::DoNotOptimize(Content.data());
  }
}

BENCHMARK(ReadFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadHostText)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadSystemDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteStoredLines)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteAtomTable)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zelvanor
