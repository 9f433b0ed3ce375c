"""learn.py WORK NAME MINUTES [SEED [HYDROGEN]]: trains one network; goes on from WORK/NAME.checkpoint where there is one.

HYDROGEN (1 unless told) multiplies the weight of all hydrogens in the loss."""
import sys, time, pickle, os, ctypes, collections, math
import numpy as np, torch
import network
from molecules import spectra
from network import Net, L, P, GB, GP, GH, GC, NUCZ
from records import records
torch.set_num_threads(1)
NUC = ['13C', '31P', '19F', '11B', '15N', '17O', '29Si', '195Pt']
SC = dict(zip(NUC, [2.0, 8 / 6, 1.25, 1.2, 2.0, 10.0, 3.0, 30.0]))
BASE = dict(zip(NUC, [2.0, 8.0, 4.0, 3.0, 10.0, 15.0, 5.0, 50.0]))
WORK = sys.argv[1]
with open(os.path.join(WORK, 'labels.pkl'), 'rb') as stream:
    LABELS = pickle.load(stream)
exp, dft, radical, lists, val = (LABELS[k] for k in ('exp13c', 'dft', 'radicals', 'lists', 'validation'))
I32 = np.int32

class Item:
    pass
COL = np.zeros(120, np.int64) + 6
for k, zz in enumerate(NUCZ):
    COL[zz] = k

def load(path, kind):
    out = {}
    for d in records(path):
        i = d['id']
        it = Item()
        it.id = i
        it.kind = kind
        it.val = val.get(i, False)
        it.geo = d['geo']
        zn = d['feat'][:, 0].astype(np.int64)
        it.z = zn
        it.col = COL[zn]
        it.feat = d['feat'].astype(I32)
        it.group = d['group']
        it.hgroup = d['hgroup']
        it.parent = d['parent']
        it.surroundings = d['surroundings']
        it.E = [tuple((np.ascontiguousarray(q) for q in d[n])) for n in ('B', 'P', 'H', 'C')]
        it.lab = []
        it.groups = []
        useH = False
        pos = {int(a): k for k, a in enumerate(d['atom'])}
        hp = {int(a): k for k, a in enumerate(d['hatom'])}
        pz = zn[d['parent']] if len(d['parent']) else np.zeros(0, int)
        if kind in ('exp', 'dft'):
            if ('exp13c' if kind == 'exp' else 'dft', i) in radical:
                continue
            acc = collections.defaultdict(list)
            for a, zz, v in (exp if kind == 'exp' else dft).get(i, ()):
                if zz == 6 and a in pos:
                    acc['C', int(d['group'][pos[a]])].append(v)
                if zz == 1 and a in hp and (kind == 'dft') and (pz[hp[a]] == 6):
                    acc['H', int(d['hgroup'][hp[a]])].append(v)
            it.aC = np.array([k[1] for k in acc if k[0] == 'C'], np.int64)
            it.vC = np.array([np.mean(acc[k]) for k in acc if k[0] == 'C'], np.float32)
            it.wC = np.array([len(acc[k]) for k in acc if k[0] == 'C'], np.float32)
            it.aH = np.array([k[1] for k in acc if k[0] == 'H'], np.int64)
            it.vH = np.array([np.mean(acc[k]) for k in acc if k[0] == 'H'], np.float32)
            it.wH = np.array([len(acc[k]) for k in acc if k[0] == 'H'], np.float32)
            it.useH = len(it.aH) > 0
        else:
            nh = np.bincount(d['parent'][d['parent'] >= 0], minlength=len(zn))
            for nu, k, w, v in spectra(lists[i]):
                if nu == '1H':
                    idx = np.nonzero(d['parent'] >= 0)[0]
                else:
                    ok = zn == dict(zip(NUC, NUCZ))[nu]
                    if nu == '13C' and k >= 0:
                        ok &= np.minimum(nh, 4) == k
                    idx = np.nonzero(ok)[0]
                if len(idx) == 0 or len(v) == 0:
                    continue
                if nu == '1H':
                    useH = True
                it.groups.append((nu, idx.astype(I32), v, w))
            it.useH = useH
            if not it.groups:
                continue
        out[i] = it
    return out

