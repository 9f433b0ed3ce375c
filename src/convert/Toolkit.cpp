#include "convert/Toolkit.h"

#include <GraphMol/Depictor/RDDepictor.h>
#include <GraphMol/FileParsers/FileParsers.h>
#include <GraphMol/MolOps.h>
#include <GraphMol/MonomerInfo.h>
#include <GraphMol/PeriodicTable.h>
#include <GraphMol/RWMol.h>
#include <GraphMol/SmilesParse/SmilesParse.h>
#include <RDGeneral/RDLog.h>

#include <cmath>

#include "basic/TextTools.h"
#include "convert/Embedding.h"
#include "files/MoleculeTree.h"
#include "workspace/ElementData.h"

namespace zelvanor::convert {

namespace {

using Molecule = std::unique_ptr<RDKit::RWMol>;

constexpr Double Flatness = 1e-3;  // angstrom

// What went wrong, in one line: the toolkit's messages have several, and it counts atoms from 0.
Failure FailureOf(const std::exception& Problem) {
  if (const auto* Valence = dynamic_cast<const RDKit::AtomValenceException*>(&Problem)) {
    return Failure("atom " + std::to_string(Valence->getAtomIdx() + 1) + " has more bonds than it can have");
  }
  if (dynamic_cast<const RDKit::KekulizeException*>(&Problem) != nullptr) {
    return Failure("a ring cannot be aromatic: a hydrogen may be missing, as in [nH]");
  }
  Text Reason = PlainTitle(Problem.what());
  return Failure(Reason.empty() ? Text("the chemistry of it can't be understood") : Reason);
}

void NeedElements(const RDKit::ROMol& Whole) {
  for (const auto* Atom : Whole.atoms()) {
    if (Atom->getAtomicNum() == 0 || Atom->getAtomicNum() > 103) {
      throw Failure("atom " + std::to_string(Atom->getIdx() + 1) + " (" + Atom->getSymbol() + ") is no element");
    }
  }
  if (Whole.getNumAtoms() == 0) throw Failure("there are no atoms in it");
  if (Whole.getNumAtoms() > static_cast<unsigned>(MostAtoms)) throw Failure("there are more than 32000 atoms");
}

Molecule ReadSmiles(const Text& Content) {
  RDKit::SmilesParserParams Settings;
  Settings.removeHs = false;
  const Text Smiles(Content.substr(0, Content.find_first_of(TextSeparators)));
  if (Smiles.empty()) throw Failure("there is no SMILES");
  Molecule Whole(RDKit::SmilesToMol(Smiles, Settings));
  if (!Whole) throw Failure("it is no SMILES");
  return Whole;
}

bool AllZero(const RDKit::Conformer& Places) {
  const auto& All = Places.getPositions();
  return std::all_of(All.begin(), All.end(), [](const auto& P) { return P.lengthSq() < Flatness * Flatness; });
}

bool IsFlat(const RDKit::Conformer& Places) {
  const auto& All = Places.getPositions();
  return std::all_of(All.begin(), All.end(), [&](const auto& P) { return std::abs(P.z - All[0].z) < Flatness; });
}

template <class Test>
bool AnyAtom(const RDKit::ROMol& Whole, const Test& Holds) {
  for (const auto* Atom : Whole.atoms()) {
    if (Holds(*Atom)) return true;
  }
  return false;
}

// Whether flat places are those of a flat molecule: bonds have their lengths, and no atom has four neighbours.
bool IsTrueToScale(const RDKit::ROMol& Whole, const RDKit::Conformer& Places) {
  constexpr Double Shortest = 0.72;  // of the sum of the covalent radii
  constexpr Double Longest = 1.25;
  for (const auto* Bond : Whole.bonds()) {
    const Double Radii =
        CovalentRadius(Bond->getBeginAtom()->getAtomicNum()) + CovalentRadius(Bond->getEndAtom()->getAtomicNum());
    const Double Length =
        (Places.getAtomPos(Bond->getBeginAtomIdx()) - Places.getAtomPos(Bond->getEndAtomIdx())).length();
    if (Length < Shortest * Radii || Length > Longest * Radii) return false;
  }
  return !AnyAtom(Whole, [](const RDKit::Atom& Atom) { return Atom.getDegree() > 3; });
}

bool AsksForPlaces(const RDKit::ROMol& Whole, bool Drawing) {
  if (Whole.getNumConformers() == 0) return true;
  const RDKit::Conformer& Places = Whole.getConformer();
  if (AllZero(Places)) return Whole.getNumAtoms() > 1 || Whole.getAtomWithIdx(0)->getTotalNumHs() > 0;
  if (!IsFlat(Places)) return false;
  const bool Implied = AnyAtom(Whole, [](const RDKit::Atom& Atom) { return Atom.getTotalNumHs() > 0; });
  return Implied || Drawing || !IsTrueToScale(Whole, Places);
}

// Parts side by side along x, with a gap between their outermost atoms.
void MakeAllPlaces(RDKit::RWMol& Whole) {
  constexpr Double Gap = 4.0;  // angstrom
  std::vector<std::vector<int>> Members;
  const auto Parts = RDKit::MolOps::getMolFrags(Whole, false, nullptr, &Members);
  auto Places = std::make_unique<RDKit::Conformer>(Whole.getNumAtoms());
  Double Edge = 0;
  for (std::size_t P = 0; P < Parts.size(); ++P) {
    const auto Made = MakePlaces(*Parts[P]);
    const auto [Low, High] =
        std::minmax_element(Made.begin(), Made.end(), [](const auto& A, const auto& B) { return A.x < B.x; });
    const Double Shift = P == 0 ? 0 : Edge + Gap - Low->x;
    Edge = High->x + Shift;
    for (std::size_t K = 0; K < Made.size(); ++K) {
      Places->setAtomPos(static_cast<unsigned>(Members[P][K]), Made[K] + RDGeom::Point3D(Shift, 0, 0));
    }
  }
  Places->set3D(true);
  Whole.clearConformers();
  Whole.addConformer(Places.release(), true);
}

int OrderOf(const RDKit::Bond& Bond) {
  const Double Order = Bond.getBondTypeAsDouble();
  if (Order == 1.5) return AromaticOrder;
  return Order >= 3 ? TripleOrder : (Order >= 2 ? DoubleOrder : SingleOrder);
}

Text NameOf(const RDKit::Atom& Atom) {
  const auto* Monomer = Atom.getMonomerInfo();
  return Monomer == nullptr ? Text() : PlainTitle(Monomer->getName());
}

// Orders are those of a Kekulé form.
Structure StructureOf(const RDKit::RWMol& Given) {
  RDKit::RWMol Whole(Given);
  RDKit::MolOps::Kekulize(Whole, true);
  Structure Result;
  const RDKit::Conformer* Places = Whole.getNumConformers() > 0 ? &Whole.getConformer() : nullptr;
  for (const auto* Atom : Whole.atoms()) {
    StructureAtom Made{.Element = Atom->getAtomicNum(),
                       .Isotope = static_cast<int>(Atom->getIsotope()),
                       .Charge = Atom->getFormalCharge(),
                       .Name = NameOf(*Atom)};
    if (Places != nullptr) {
      const auto& At = Places->getAtomPos(Atom->getIdx());
      Made.Place = {At.x, At.y, At.z};
    }
    Result.Atoms.push_back(std::move(Made));
  }
  for (const auto* Bond : Whole.bonds()) {
    Result.Bonds.push_back(
        {static_cast<int>(Bond->getBeginAtomIdx()), static_cast<int>(Bond->getEndAtomIdx()), OrderOf(*Bond)});
  }
  return Result;
}

Molecule MoleculeOf(const Structure& Given) {
  auto Whole = std::make_unique<RDKit::RWMol>();
  auto Places = std::make_unique<RDKit::Conformer>(static_cast<unsigned>(Given.Count()));
  for (const StructureAtom& Atom : Given.Atoms) {
    auto Made = std::make_unique<RDKit::Atom>(Atom.Element);
    Made->setIsotope(static_cast<unsigned>(Atom.Isotope));
    Made->setFormalCharge(Atom.Charge);
    const unsigned Index = Whole->addAtom(Made.release(), false, true);
    Places->setAtomPos(Index, {Atom.Place[0], Atom.Place[1], Atom.Place[2]});
  }
  constexpr RDKit::Bond::BondType Types[] = {RDKit::Bond::SINGLE, RDKit::Bond::SINGLE, RDKit::Bond::DOUBLE,
                                             RDKit::Bond::TRIPLE, RDKit::Bond::AROMATIC};
  for (const StructureBond& Bond : Given.Bonds) {
    const auto First = static_cast<unsigned>(Bond.First);
    const auto Second = static_cast<unsigned>(Bond.Second);
    Whole->addBond(First, Second, Types[Bond.Order]);
    if (Bond.Order != AromaticOrder) continue;
    Whole->getBondBetweenAtoms(First, Second)->setIsAromatic(true);
    Whole->getAtomWithIdx(First)->setIsAromatic(true);
    Whole->getAtomWithIdx(Second)->setIsAromatic(true);
  }
  Whole->addConformer(Places.release(), true);
  RDKit::MolOps::sanitizeMol(*Whole);
  return Whole;
}

Molecule ParseMol(const Text& Content, bool Sanitize) {
  constexpr bool RemoveHs = false;
  constexpr bool Strict = false;
  Molecule Whole(RDKit::MolBlockToMol(Content, Sanitize, RemoveHs, Strict));
  if (!Whole) throw Failure("it is no molecule");
  NeedElements(*Whole);
  return Whole;
}

// Files that leave charges out, as those of ammonium, get them from the valences.
Molecule ReadMol(const Text& Content) {
  try {
    return ParseMol(Content, true);
  } catch (const RDKit::MolSanitizeException& Problem) {
    Structure Said = StructureOf(*ParseMol(Content, false));
    FindCharges(Said);
    try {
      return MoleculeOf(Said);
    } catch (const RDKit::MolSanitizeException&) {
      throw FailureOf(Problem);
    }
  }
}

Structure Complete(Molecule Whole, bool Drawing, bool Flat) {
  NeedElements(*Whole);
  if (Flat) {
    RDKit::MolOps::removeHs(*Whole);
    RDDepict::compute2DCoords(*Whole, nullptr, true);
    Structure Drawn = StructureOf(*Whole);
    for (const auto* Atom : Whole->atoms()) {
      Drawn.Atoms[Atom->getIdx()].Hydrogens = static_cast<int>(Atom->getTotalNumHs());
    }
    return Drawn;
  }
  const bool Make = AsksForPlaces(*Whole, Drawing);
  RDKit::MolOps::addHs(*Whole, false, !Make);
  NeedElements(*Whole);
  if (Make) MakeAllPlaces(*Whole);
  return StructureOf(*Whole);
}

// Names and partial charges of the file, whose atoms come first.
void CopyWhatIsSaid(const Structure& Said, Structure& Whole) {
  for (std::size_t K = 0; K < Said.Atoms.size(); ++K) {
    Whole.Atoms[K].Name = Said.Atoms[K].Name;
    Whole.Atoms[K].Partial = Said.Atoms[K].Partial;
  }
}

bool HasPlaces(const Structure& Said) {
  return Said.Count() == 1 || std::any_of(Said.Atoms.begin(), Said.Atoms.end(), [](const StructureAtom& Atom) {
           return std::abs(Atom.Place[0]) + std::abs(Atom.Place[1]) + std::abs(Atom.Place[2]) > Flatness;
         });
}

bool HasAromatic(const Structure& Said) {
  return std::any_of(Said.Bonds.begin(), Said.Bonds.end(),
                     [](const StructureBond& Bond) { return Bond.Order == AromaticOrder; });
}

// What our own readers give. With hydrogens and places there, only orders and charges may be missing.
Structure CompleteOwn(FileKind Kind, const Text& Content, bool Flat) {
  Structure Said =
      Kind == FileKind::Mol2 ? ReadMol2(Content) : (Kind == FileKind::Pdb ? ReadPdb(Content) : ReadXyz(Content));
  CheckPlaces(Said);
  if (Kind != FileKind::Mol2) AddBonds(Said);
  if (HasHydrogens(Said) && HasPlaces(Said)) {
    if (Kind != FileKind::Mol2 || HasAromatic(Said)) FindOrders(Said);
    FindCharges(Said);
    return Flat ? Complete(MoleculeOf(Said), false, true) : Said;
  }
  Molecule Whole(Kind == FileKind::Pdb ? RDKit::PDBBlockToMol(Content, true, false) : MoleculeOf(Said).release());
  if (!Whole) throw Failure("it is no molecule");
  Structure Made = Complete(std::move(Whole), false, Flat);
  if (Kind != FileKind::Pdb && !Flat) CopyWhatIsSaid(Said, Made);
  Made.Title = Said.Title;
  return Made;
}

// The second line of a mol block ends with the dimension in columns 21 and 22.
bool IsDrawing(const Text& Content) {
  const std::size_t First = Content.find('\n');
  return First != Text::npos &&
         Content.substr(First + 1, Content.find('\n', First + 1) - First - 1).find("2D") != Text::npos;
}

}  // namespace

void SilenceToolkit() {
  RDLog::InitLogs();
  boost::logging::disable_logs("rdApp.*");
}

Structure ConvertRecord(FileKind Kind, const Record& Given, bool Flat) {
  if (!Given.Problem.empty()) throw Failure(Given.Problem);
  try {
    Structure Whole;
    if (Kind == FileKind::Mol) {
      Whole = Complete(ReadMol(Given.Content), IsDrawing(Given.Content), Flat);
      Whole.Notes = ReadFields(Given.Content);
    } else if (Kind == FileKind::Smiles) {
      Whole = Complete(ReadSmiles(Given.Content), false, Flat);
    } else {
      Whole = CompleteOwn(Kind, Given.Content, Flat);
    }
    Whole.Title = Given.Title;
    const int Stated = Whole.Charge;
    SumCharges(Whole);
    if (Stated != 0) Whole.Charge = Stated;
    if (Flat) return Whole;
    CheckPlaces(Whole);
    MarkAromatic(Whole);
    return Whole;
  } catch (const std::bad_alloc&) {
    throw Failure("it takes more memory than it may");
  } catch (const std::exception& Problem) {
    throw FailureOf(Problem);
  }
}

Text FormulaOfRecord(FileKind Kind, const Record& Given) {
  try {
    if (!Given.Problem.empty()) return {};
    Structure Whole;
    if (Kind == FileKind::Mol || Kind == FileKind::Smiles) {
      Molecule Read = Kind == FileKind::Mol ? ReadMol(Given.Content) : ReadSmiles(Given.Content);
      RDKit::MolOps::addHs(*Read);
      Whole = StructureOf(*Read);
    } else {
      Whole = Kind == FileKind::Mol2 ? ReadMol2(Given.Content)
                                     : (Kind == FileKind::Pdb ? ReadPdb(Given.Content) : ReadXyz(Given.Content));
    }
    SumCharges(Whole);
    return FormulaOf(Whole);
  } catch (const std::exception&) {
    return {};
  } catch (const Failure&) {
    return {};
  }
}

}  // namespace zelvanor::convert
