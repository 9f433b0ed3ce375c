"""calibrate.py WORK OUT VERSION CHECKPOINT...: writes the file of the shift model from one or several trained networks
and the share that share.py fitted to them.

Error bars are fitted on the validation part: the scale that the network tells is turned into a half width that 68 of 100
values keep. Surroundings that fewer than two molecules of the training show count as unseen."""
import collections
import glob
import os
import struct
import sys

import numpy as np
import torch

import learn
import molecules
from share import LARGEST, add_share, hydrogens, load_network, load_share

ORDER = molecules.NUCLEI + ["1H"]
BASE = dict(zip(molecules.NUCLEI, [2.0, 8.0, 4.0, 3.0, 10.0, 15.0, 5.0, 50.0]), **{"1H": 0.2})
# Steepest power of the scale in the error bar: few fluorines far from carbon are told to be less certain than they are.
STEEPEST = {"19F": 3.0}
LEAST = {"13C": 0.3, "1H": 0.03, "195Pt": 30.0}  # ppm, 1 for the others
EXCHANGING = [3.0, 1.0, 1.0, 1.5]  # hydrogens on N, O, S: seldom in the lists, and where they stand is chance


def known_surroundings(work):
    counts = collections.Counter()
    for path in glob.glob(os.path.join(work, "*-drawn.features")):
        for record in learn.records(path):
            if not learn.val.get(record["id"]):
                counts.update(set(record["surroundings"].tolist()))
    return np.array(sorted(key for key, count in counts.items() if count >= 2), np.uint32)


@torch.no_grad()
def collect(models, share, items, known, rows):
    """Adds (|error|, scale, seen) of a batch to rows by nucleus."""
    batch = learn.coll(items, None)
    outputs = [model(batch) for model in models]
    seen = torch.from_numpy(np.concatenate([np.isin(item.surroundings, known) for item in items]))
    mean = lambda pick: sum(pick(output) for output in outputs) / len(outputs)
    scale = lambda o: torch.exp(o[1].clamp(-5, 4))
    weighted = sum(o[0] / scale(o) for o in outputs) / sum(1 / scale(o) for o in outputs)
    values = learn.gmean(weighted, batch["group"])
    scales = learn.gmean(mean(scale), batch["group"])
    atoms, wanted, _, _ = batch["aC"]
    if len(atoms):
        rows["13C"].append(torch.stack([(values[atoms] - wanted).abs(), 2 * scales[atoms], seen[atoms].float()]))
    for nucleus, groups in batch["gr"].items():
        own_values, own_scales, own_seen = values, scales, seen
        if nucleus == "1H":
            own_values = add_share(share, *hydrogens(outputs, batch))
            own_scales = learn.gmean(mean(lambda o: torch.exp(o[3][2].clamp(-5, 4))), batch["hgroup"])
            own_seen = seen[batch["parent"]]
        index, wanted, _ = learn.match(groups, own_values)
        rows[nucleus].append(torch.stack([(own_values[index] - wanted).abs(), BASE[nucleus] * own_scales[index],
                                          own_seen[index].float()]))


def fit(nucleus, rows):
    least = LEAST.get(nucleus, 1.0)
    if rows.shape[1] < 100:
        return [1.5, 1.0, 2 * least, 2.0]
    error, scale, seen = rows
    seen = seen > 0
    edges = np.quantile(scale[seen], np.linspace(0, 1, 9 if seen.sum() > 1000 else 5))
    x, y = [], []
    for low, high in zip(edges[:-1], edges[1:]):
        inside = seen & (scale >= low) & (scale <= high)
        x.append(np.log(np.median(scale[inside])))
        y.append(np.log(np.quantile(error[inside], 0.68)))
    power = float(np.clip(np.polyfit(x, y, 1)[0], 0.5, STEEPEST.get(nucleus, 1.5)))
    factor = float(np.exp(np.mean(y) - power * np.mean(x)))
    factor *= float(np.quantile(error[seen] / np.maximum(factor * scale[seen] ** power, least), 0.68))
    bar = np.maximum(factor * scale**power, least)
    unseen = float(np.quantile(error[~seen] / bar[~seen], 0.68)) if (~seen).sum() >= 10 else 2.0
    return [factor, power, least, max(unseen, 1.5)]


def write_model(path, version, summary, errors, known, share, models):
    with open(path, "wb") as stream:
        stream.write(b"NMRSHFT2")
        for text in (version, summary):
            stream.write(struct.pack("<I", len(text.encode())) + text.encode())
        stream.write(struct.pack("<f", LARGEST))
        for row in errors:
            stream.write(struct.pack("<4f", *row))
        stream.write(struct.pack("<I", len(known)) + known.tobytes())

        def matrix(values):
            if values is None:
                stream.write(struct.pack("<II", 0, 0))
                return
            array = np.atleast_2d(values.detach().numpy())
            stream.write(struct.pack("<II", *array.shape))
            for row in array:
                scale = np.float32(max(np.abs(row).max(), 1e-20) / 32767)
                whole = np.rint(row / scale).clip(-32767, 32767).astype("<i2")
                stream.write(struct.pack("<f", scale) + whole.tobytes())

        def layer(linear):
            matrix(linear.weight)
            matrix(linear.bias)

        def edges(table):
            for values in (table.g, table.w, table.R):
                matrix(values)

        stream.write(struct.pack("<I", sum(parameter.numel() for parameter in share.parameters())))
        layer(share[0])
        layer(share[2])
        stream.write(struct.pack("<II", len(models), len(models[0].ab)))
        for model in models:
            matrix(model.emb)
            for k in range(len(model.ab)):
                layer(model.ab[k])
                edges(model.B[k])
                edges(model.Q[k])
                layer(model.w1[k])
                layer(model.w2[k])
            for linear in (model.h1, model.h2, model.pa):
                layer(linear)
            edges(model.EH)
            edges(model.EC)
            for linear in (model.p1, model.p2, model.p3):
                layer(linear)


def main():
    work, out, version = sys.argv[1:4]
    models = [load_network(path) for path in sys.argv[4:]]
    share = load_share(work)
    known = known_surroundings(work)
    rows = collections.defaultdict(list)
    sets = {name: learn.load(os.path.join(work, name + ".features"), kind)
            for name, kind in (("exp13c", "exp"), ("lists", "list"), ("lists-drawn", "list"))}
    items = [item for item in sets["exp13c"].values() if item.val]
    items += [sets["lists"].get(ident, item) for ident, item in sets["lists-drawn"].items() if item.val]
    lists_only = collections.defaultdict(list)
    for first in range(0, len(items), 60):
        part = items[first:first + 60]
        for kind, target in (("exp", rows), ("list", lists_only)):
            chosen = [item for item in part if item.kind == kind]
            if chosen:
                collect(models, share, chosen, known, target)
    mean = {}
    for nucleus, parts in lists_only.items():
        mean[nucleus] = float(torch.cat(parts, 1)[0].mean())
        rows[nucleus] += parts
    errors = [fit(n, torch.cat(rows[n], 1).numpy() if rows[n] else np.zeros((3, 0))) for n in ORDER] + [EXCHANGING]
    summary = "13C {13C:.1f}, 1H {1H:.2f}, 31P {31P:.0f}, 19F {19F:.0f} ppm".format(**mean)
    write_model(out, version, summary, errors, known, share, models)
    print("wrote", out, summary)


main()
