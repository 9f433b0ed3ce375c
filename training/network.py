"""The network as PyTorch sees it; src/nmrcalc/shifts/ShiftModel.cpp is the same forward pass."""
import ctypes
import os
import numpy as np
import torch
from torch import nn
L = ctypes.CDLL(os.environ['SHIFT_KERNELS'])

def P(t):
    return ctypes.c_void_p(t.data_ptr())

class Edge(torch.autograd.Function):

    @staticmethod
    def forward(ctx, a, b, g, w, R, E):
        to, fr, cls, grp, x, s = E
        a = a.contiguous()
        b = b.contiguous()
        M = a.shape[1]
        out = torch.zeros_like(a)
        L.edge_fwd(len(to), M, P(to), P(fr), P(cls), P(grp), P(x), P(s), P(a), P(b), P(g), P(w), P(R) if R is not None else None, P(out))
        ctx.E = E
        ctx.save_for_backward(a, b, g, w, R if R is not None else torch.empty(0))
        ctx.has = R is not None
        return out

    @staticmethod
    def backward(ctx, d):
        to, fr, cls, grp, x, s = ctx.E
        a, b, g, w, R = ctx.saved_tensors
        d = d.contiguous()
        M = a.shape[1]
        da, db, dg, dw, dR = (torch.zeros_like(t) for t in (a, b, g, w, R))
        L.edge_bwd(len(to), M, P(to), P(fr), P(cls), P(grp), P(x), P(s), P(a), P(b), P(g), P(w), P(R) if ctx.has else None, P(d), P(da), P(db), P(dg), P(dw), P(dR))
        return (da, db, dg, dw, dR if ctx.has else None, None)

class Silu(torch.autograd.Function):

    @staticmethod
    def forward(ctx, x):
        x = x.contiguous()
        y = torch.empty_like(x)
        L.silu_fwd(ctypes.c_long(x.numel()), P(x), P(y))
        ctx.save_for_backward(x)
        return y

    @staticmethod
    def backward(ctx, d):
        x, = ctx.saved_tensors
        d = d.contiguous()
        r = torch.empty_like(x)
        L.silu_bwd(ctypes.c_long(x.numel()), P(x), P(d), P(r))
        return r

class Norm(torch.autograd.Function):

    @staticmethod
    def forward(ctx, x):
        x = x.contiguous()
        y = torch.empty_like(x)
        r = torch.empty(len(x))
        L.ln_fwd(len(x), x.shape[1], P(x), P(y), P(r))
        ctx.save_for_backward(y, r)
        return y

    @staticmethod
    def backward(ctx, d):
        y, r = ctx.saved_tensors
        d = d.contiguous()
        x = torch.empty_like(y)
        L.ln_bwd(len(y), y.shape[1], P(y), P(r), P(d), P(x))
        return x
silu = Silu.apply
norm = Norm.apply
edge = Edge.apply
NF = 105 + 19 + 8 + 260 + 117 + 6 + 8 + 9 + 7 + 5 + 32 + 4 + 4 + 91
NB, NPC, NHC, NCC = (60, 300, 314, 2)
GP = np.zeros(NPC, np.int32)
GP[80:272] = np.arange(192) // 48
GP[272:296] = 4
GP[296:299] = 5
GP[299] = 6
GH = np.zeros(NHC, np.int32)
GH[301:313] = 1
GH[313] = 2
GC = np.array([0, 1], np.int32)
GP, GH, GC = (torch.from_numpy(v) for v in (GP, GH, GC))
GB = torch.zeros(NB, dtype=torch.int32)
ROWS = 19
NUCZ = [6, 15, 9, 5, 7, 8, 14, 78]
MEAN = torch.tensor([100.0, 20.0, -100.0, 0.0, -200.0, 200.0, -10.0, -2500.0])
STD = torch.tensor([40.0, 40.0, 40.0, 25.0, 100.0, 150.0, 30.0, 1000.0])

def par(*s, sc=0.1):
    return nn.Parameter(torch.randn(*s) * sc)

class EdgeSet(nn.Module):

    def __init__(z, ncls, M, ngrp):
        super().__init__()
        z.g = par(ncls, M)
        z.w = nn.Parameter(1 + 0.1 * torch.randn(ncls, M))
        z.R = par(ngrp * ROWS, M) if ngrp else None

class Net(nn.Module):

    def __init__(z, D=160, MB=64, MP=64, H=224, layers=6, MH=64, MC=32):
        super().__init__()
        z.cfg = (D, MB, MP, H, layers, MH, MC)
        z.D, z.MB, z.MP = (D, MB, MP)
        z.emb = par(NF, D, sc=0.3)
        z.ab = nn.ModuleList([nn.Linear(D, 2 * MB + 2 * MP) for _ in range(layers)])
        z.B = nn.ModuleList([EdgeSet(NB, MB, 0) for _ in range(layers)])
        z.Q = nn.ModuleList([EdgeSet(NPC, MP, 7) for _ in range(layers)])
        z.w1 = nn.ModuleList([nn.Linear(D + MB + MP, H) for _ in range(layers)])
        z.w2 = nn.ModuleList([nn.Linear(H, D) for _ in range(layers)])
        for l in z.w2:
            nn.init.normal_(l.weight, std=0.3 / H ** 0.5)
            nn.init.zeros_(l.bias)
        z.h1 = nn.Linear(D, H)
        z.h2 = nn.Linear(H, 2 * len(NUCZ) + 1)
        z.pa = nn.Linear(D, MH + MH + MC + MC)
        z.EH = EdgeSet(NHC, MH, 3)
        z.EC = EdgeSet(NCC, MC, 2)
        z.p1 = nn.Linear(D + MH + MC, H)
        z.p2 = nn.Linear(H, 96)
        z.p3 = nn.Linear(96, 3)
        for l in (z.h2, z.p3):
            nn.init.normal_(l.weight, std=0.02)
            nn.init.zeros_(l.bias)

    def forward(z, b):
        h = torch.nn.functional.embedding_bag(b['feat'], z.emb, mode='sum')
        for k in range(len(z.ab)):
            u = norm(h)
            ab = z.ab[k](u)
            a1, b1, a2, b2 = torch.split(ab, [z.MB, z.MB, z.MP, z.MP], 1)
            e = z.B[k]
            m1 = edge(a1, b1, e.g, e.w, None, b['B'])
            e = z.Q[k]
            m2 = edge(a2, b2, e.g, e.w, e.R, b['P'])
            h = h + z.w2[k](silu(z.w1[k](torch.cat([u, m1, m2], 1))))
        u = norm(h)
        o = z.h2(silu(z.h1(u)))
        c = b['col']
        v = o.gather(1, c[:, None])[:, 0] * STD[c] + MEAN[c]
        lb = o.gather(1, c[:, None] + len(NUCZ))[:, 0]
        off = o[:, -1] * 2
        hv = None
        if len(b['parent']):
            pa = z.pa(u)
            MH, MC = (z.cfg[5], z.cfg[6])
            a, bb, ca, cb = torch.split(pa, [MH, MH, MC, MC], 1)
            pr = b['parent']
            m = edge(a[pr], bb, z.EH.g, z.EH.w, z.EH.R, b['H'])
            n = edge(ca[pr], cb[pr], z.EC.g, z.EC.w, z.EC.R, b['C'])
            last = silu(z.p2(silu(z.p1(torch.cat([u[pr], m, n], 1)))))
            q = z.p3(last)
            hv = (4 + 3 * q[:, 0], q[:, 1], q[:, 2], last)
        return (v, lb, off, hv)
