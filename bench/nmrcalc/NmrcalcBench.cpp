// The backend as a whole command, process start included, against its promises; and the plain way, a diagonalisation of
// all 2^N states with nothing conserved made use of, as the floor that the promises are compared with.

#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "nmrcalc/input/InputText.h"
#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Spectrum.h"

namespace {

using nmrcalc::SpectrumInput;

constexpr double Field = 100.0;  // MHz

// Random systems with shifts over 200 Hz and couplings up to 15 Hz: nothing is first order. Sites of different parts
// are not coupled.
SpectrumInput MakeSystem(const std::vector<int>& Degeneracies, std::size_t SitesPerPart) {
  std::minstd_rand Generator(7);
  const auto Uniform = [&Generator] { return double(Generator()) / double(std::minstd_rand::max()); };
  SpectrumInput Input;
  Input.Field = Field;
  Input.MinimalIntensity = 0.1;
  const std::size_t NumSites = Degeneracies.size();
  Input.Coupling.assign(NumSites * NumSites, 0.0);
  for (std::size_t Site = 0; Site < NumSites; ++Site) {
    Input.Sites.push_back({.Degeneracy = Degeneracies[Site], .Shift = 1.0 + 2.0 * Uniform()});
    for (std::size_t Other = 0; Other < Site; ++Other) {
      const double J = 17.0 * Uniform() - 2.0;
      if (Site / SitesPerPart != Other / SitesPerPart) continue;
      Input.Coupling[Site * NumSites + Other] = Input.Coupling[Other * NumSites + Site] = J;
    }
  }
  nmrcalc::FindObservedSites(Input);
  return Input;
}

void WriteInput(const SpectrumInput& Input, const std::string& Directory) {
  std::ofstream File(Directory + "/nmrspect.in", std::ios::binary);
  File << "Description of NMR shielding and coupling constants\r\n " << Input.Sites.size() << " \r\n";
  for (const auto& Site : Input.Sites) File << Site.AtomicNumber << " ";
  File << " ";
  for (const auto& Site : Input.Sites) File << Site.Degeneracy << " ";
  File << " \r\nFIELD\r\n " << Input.Field << " \r\nSHIELDING\r\n";
  for (const auto& Site : Input.Sites) File << nmrcalc::FixedNumber(Site.Shift, 3) << " ";
  File << "\r\nCOUPLING\r\n";
  for (std::size_t Row = 0; Row < Input.Sites.size(); ++Row) {
    for (std::size_t Column = 0; Column < Input.Sites.size(); ++Column) {
      File << nmrcalc::FixedNumber(Input.J(Row, Column), 3) << " ";
    }
    File << "\r\n";
  }
  File << "MINIMALINTENSITY\r\n"
       << nmrcalc::FixedNumber(Input.MinimalIntensity, 5) << "\r\nWEAKCOUPLINGAPPROXIMATION\r\n"
       << (Input.WeakCoupling ? 1 : 0) << "\r\n";
}

void RunCommand(benchmark::State& State, const SpectrumInput& Input) {
  const std::string Directory = std::filesystem::temp_directory_path() / "nmrcalc-bench";
  std::filesystem::create_directories(Directory);
  WriteInput(Input, Directory);
  for (auto Unused : State) {
    char* const Arguments[] = {const_cast<char*>(NMRCALC_PROGRAM), const_cast<char*>("."),
                               const_cast<char*>(Directory.c_str()), const_cast<char*>("2"), nullptr};
    pid_t Process = 0;
    int Status = 1;
    if (posix_spawn(&Process, NMRCALC_PROGRAM, nullptr, nullptr, Arguments, environ) == 0) waitpid(Process, &Status, 0);
    if (Status != 0) State.SkipWithError("the program failed");
  }
  State.counters["lines"] = std::stod(nmrcalc::ReadTextFile(Directory + "/nmrspect.out").Lines.at(1));
  rusage Used{};
  getrusage(RUSAGE_CHILDREN, &Used);
  State.counters["MiB"] = static_cast<double>(Used.ru_maxrss) / 1024;  // the largest of all commands so far
  std::filesystem::remove_all(Directory);
}

void BM_StronglyCoupled(benchmark::State& State) {
  const auto NumSpins = static_cast<std::size_t>(State.range(0));
  RunCommand(State, MakeSystem(std::vector<int>(NumSpins, 1), NumSpins));
}
BENCHMARK(BM_StronglyCoupled)->Arg(6)->Arg(8)->Arg(10)->Arg(12)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_StronglyCoupled)->Arg(14)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_TenPartsOfEight(benchmark::State& State) { RunCommand(State, MakeSystem(std::vector<int>(80, 1), 8)); }
BENCHMARK(BM_TenPartsOfEight)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_IsopropylLike(benchmark::State& State) { RunCommand(State, MakeSystem({6, 1}, 2)); }
BENCHMARK(BM_IsopropylLike)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_TertButyl(benchmark::State& State) { RunCommand(State, MakeSystem({9, 2, 1}, 3)); }
BENCHMARK(BM_TertButyl)->Unit(benchmark::kMillisecond)->UseRealTime();