def coll(items, rng, noise=0.0):
    b = {}
    no = 0
    ho = 0
    F = []
    G = []
    HG = []
    PR = []
    E = [[] for _ in range(4)]
    cols = []
    aC = []
    vC = []
    wC = []
    kC = []
    aH = []
    vH = []
    wH = []
    gr = {n: [] for n in NUC + ['1H']}
    for it in items:
        n = len(it.z)
        F.append(it.feat)
        G.append(it.group + no)
        cols.append(it.col)
        for k in range(2):
            t, f, c, x, s = it.E[k]
            E[k].append((t + no, f + no, c, x, s))
        if it.useH:
            pr = np.maximum(it.parent, 0)
            PR.append(pr + no)
            HG.append(it.hgroup + ho)
            t, f, c, x, s = it.E[2]
            E[2].append((t + ho, f + no, c, x, s))
            t, f, c, x, s = it.E[3]
            E[3].append((t + ho, f + ho, c, x, s))
        if it.kind != 'list':
            aC.append(it.aC + no)
            vC.append(it.vC)
            wC.append(it.wC)
            kC.append(np.full(len(it.aC), it.kind == 'dft'))
            if it.useH:
                aH.append(it.aH + ho)
                vH.append(it.vH)
                wH.append(it.wH)
        else:
            for nu, idx, v, w in it.groups:
                gr[nu].append((idx + (ho if nu == '1H' else no), v, w))
        no += n
        if it.useH:
            ho += len(it.parent)
    cat = lambda l, dt: torch.from_numpy(np.concatenate(l).astype(dt)) if l else torch.zeros(0, dtype={np.int64: torch.int64, np.int32: torch.int32, np.float32: torch.float32}[dt])
    b['feat'] = cat(F, np.int64)
    b['col'] = cat(cols, np.int64)
    b['group'] = cat(G, np.int64)
    b['hgroup'] = cat(HG, np.int64)
    b['parent'] = cat(PR, np.int64)
    for name, l, g in zip('BPHC', E, (GB, GP, GH, GC)):
        if l:
            q = [np.concatenate([t[k] for t in l]) for k in range(5)]
            if noise > 0 and name != 'B':
                x = q[3]
                q[3] = np.where(x > 0, x + rng.normal(0, noise, len(x)).astype(np.float32), x)
            b[name] = (torch.from_numpy(q[0].astype(I32)), torch.from_numpy(q[1].astype(I32)), torch.from_numpy(q[2].astype(I32)), g, torch.from_numpy(q[3].astype(np.float32)), torch.from_numpy(q[4].astype(np.float32)))
        else:
            b[name] = (torch.zeros(0, dtype=torch.int32),) * 3 + (g, torch.zeros(0), torch.zeros(0))
    b['aC'] = (cat(aC, np.int64), cat(vC, np.float32), cat(wC, np.float32), cat(kC, np.float32))
    b['aH'] = (cat(aH, np.int64), cat(vH, np.float32), cat(wH, np.float32))
    b['gr'] = {n: g for n, g in gr.items() if g}
    b['no'] = no
    return b

def gmean(v, g):
    s = torch.zeros_like(v).index_add(0, g, v)
    c = torch.zeros_like(v).index_add(0, g, torch.ones_like(v))
    return (s / c.clamp(min=1))[g]

def match(groups, pred):
    po = np.cumsum([0] + [len(g[0]) for g in groups]).astype(I32)
    vo = np.cumsum([0] + [len(g[1]) for g in groups]).astype(I32)
    pi = np.concatenate([g[0] for g in groups]).astype(I32)
    v = np.concatenate([g[1] for g in groups]).astype(np.float32)
    p = np.ascontiguousarray(pred.detach().numpy(), np.float32)
    n = max(len(pi), len(v)) + 1
    oi = np.empty(n, I32)
    ov = np.empty(n, np.float32)
    og = np.empty(n, I32)
    c = lambda a: ctypes.c_void_p(a.ctypes.data)
    k = L.match(len(groups), c(po), c(vo), c(pi), c(v), c(p), c(oi), c(ov), c(og))
    w = np.array([g[2] for g in groups], np.float32)[og[:k]]
    return (torch.from_numpy(oi[:k].astype(np.int64)), torch.from_numpy(ov[:k]), torch.from_numpy(w))

def lap(e, lb, base):
    b = base * torch.exp(lb.clamp(-5, 4))
    return e / b + torch.log(b)

