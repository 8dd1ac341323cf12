#!/usr/bin/env python3
"""Compares benchmark results with the limits that we keep. usage: check_limits.py RESULTS_DIR"""

import json
import pathlib
import sys

UNITS = {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}

# Name and limit in milliseconds of wall time.
ABSOLUTE = [
    ("InitializeAndTerminate", 10),
    ("OpenAndCancel/FirstOfTheProcess/iterations:1", 500),
    ("OpenAndCancel/Later/iterations:20", 150),
]
SIZES = (1000, 10000, 100000, 1000000)


def of_sizes(name, other, limits):
    """One limit for each size of catalog."""
    return [(f"{name}/{size}", f"{other}/{size}", limit) for size, limit in zip(SIZES, limits)]


# Name, what it is compared with, and the largest ratio. Both come from one run.
RATIOS = [
    *of_sizes("Raw/ImageHit", "Icu/Hit", (0.5, 0.4, 0.6, 0.6)),
    *of_sizes("Raw/ImageHit", "Gettext", (0.2, 0.2, 0.2, 0.2)),
    *of_sizes("Raw/ImageMiss", "Icu/Miss", (0.35, 0.35, 0.6, 0.6)),
    *of_sizes("Raw/TextHit", "UnorderedMap", (1.5, 1.5, 1.5, 1.5)),
    ("LoadAndAskImage/100000", "LoadAndAskIcu/100000", 0.7),
    ("Parse/30", "BareExpat/30", 2.5),
    ("Parse/10000", "BareExpat/10000", 2.5),
    ("SerializeChanged/30", "Parse/30", 1.0),
    ("SerializeChanged/10000", "Parse/10000", 1.0),
    # Eight times the work takes about eight times as long, never its square.
    *[(f"Family/{n}/16000", f"Family/{n}/2000", 24) for n in range(9)],
    ("ManyEdits/16000", "ManyEdits/2000", 24),
    ("ManyNamespaces/8000", "ManyNamespaces/1000", 24),
]


def main():
    times = {}
    for path in pathlib.Path(sys.argv[1]).glob("*.json"):
        for row in json.loads(path.read_text())["benchmarks"]:
            if not row.get("error_occurred"):
                times[row["name"]] = row["real_time"] * UNITS[row["time_unit"]]
    bad = 0

    def tell(holds, text):
        nonlocal bad
        bad += not holds
        print(("holds  " if holds else "BROKEN ") + text)

    for name, limit in ABSOLUTE:
        time = times.get(name)
        tell(time is not None and time <= limit, f"{name}: {time} ms, limit {limit} ms")
    for name, other, limit in RATIOS:
        if name in times and other in times:
            ratio = times[name] / times[other]
            tell(ratio <= limit, f"{name}: {ratio:.2f} of {other}, limit {limit}")
        else:
            tell(False, f"{name}: not measured")
    print(f"limits: {len(ABSOLUTE) + len(RATIOS) - bad} passed, {bad} failed")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