// Thirty sites in a chain, each coupled to the four nearest.
void BM_WeakCouplingOfThirty(benchmark::State& State) {
  SpectrumInput Input = MakeSystem(std::vector<int>(30, 1), 30);
  for (std::size_t Row = 0; Row < 30; ++Row) {
    for (std::size_t Column = 0; Column < 30; ++Column) {
      if (Row > Column + 2 || Column > Row + 2) Input.Coupling[Row * 30 + Column] = 0.0;
    }
  }
  Input.WeakCoupling = true;
  RunCommand(State, Input);
}
BENCHMARK(BM_WeakCouplingOfThirty)->Unit(benchmark::kMillisecond)->UseRealTime();

// The floor: one 2^N x 2^N matrix, and the moments of all pairs of its states.
void BM_PlainFullDiagonalization(benchmark::State& State) {
  const auto NumSpins = static_cast<std::size_t>(State.range(0));
  const SpectrumInput Input = MakeSystem(std::vector<int>(NumSpins, 1), NumSpins);
  const std::size_t NumStates = std::size_t{1} << NumSpins;
  nmrcalc::UseOneLibraryThread();
  for (auto Unused : State) {
    std::vector<double> Matrix(NumStates * NumStates);
    std::vector<double> Raising(NumStates * NumStates);
    for (std::size_t Place = 0; Place < NumStates; ++Place) {
      for (std::size_t I = 0; I < NumSpins; ++I) {
        Matrix[Place * NumStates + Place] += ((Place >> I & 1) != 0 ? 0.5 : -0.5) * Input.Sites[I].Frequency;
        if ((Place >> I & 1) == 0) Raising[Place * NumStates + (Place | std::size_t{1} << I)] = 1.0;
        for (std::size_t K = 0; K < I; ++K) {
          const bool Parallel = (Place >> I & 1) == (Place >> K & 1);
          Matrix[Place * NumStates + Place] += Input.J(I, K) * (Parallel ? 0.25 : -0.25);
          if (!Parallel) {
            Matrix[Place * NumStates + (Place ^ std::size_t{1} << I ^ std::size_t{1} << K)] += 0.5 * Input.J(I, K);
          }
        }
      }
    }
    std::vector<double> Energies;
    nmrcalc::DiagonalizeSymmetric(Matrix, NumStates, Energies);
    std::vector<double> Half(NumStates * NumStates);
    std::vector<double> Moments(NumStates * NumStates);
    nmrcalc::MultiplyTransposed(Raising.data(), Matrix.data(), Half.data(), NumStates, NumStates, NumStates);
    nmrcalc::MultiplyTransposed(Matrix.data(), Half.data(), Moments.data(), NumStates, NumStates, NumStates);
    benchmark::DoNotOptimize(Moments.data());
  }
}
BENCHMARK(BM_PlainFullDiagonalization)->Arg(6)->Arg(8)->Arg(10)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_PlainFullDiagonalization)->Arg(12)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
