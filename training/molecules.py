"""The data sets as molecules: reading, splitting, writing them for nmrcalc-features. See README.md for the files."""
import collections
import csv
import gzip
import hashlib
import json
import os

import numpy as np
from rdkit import Chem, RDLogger
from rdkit.Chem import AllChem

RDLogger.DisableLog("rdApp.*")
NUCLEI = ["13C", "31P", "19F", "11B", "15N", "17O", "29Si", "195Pt"]  # outputs of the model, besides 1H
ELEMENTS = [6, 15, 9, 5, 7, 8, 14, 78]
BOND_ORDERS = {Chem.BondType.SINGLE: 1, Chem.BondType.DOUBLE: 2, Chem.BondType.TRIPLE: 3, Chem.BondType.AROMATIC: 4}
LARGEST_EMBEDDED = 70  # heavy atoms
VALIDATION_SHARE = 20  # one molecule of so many judges


def structures(data, name):
    """Id, molecule with hydrogens and places of exp13c and dft."""
    for molecule in Chem.ForwardSDMolSupplier(gzip.open(os.path.join(data, name + ".sdf.gz")), removeHs=False):
        if molecule is not None:
            yield int(molecule.GetProp("_Name")), molecule, molecule.GetConformer().GetPositions()


def assigned(data, name):
    """Id -> list of (atom, element, ppm)."""
    values = collections.defaultdict(list)
    for row in csv.DictReader(gzip.open(os.path.join(data, name + ".csv.gz"), "rt")):
        values[int(row["mol_id"])].append((int(row["atom_index"]), int(row["atomic_number"]), float(row["shift_ppm"])))
    return values


def listed(data):
    """The records of measured lists."""
    with gzip.open(os.path.join(data, "lists.jsonl.gz"), "rt") as lines:
        for line in lines:
            yield json.loads(line)


def constitution(molecule):
    molecule = Chem.RemoveHs(Chem.Mol(molecule))
    Chem.RemoveStereochemistry(molecule)
    return Chem.MolToSmiles(molecule)


def split(pairs):
    """Id -> whether it judges, from (id, constitution). Records of one id or one constitution stay together."""
    parent = {}

    def find(key):
        while parent.setdefault(key, key) != key:
            parent[key] = parent[parent[key]]
            key = parent[key]
        return key

    for ident, text in pairs:
        first, second = find(ident), find(text)
        if first != second:
            parent[first] = second
    lowest = {}
    for ident, _ in pairs:
        family = find(ident)
        lowest[family] = min(lowest.get(family, ident), ident)

    def judges(ident):
        return int(hashlib.md5(str(lowest[find(ident)]).encode()).hexdigest(), 16) % VALIDATION_SHARE == 0

    return {ident: judges(ident) for ident, _ in pairs}


def embed(molecule, seed, minimise):
    """Places of a newly made geometry, or None."""
    if molecule.GetNumHeavyAtoms() > LARGEST_EMBEDDED:
        return None
    molecule = Chem.Mol(molecule)
    options = AllChem.ETKDGv3()
    options.randomSeed = seed
    options.maxIterations = 4
    try:
        if AllChem.EmbedMolecule(molecule, options) < 0:
            return None
        if minimise and AllChem.MMFFHasAllMoleculeParams(molecule):
            AllChem.MMFFOptimizeMolecule(molecule, maxIters=80)
        elif minimise:
            AllChem.UFFOptimizeMolecule(molecule, maxIters=80)
    except (RuntimeError, ValueError):
        pass  # an element that the force field does not know; the places stay as embedded
    if molecule.GetNumConformers() == 0:
        return None
    places = molecule.GetConformer().GetPositions()
    return places if np.isfinite(places).all() else None


def as_text(ident, molecule, places):
    """The form that nmrcalc-features reads."""
    lines = [f"{ident} {molecule.GetNumAtoms()} {molecule.GetNumBonds()}"]
    for atom in molecule.GetAtoms():
        x, y, z = places[atom.GetIdx()] if places is not None else (0, 0, 0)
        lines.append(f"{atom.GetAtomicNum()} {x:.4f} {y:.4f} {z:.4f}")
    for bond in molecule.GetBonds():
        order = BOND_ORDERS.get(bond.GetBondType(), 1)
        lines.append(f"{bond.GetBeginAtomIdx()} {bond.GetEndAtomIdx()} {order}")
    return "\n".join(lines) + "\n"


def spectra(record):
    """(nucleus, attached hydrogens or -1, weight, sorted values) of every list of a record."""
    for nucleus in ["1H"] + NUCLEI:
        lists = record.get(nucleus, [])
        for entry in lists:
            groups = collections.defaultdict(list)
            by_hydrogens = nucleus == "13C" and all(shift[1] in ("S", "D", "T", "Q") for shift in entry["shifts"])
            for shift in entry["shifts"]:
                value = float(shift[0])
                if nucleus == "1H" and not -6 < value < 22 or nucleus == "13C" and not -60 < value < 350:
                    continue  # no such shift: a slip of the record
                groups["SDTQ".index(shift[1]) if by_hydrogens else -1].append(value)
            for hydrogens, values in groups.items():
                yield nucleus, hydrogens, 1 / len(lists), np.sort(np.array(values, np.float32))
