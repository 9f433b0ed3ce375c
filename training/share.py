"""share.py WORK CHECKPOINT...: fits how much of what computed hydrogens differ from measured ones is added to each.

The networks stay as they are. What all of them know of a hydrogen, side by side, goes through one hidden layer to a share
between 0 and 1; it is fitted to the computed and the measured shifts of the training part, and only printed for the
validation part. Writes WORK/share.checkpoint."""
import math
import os
import sys

import torch

import learn
from network import Net

LARGEST = 0.4  # ppm, what is added at most
HIDDEN, NETS, STEPS, BATCH, PEAK = 64, 3, 3000, 1024, 0.002  # of each net; their mean is one net of all hidden units
SLIP = 0.5  # ppm, errors of lists beyond are most of them slips of the record
SETS = {"dft": ("dft", 0.3), "dft-new": ("dft", 0.1), "dft-drawn": ("dft", 0.1),  # kind, weight
        "lists-drawn": ("list", 0.15), "lists": ("list", 1.0)}


def load_network(path):
    state = torch.load(path)
    model = Net(**state["cfg"])
    model.load_state_dict(state["model"])
    for parameter, mean in zip(model.parameters(), state["ema"]):
        parameter.data.copy_(mean)
    return model


def make_share(inputs, hidden):
    return torch.nn.Sequential(torch.nn.Linear(inputs, hidden), torch.nn.SiLU(), torch.nn.Linear(hidden, 1))


def load_share(work):
    state = torch.load(os.path.join(work, "share.checkpoint"))
    share = make_share(*reversed(state["0.weight"].shape))
    share.load_state_dict(state)
    return share


def hydrogens(outputs, batch):
    """Of each hydrogen, averaged over equal ones: measured shift, computed less measured shift, what the networks know."""
    mean = lambda k: learn.gmean(sum(output[3][k] for output in outputs) / len(outputs), batch["hgroup"])
    # Computed values of hydrogens on other atoms than carbon are those of the gas phase.
    on_carbon = batch["feat"][batch["parent"], 0] == 6
    return mean(0), mean(1) * on_carbon, learn.gmean(torch.cat([output[3][3] for output in outputs], 1), batch["hgroup"])


def add_share(share, measured, difference, known):
    return measured + (torch.sigmoid(share(known)[:, 0]) * difference).clamp(-LARGEST, LARGEST)


@torch.no_grad()
def collect(models, items):
    """Measured shift, difference, knowledge, target and weight of every hydrogen that has a value."""
    rows = []
    for first in range(0, len(items), 60):
        batch = learn.coll(items[first:first + 60], None)
        measured, difference, known = hydrogens([model(batch) for model in models], batch)
        if "1H" in batch["gr"]:
            index, wanted, _ = learn.match(batch["gr"]["1H"], measured + (difference / 2).clamp(-0.1, 0.1))
            weight = torch.ones(len(index))
        else:
            index, wanted, weight = batch["aH"]
        rows.append((measured[index], difference[index], known[index], wanted, weight))
    return [torch.cat(column) for column in zip(*rows)]


@torch.no_grad()
def mean_error(share, rows):
    measured, difference, known, wanted, weight = rows
    errors = (add_share(share, measured, difference, known) - wanted).abs()
    return float((weight * errors).sum() / weight.sum())


def fit(sets, mean, spread, seed):
    torch.manual_seed(seed)
    share = make_share(len(mean), HIDDEN)
    optimiser = torch.optim.AdamW(share.parameters(), lr=PEAK, weight_decay=0.01)
    for step in range(STEPS):
        optimiser.param_groups[0]["lr"] = PEAK * 0.5 * (1 + math.cos(math.pi * step / STEPS))
        loss = 0.0
        for name, (measured, difference, known, wanted, weight) in sets.items():
            k = torch.randint(len(wanted), (BATCH,))
            part = torch.sigmoid(share((known[k] - mean) / spread)[:, 0]) * difference[k]
            error = (measured[k] + part - wanted[k]).abs()
            kind, importance = SETS[name]
            loss = loss + importance * (weight[k] * (error.clamp(max=SLIP) if kind == "list" else error)).mean()
        optimiser.zero_grad()
        loss.backward()
        optimiser.step()
    return share


@torch.no_grad()
def join(shares, mean, spread):
    """One net that tells the mean of all, of inputs as the networks give them."""
    joined = make_share(len(mean), HIDDEN * len(shares))
    inner, outer = joined[0], joined[2]
    inner.weight.copy_(torch.cat([share[0].weight for share in shares]) / spread)
    inner.bias.copy_(torch.cat([share[0].bias for share in shares]) - inner.weight @ mean)
    outer.weight.copy_(torch.cat([share[2].weight for share in shares], 1) / len(shares))
    outer.bias.copy_(sum(share[2].bias for share in shares) / len(shares))
    return joined


def main():
    work = sys.argv[1]
    models = [load_network(path) for path in sys.argv[2:]]
    training, validation, items = {}, {}, {}
    for name, (kind, _) in SETS.items():
        drawn = items if name == "lists" else {}  # lists of molecules without a geometry too
        items = {**drawn, **learn.load(os.path.join(work, name + ".features"), kind)}
        for target, val in ((training, False), (validation, True)):
            target[name] = collect(models, [item for item in items.values() if item.useH and bool(item.val) == val])
        print(name, len(training[name][0]), len(validation[name][0]), flush=True)
    known = torch.cat([training["dft"][2], training["lists"][2]])
    mean, spread = known.mean(0), known.std(0) + 1e-3
    share = join([fit(training, mean, spread, seed) for seed in range(NETS)], mean, spread)
    print("mean error, ppm: training, validation")
    torch.save(share.state_dict(), os.path.join(work, "share.checkpoint"))
    for name in SETS:
        print(name, *(f"{mean_error(share, part[name]):.4f}" for part in (training, validation)))


if __name__ == "__main__":
    main()
