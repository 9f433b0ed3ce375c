"""Reads the records of nmrcalc-features."""
import numpy as np
S = 14

def records(path):
    b = np.fromfile(path, dtype=np.int32)
    o = 0
    while o < len(b):
        h = b[o:o + 16].view(np.int64)
        o += 16
        nN, nH, nB, nP, nHE, nC = h[2:8]

        def take(n):
            nonlocal o
            r = b[o:o + n]
            o += n
            return r
        d = dict(id=int(h[0]), geo=int(h[1]), atom=take(nN), group=take(nN), hatom=take(nH), hgroup=take(nH), parent=take(nH), feat=take(nN * S).reshape(nN, S), surroundings=take(nN).view(np.uint32))
        for name, n in (('B', nB), ('P', nP), ('H', nHE), ('C', nC)):
            d[name] = (take(n), take(n), take(n), take(n).view(np.float32), take(n).view(np.float32))
        yield d
