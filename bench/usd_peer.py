#!/usr/bin/env python3
"""How long OpenUSD takes to save the stage of bench_usd, beside bench_usd itself, in turns within one run.

usage: usd_peer.py BENCH_USD        with a Python that has usd-core

Both write the text of the same stage to a file. OpenUSD's own copy of the stage is made by its C++ code from the
text that bench_usd wrote; only saving is timed. Prints medians and the ratio.
"""

import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

from pxr import Sdf

TURNS = 7


def main() -> None:
    program, = sys.argv[1:]
    making, ours, theirs = [], [], []
    with tempfile.TemporaryDirectory() as folder:
        own, other = str(Path(folder, "own.usda")), str(Path(folder, "other.usda"))
        for _ in range(TURNS):
            printed = subprocess.run([program, "--stage", own], check=True, capture_output=True, text=True).stdout
            made, saved = (float(number) for number in printed.split())
            making.append(made)
            ours.append(saved)
            layer = Sdf.Layer.CreateAnonymous(".usda")
            if not layer.ImportFromString(Path(own).read_text(encoding="utf-8")):
                sys.exit("OpenUSD can't read what bench_usd wrote")
            start = time.perf_counter()
            layer.Export(other)
            theirs.append(time.perf_counter() - start)
        same = Path(own).read_bytes() == Path(other).read_bytes()
        size = Path(own).stat().st_size
    own_time, other_time = statistics.median(ours), statistics.median(theirs)
    print(f"{size / 1e6:.1f} MB, the same bytes: {same}")
    print(f"made {statistics.median(making):.3f} s, saved {own_time:.3f} s, OpenUSD saves in {other_time:.3f} s")
    print(f"ratio save {own_time / other_time:.2f} x OpenUSD")


if __name__ == "__main__":
    main()
