"""prepare.py DATA WORK FEATURES: geometries, labels and feature records of all sets, into the work folder.

Every step that is done leaves its file and is not done again. FEATURES is the program nmrcalc-features."""
import os
import pickle
import random
import subprocess
import sys

import numpy as np
from rdkit import Chem

import molecules


def load_places(path):
    places = {}
    if os.path.exists(path):
        with open(path, "rb") as stream:
            while True:
                try:
                    ident, value = pickle.load(stream)
                except EOFError:
                    break
                places[ident] = value
    return places


def make_geometries(source, path):
    """Embeds what is not there yet; can be interrupted."""
    done = load_places(path + ".part")
    with open(path + ".part", "ab") as stream:
        for ident, molecule in source:
            if ident in done:
                continue
            places = molecules.embed(molecule, ident % 1000003 + 1, random.Random(ident).random() < 0.85)
            if places is not None:
                places = places.astype(np.float32)
            pickle.dump((ident, places), stream)
    os.rename(path + ".part", path)


def list_molecules(data):
    for record in molecules.listed(data):
        molecule = Chem.MolFromSmiles(record["smiles"])
        if molecule is not None and molecule.GetNumAtoms() <= 150:
            yield record["id"], Chem.AddHs(molecule)


def write_labels(data, path):
    pairs, radicals, lists = [], set(), {}
    for name in ("exp13c", "dft"):
        for ident, molecule, _ in molecules.structures(data, name):
            pairs.append((ident, molecules.constitution(molecule)))
            if any(atom.GetNumRadicalElectrons() for atom in molecule.GetAtoms()):
                radicals.add((name, ident))  # a lost double bond or hydrogen
    for record in molecules.listed(data):
        molecule = Chem.MolFromSmiles(record["smiles"])
        if molecule is not None:
            pairs.append((record["id"], molecules.constitution(molecule)))
            lists[record["id"]] = record
    labels = {name: dict(molecules.assigned(data, name)) for name in ("exp13c", "dft")}
    labels.update(radicals=radicals, lists=lists, validation=molecules.split(pairs))
    with open(path, "wb") as stream:
        pickle.dump(labels, stream)


def write_features(source, program, path):
    with open(path + ".new", "wb") as stream:
        tool = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=stream)
        for ident, molecule, places in source:
            tool.stdin.write(molecules.as_text(ident, molecule, places).encode())
        tool.stdin.close()
        if tool.wait() != 0:
            raise SystemExit("nmrcalc-features failed")
    os.rename(path + ".new", path)


def main():
    data, work, program = sys.argv[1:4]
    os.makedirs(work, exist_ok=True)

    def once(name, routine, *arguments):
        path = os.path.join(work, name)
        if not os.path.exists(path):
            print("making", name, flush=True)
            routine(*arguments, path)

    once("labels.pkl", write_labels, data)
    for name in ("exp13c", "dft"):
        again = [(ident, molecule) for ident, molecule, _ in molecules.structures(data, name)]
        once(name + ".geometry", make_geometries, again)
        new = load_places(os.path.join(work, name + ".geometry"))
        once(name + ".features", write_features, molecules.structures(data, name), program)
        once(name + "-new.features", write_features,
             ((i, m, new[i]) for i, m, _ in molecules.structures(data, name) if new.get(i) is not None), program)
        once(name + "-drawn.features", write_features,
             ((i, m, None) for i, m, _ in molecules.structures(data, name)), program)
    once("lists.geometry", make_geometries, list_molecules(data))
    new = load_places(os.path.join(work, "lists.geometry"))
    once("lists.features", write_features, ((i, m, new[i]) for i, m in list_molecules(data) if new.get(i) is not None),
         program)
    once("lists-drawn.features", write_features, ((i, m, None) for i, m in list_molecules(data)), program)


main()