def loss_of(b, out, late, hydrogen):
    v, lb, off, hv = out
    v = gmean(v, b['group'])
    lb = gmean(lb, b['group'])
    tot = 0

    def term(e, lbs, w, scale, base, mix):
        det = e.detach()
        bb = base * torch.exp(lbs.detach().clamp(-5, 4))
        if late:
            w = w * (det < 6 * bb)
        t = e / scale
        if mix:
            t = 0.5 * t + 0.5 * e / bb * (base / scale) * 0.7
        return (w * (t + 0.3 * lap(det, lbs, base))).sum()
    a, t, w, k = b['aC']
    if len(a):
        o = gmean(off, b['group'])
        e = (v[a] + k * o[a] - t).abs()
        tot = tot + term(e, lb[a], w * torch.where(k > 0, 0.5, 1.0), 2.0, 2.0, True)
    for nu, g in b['gr'].items():
        if nu == '1H':
            hm = gmean(hv[0], b['hgroup'])
            hl = gmean(hv[2], b['hgroup'])
            i, t, w = match(g, hm)
            tot = tot + term((hm[i] - t).abs(), hl[i], hydrogen * w, 0.2, 0.2, True)
        else:
            i, t, w = match(g, v)
            tot = tot + term((v[i] - t).abs(), lb[i], w * (1 if nu != '13C' else 1), SC[nu], BASE[nu], nu == '13C') if nu not in ('31P', '19F') else tot + term((v[i] - t).abs(), lb[i], w, SC[nu], BASE[nu], False) * 1.0
    a, t, w = b['aH']
    if len(a):
        hm = gmean(hv[0] + hv[1], b['hgroup'])
        hl = gmean(hv[2], b['hgroup'])
        e = (hm[a] - t).abs()
        det = e.detach()
        tot = tot + (hydrogen * w * 0.7 * e / 0.15).sum()
    return tot

@torch.no_grad()
def evaluate(model, sets, bs=100, geo=True):
    model.eval()
    R = collections.defaultdict(list)
    for name, items in sets.items():
        for s in range(0, len(items), bs):
            b = coll(items[s:s + bs], None)
            v, lb, off, hv = model(b)
            v = gmean(v, b['group'])
            off = gmean(off, b['group'])
            lb = gmean(lb, b['group'])
            if hv is not None:
                h = gmean(hv[0], b['hgroup'])
                ho = gmean(hv[1], b['hgroup'])
            a, t, w, k = b['aC']
            if len(a):
                for q in (0.0, 0.5, 1.0):
                    e = (v[a] + q * off[a] * k - t).abs()
                    R[name + ' C%+.1f' % q].append(np.repeat(e.numpy(), w.numpy().astype(int)))
                    if not k.any():
                        break
            a, t, w = b['aH']
            if len(a):
                for q in (0.0, 0.5, 1.0):
                    R[name + ' H%+.1f' % q].append(np.repeat((h[a] + q * ho[a] - t).abs().numpy(), w.numpy().astype(int)))
            for nu, g in b['gr'].items():
                for q in (0.0, 0.5) if nu == '1H' else (0.0,):
                    pr = h + q * ho if nu == '1H' else v
                    i, t, w = match(g, pr)
                    R[name + ' ' + nu + ('%+.1f' % q if nu == '1H' else '')].append((pr[i] - t).abs().numpy())
    model.train()
    out = []
    for k in sorted(R):
        e = np.concatenate(R[k])
        out.append('%s %d: %.3f med %.3f' % (k, len(e), e.mean(), np.median(e)) + (' >10 %.2f%%' % (100 * (e > 10).mean()) if ' C' in k or '13C' in k else ''))
    return '\n   '.join(out)

