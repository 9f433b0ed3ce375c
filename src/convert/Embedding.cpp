// Distance geometry with experimental torsion knowledge (ETKDG version 3: S. Wang, J. Witte, G. A. Landrum, S. Riniker,
// J. Chem. Inf. Model. 2020, 60, 2044), then a minimum of the MMFF94 force field, or of UFF where an atom has no MMFF94
// type. Both depend on the order of the atoms, so they work on a copy in canonical order. Rings that can be puckered in
// several ways get the lowest of a few minima: couplings go by their torsion angles, and a boat would be taken as one.

#include "convert/Embedding.h"

#include <GraphMol/DistGeomHelpers/Embedder.h>
#include <GraphMol/ForceFieldHelpers/MMFF/MMFF.h>
#include <GraphMol/ForceFieldHelpers/UFF/UFF.h>
#include <GraphMol/MolOps.h>
#include <GraphMol/RWMol.h>
#include <GraphMol/SmilesParse/SmilesParse.h>
#include <GraphMol/SmilesParse/SmilesWrite.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "basic/Failure.h"

namespace zelvanor::convert {

namespace {

constexpr int Seed = 20202;
constexpr const char* Origin = "origin";  // property: the atom's index before

bool TryEmbed(RDKit::ROMol& Whole, int Attempt, bool RandomStart, bool Knowledge) {
  auto Settings = Knowledge ? RDKit::DGeomHelpers::ETKDGv3 : RDKit::DGeomHelpers::ETDG;
  Settings.randomSeed = Seed + Attempt;
  Settings.useRandomCoords = RandomStart;
  Settings.maxIterations = 40;
  Settings.numThreads = 1;
  return RDKit::DGeomHelpers::EmbedMolecule(Whole, Settings) >= 0;
}

// Moves the atoms to a minimum of the force field; its energy, kcal/mol.
double CleanUp(RDKit::ROMol& Whole) {
  constexpr int Steps = 1000;
  RDKit::MMFF::MMFFMolProperties Types(Whole);
  return Types.isValid() ? RDKit::MMFF::MMFFOptimizeMolecule(Whole, Steps).second
                         : RDKit::UFF::UFFOptimizeMolecule(Whole, Steps).second;
}

// Leaves Energy alone where the molecule is hard to place, or has no force field.
bool Embed(RDKit::ROMol& Whole, int Attempt, double& Energy) {
  const bool IsEasy = TryEmbed(Whole, Attempt, false, true);
  if (!IsEasy && (Attempt > 0 || (!TryEmbed(Whole, 0, true, true) && !TryEmbed(Whole, 0, true, false)))) return false;
  try {
    const double Found = CleanUp(Whole);
    if (IsEasy) Energy = Found;
  } catch (const std::exception&) {
    // Without a force field the places of the distance geometry stand.
  }
  return true;
}

// How many minima are looked at: fewer of large molecules, by the time they take.
int CountAttempts(const RDKit::ROMol& Whole) {
  constexpr unsigned Most = 10;
  constexpr unsigned AtomsInAll = 300;
  bool CanPucker = false;
  for (const auto* Each : Whole.atoms()) {
    CanPucker = CanPucker ||
                (Each->getHybridization() == RDKit::Atom::SP3 && Whole.getRingInfo()->numAtomRings(Each->getIdx()) > 0);
  }
  return CanPucker ? static_cast<int>(std::clamp(AtomsInAll / Whole.getNumAtoms(), 1U, Most)) : 1;
}

bool Embed(RDKit::ROMol& Whole) {
  if (Whole.getNumAtoms() == 1) {
    Whole.addConformer(new RDKit::Conformer(1), true);
    return true;
  }
  double Lowest = std::numeric_limits<double>::infinity();
  if (!Embed(Whole, 0, Lowest)) return false;
  RDKit::Conformer Best(Whole.getConformer());
  const int NumAttempts = std::isfinite(Lowest) ? CountAttempts(Whole) : 1;
  for (int Attempt = 1; Attempt < NumAttempts; ++Attempt) {
    double Energy = std::numeric_limits<double>::infinity();
    constexpr double Noise = 1e-3;  // kcal/mol; equal minima are found more than once
    if (!Embed(Whole, Attempt, Energy) || !(Energy < Lowest - Noise)) continue;
    Lowest = Energy;
    Best = Whole.getConformer();
  }
  Whole.clearConformers();
  Whole.addConformer(new RDKit::Conformer(Best), true);
  return true;
}

std::vector<unsigned> HydrogensOf(const RDKit::ROMol& Whole, unsigned Atom, const std::vector<bool>& Known) {
  std::vector<unsigned> Found;
  for (const auto* Next : Whole.atomNeighbors(Whole.getAtomWithIdx(Atom))) {
    if (Next->getAtomicNum() == 1 && !Known[Next->getIdx()]) Found.push_back(Next->getIdx());
  }
  std::sort(Found.begin(), Found.end());
  return Found;
}

// The molecule from its canonical SMILES, and for each atom of that its index in the original; empty where the two do
// not fit.
struct Canonical {
  std::unique_ptr<RDKit::RWMol> Whole;
  std::vector<unsigned> Original;
};

Canonical MakeCanonical(const RDKit::ROMol& Part) {
  RDKit::RWMol Heavy(Part);
  for (auto* Atom : Heavy.atoms()) Atom->setProp(Origin, Atom->getIdx());
  RDKit::MolOps::removeHs(Heavy);
  const std::string Smiles = RDKit::MolToSmiles(Heavy);
  const auto Order = Heavy.getProp<std::vector<unsigned>>(RDKit::common_properties::_smilesAtomOutputOrder);
  RDKit::SmilesParserParams Settings;
  Settings.removeHs = false;
  Canonical Result;
  Result.Whole.reset(RDKit::SmilesToMol(Smiles, Settings));
  if (!Result.Whole || Result.Whole->getNumAtoms() != Order.size()) return {};
  for (const unsigned Index : Order) {
    Result.Original.push_back(Heavy.getAtomWithIdx(Index)->getProp<unsigned>(Origin));
  }
  RDKit::MolOps::addHs(*Result.Whole);
  if (Result.Whole->getNumAtoms() != Part.getNumAtoms()) return {};
  return Result;
}

// Hydrogens of an atom are dealt out in the order of both.
bool TakePlaces(const Canonical& Made, const RDKit::ROMol& Part, std::vector<RDGeom::Point3D>& Places) {
  const auto& Found = Made.Whole->getConformer();
  std::vector<bool> Placed(Part.getNumAtoms());
  std::vector<bool> Used(Part.getNumAtoms());
  Places.resize(Part.getNumAtoms());
  for (unsigned K = 0; K < Made.Original.size(); ++K) {
    Places[Made.Original[K]] = Found.getAtomPos(K);
    Placed[Made.Original[K]] = Used[K] = true;
  }
  for (unsigned K = 0; K < Made.Original.size(); ++K) {
    const auto From = HydrogensOf(*Made.Whole, K, Used);
    const auto To = HydrogensOf(Part, Made.Original[K], Placed);
    if (From.size() != To.size()) return false;
    for (std::size_t H = 0; H < To.size(); ++H) {
      Places[To[H]] = Found.getAtomPos(From[H]);
      Placed[To[H]] = true;
    }
  }
  return std::all_of(Placed.begin(), Placed.end(), [](bool Done) { return Done; });
}

}  // namespace

std::vector<RDGeom::Point3D> MakePlaces(const RDKit::ROMol& Part) {
  if (Part.getNumAtoms() > MostMadeAtoms) {
    throw Failure("it has no coordinates, and " + std::to_string(Part.getNumAtoms()) +
                  " atoms are too many to make them (at most 1500)");
  }
  std::vector<RDGeom::Point3D> Places;
  try {
    const Canonical Made = MakeCanonical(Part);
    if (Made.Whole && Embed(*Made.Whole) && TakePlaces(Made, Part, Places)) return Places;
  } catch (const std::exception&) {
    // What can't be written as SMILES is tried as it stands.
  }
  RDKit::RWMol Whole(Part);
  Whole.clearConformers();
  if (!Embed(Whole)) throw Failure("no coordinates can be made for it");
  return Whole.getConformer().getPositions();
}

}  // namespace zelvanor::convert