def main():
    name = os.path.join(WORK, sys.argv[2])
    minutes = float(sys.argv[3])
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    hydrogen = float(sys.argv[5]) if len(sys.argv) > 5 else 1.0
    peak = 0.0012
    BS = 64
    cfg = {}
    t0 = time.time()
    S = {}
    for kind, files in (('exp', ('exp13c', 'exp13c-new', 'exp13c-drawn')), ('dft', ('dft', 'dft-new', 'dft-drawn')), ('list', ('lists', 'lists-drawn'))):
        for f in files:
            S[f] = load(os.path.join(WORK, f + '.features'), kind)
            print(f, len(S[f]), int(time.time() - t0), flush=True)
    rng = np.random.default_rng(seed)
    torch.manual_seed(seed)
    mol = []
    for main, var in (('exp13c', (('exp13c', 0.55), ('exp13c-new', 0.3), ('exp13c-drawn', 0.15))), ('dft', (('dft', 0.6), ('dft-new', 0.28), ('dft-drawn', 0.12)))):
        for i in S[main]:
            mol.append([(S[f][i], w) for f, w in var if f in S and i in S[f]])
    for i in S['lists-drawn']:
        mol.append(([(S['lists'][i], 0.8)] if i in S['lists'] else []) + [(S['lists-drawn'][i], 0.2)])
    train = [m for m in mol if not m[0][0].val]
    test = [m for m in mol if m[0][0].val]
    sets = {'exp': [m for m in S['exp13c'].values() if m.val], 'dft': [m for m in S['dft'].values() if m.val], 'list': [m[0][0] for m in test if m[0][0].kind == 'list']}
    for f in ('exp13c-new', 'dft-new', 'exp13c-drawn', 'dft-drawn'):
        if f in S:
            sets[f] = [m for m in S[f].values() if m.val]
    sets['list-drawn'] = [m for m in S['lists-drawn'].values() if m.val]
    pw = []
    for m in train:
        it = m[0][0]
        only = it.kind == 'list' and all((g[0] == '31P' for g in it.groups))
        rare = it.kind == 'list' and any((g[0] in ('11B', '17O', '29Si', '195Pt', '19F') for g in it.groups))
        pw.append(0.6 if only else 1.5 if rare else 1.5 if it.kind == 'exp' else 1.0)
    pw = np.array(pw)
    print(len(train), len(test), 'weight', pw.sum(), 'load', int(time.time() - t0), flush=True)
    model = Net(**cfg)
    print(sum((p.numel() for p in model.parameters())))
    ema = [p.detach().clone() for p in model.parameters()]
    dec = [p for p in model.parameters() if p.ndim > 1]
    nod = [p for p in model.parameters() if p.ndim <= 1]
    opt = torch.optim.AdamW([{'params': dec, 'weight_decay': 0.02}, {'params': nod, 'weight_decay': 0}], lr=peak, betas=(0.9, 0.99), foreach=True)
    step = 0
    f0 = 0.0
    ck = name + '.checkpoint'
    if os.path.exists(ck):
        c = torch.load(ck)
        model.load_state_dict(c['model'])
        opt.load_state_dict(c['opt'])
        ema = c['ema']
        step = c['step']
        f0 = c.get('f', 0.0)
        rng = np.random.default_rng(seed + step)
        print('resumed', step)

    def save():
        torch.save(dict(f=f, model=model.state_dict(), opt=opt.state_dict(), ema=ema, step=step, cfg=cfg), ck + '.new')
        os.replace(ck + '.new', ck)
        if 0.45 < f < 0.6 and not os.path.exists(name + '.half'):
            state = torch.load(ck)
            state['f'] = 0.6
            torch.save(state, name + '.half')

    def test_now(quick):
        keep = [p.detach().clone() for p in model.parameters()]
        for p, e in zip(model.parameters(), ema):
            p.data.copy_(e)
        ss = {k: v for k, v in sets.items() if k in ('exp', 'dft', 'list')} if quick else sets
        print('EVAL', step, int(time.time() - t0), '\n  ', evaluate(model, ss), flush=True)
        for p, k in zip(model.parameters(), keep):
            p.data.copy_(k)
    tb = time.time()
    f = f0
    order = []
    run = 0.0
    na = 0
    t1 = time.time()
    ts = time.time()
    every = 3000
    coll_t = 0
    while f < 1:
        if len(order) < BS:
            r = rng.random(len(train))
            n = np.floor(pw + r).astype(int)
            order = np.repeat(np.arange(len(train)), n)
            rng.shuffle(order)
            order = list(order)
        ids = order[:BS]
        order = order[BS:]
        items = []
        for k in ids:
            m = train[k]
            w = np.array([q for _, q in m])
            items.append(m[rng.choice(len(m), p=w / w.sum())][0] if len(m) > 1 else m[0][0])
        tc = time.time()
        b = coll(items, rng, noise=0.06)
        coll_t += time.time() - tc
        f = min(1.0, f0 + (time.time() - tb) / (60 * minutes))
        lr = peak * min(1, (step + 1) / 500) * (0.5 * (1 + math.cos(math.pi * f)) * 0.995 + 0.005)
        for g in opt.param_groups:
            g['lr'] = lr
        loss = loss_of(b, model(b), f > 0.4, hydrogen) / b['no']
        if step % 500 == 499 and (not torch.isfinite(loss)):
            print('nan')
            sys.exit(1)
        opt.zero_grad(set_to_none=True)
        loss.backward()
        gn = torch.nn.utils.clip_grad_norm_(model.parameters(), 2.0)
        if not torch.isfinite(gn):
            print('skip', step, flush=True)
            continue
        opt.step()
        step += 1
        run += float(loss)
        na += b['no']
        d = min(0.999, (1 + step) / (10 + step))
        torch._foreach_mul_(ema, d)
        torch._foreach_add_(ema, [p.detach() for p in model.parameters()], alpha=1 - d)
        if step % 500 == 0:
            print('%d loss %.4f lr %.2e %.1f ms/step %.1f atoms/step coll %.1f ms' % (step, run / 500, lr, (time.time() - t1) / 500 * 1000.0, na / 500, coll_t / 500 * 1000.0), flush=True)
            run = 0
            na = 0
            coll_t = 0
            t1 = time.time()
        if step % every == 0 or f >= 1:
            test_now(step % (every * 4) != 0 and f < 1)
            save()
            t1 = time.time()
if __name__ == '__main__':
    main()
