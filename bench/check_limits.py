#!/usr/bin/env python3
"""Compares benchmark results with the limits that we keep. usage: check_limits.py RESULTS_DIR"""

import json
import math
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


# Name, what it is compared with, and the largest ratio. Both come from one run, and their time on
# the processor counts: that of others on the machine does not.
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

ICONS = ("material", "bootstrap", "flags", "twemoji")
FAMILIES = {"PathSegments": (1000, 1000000), "Elements": (1000, 1000000), "Rules": (1000, 1000000),
            "Gradients": (1000, 1000000), "Uses": (1000, 1000000), "ClipPaths": (1000, 1000000),
            "Nesting": (50, 511)}


def geometric_mean(values):
    return math.prod(values) ** (1 / len(values))


def of_icons(counters, name, counter):
    """The geometric mean of a counter over the sets of icons."""
    return geometric_mean([counters[f"{name}/{icons}"][counter] for icons in ICONS])


def growth(counters, name, counter, sizes):
    """How much more one item takes in the largest document than in the smallest."""
    return counters[f"{name}/{sizes[1]}"][counter] / counters[f"{name}/{sizes[0]}"][counter]


PHOTO_FORMATS = ("jpg", "png", "webp", "tif", "dng")
PHOTO_READS = [f"{photo}/{packet}" for photo in ("100KB", "24MB") for packet in ("3KB", "100KB")]
PHOTO_SIZES = ("100KB", "5MB", "50MB")


def of_photos(text, name, sizes, counter, limit):
    """One row for each format and size."""
    return [(f"{text}, {photo} {size}", lambda c, n=f"{name}/{photo}/{size}": c[n][counter], "<=",
             limit) for photo in PHOTO_FORMATS for size in sizes]


def of_dictionaries(text, name, counter, direction, limits, scale=1):
    """One row for each size of catalog."""
    return [(f"{text}, {size} texts",
             lambda c, n=f"{name}/{size}": c[n][counter] / scale, direction, limit)
            for size, limit in zip(SIZES, limits)]


# Text, the value of all counters, and the least or largest one.
COUNTERS = [
    *of_dictionaries("handle of a full lookup in an image, ns", "WaitingHandle/Image", "handle_ns",
                     "<=", (25, 25, 25, 25)),
    *of_dictionaries("handle of a full lookup in a text, ns", "WaitingHandle/Text", "handle_ns",
                     "<=", (25, 25, 25, 25)),
    *of_dictionaries("loading an image, GB/s", "Load/Image", "bytes_per_second", ">=",
                     (1, 1, 1, 1), 1e9),
    *of_dictionaries("loading a text, MB/s", "Load/Text", "bytes_per_second", ">=",
                     (150, 150, 150, 150), 1e6),
    *of_dictionaries("bytes of an image's entry beside its texts", "Footprint",
                     "image_bytes_of_entry", "<=", (40, 40, 40, 40)),
    *of_dictionaries("bytes of a text's entry beside its texts", "Footprint",
                     "text_bytes_of_entry", "<=", (128, 128, 128, 128)),
    *of_dictionaries("image size, times ICU's bundle", "Footprint", "image_size_of_icu", "<=",
                     (1.15, 1.05, 1.05, 1.05)),
    *of_dictionaries("allocations of a raw lookup", "Footprint", "allocations_of_raw", "<=",
                     (0, 0, 0, 0)),
    *of_dictionaries("allocations of a full lookup", "Footprint", "allocations_of_full", "<=",
                     (1, 1, 1, 1)),
    *of_photos("reading a photo's packet, times Exiv2", "PhotoRead", PHOTO_READS, "of_exiv2", 1),
    # Waiting for the disk is what a save takes, so here the clock on the wall counts.
    *of_photos("saving a photo, times its least steps", "PhotoSave", PHOTO_SIZES,
               "wall_of_reference", 1.5),
    *of_photos("saving a photo bare, times Exiv2", "PhotoSaveBare", PHOTO_SIZES, "of_exiv2", 2),
    *of_photos("heap of saving a photo, MiB", "PhotoHeap", ("50MB", "500MB"), "MiB", 2),
    ("SVG parsing, times librsvg over the icons",
     lambda c: of_icons(c, "SvgParse", "times_librsvg"), ">=", 12),
    ("SVG parsing, times librsvg on a path of 10 MB",
     lambda c: c["SvgParse/LongPath"]["times_librsvg"], ">=", 8),
    ("SVG heap of a material icon, bytes", lambda c: c["SvgHeap/material"]["bytes"], "<=", 1433),
    ("SVG heap of a twemoji icon, bytes", lambda c: c["SvgHeap/twemoji"]["bytes"], "<=", 7168),
    ("SVG drawing at 32 by 32, times librsvg over the icons",
     lambda c: of_icons(c, "SvgDraw32", "times_librsvg"), ">=", 3.4),
    ("SVG drawing at 256 by 256, times librsvg over the icons",
     lambda c: of_icons(c, "SvgDraw256", "times_librsvg"), ">=", 2.2),
    ("SVG parsing and drawing at 32 by 32, times librsvg over the icons",
     lambda c: of_icons(c, "SvgParseAndDraw32", "times_librsvg"), ">=", 4.5),
    *[(f"SVG heap after a draw of {n}, times before",
       lambda c, n=n: c[f"SvgHeap/{n}"]["bytes_after_draw"] / c[f"SvgHeap/{n}"]["bytes"], "<=", 1)
      for n in ICONS],
    *[(f"SVG time of one of many {n}, times of one of few",
       lambda c, n=n, s=s: growth(c, f"SvgFamily/{n}", "ns_of_item", s), "<=", 4)
      for n, s in FAMILIES.items()],
    *[(f"SVG heap of one of many {n}, times of one of few",
       lambda c, n=n, s=s: growth(c, f"SvgHeapFamily/{n}", "bytes_of_item", s), "<=", 1.2)
      for n, s in FAMILIES.items()],
    ("SVG refusal of 1,000,000 levels, ms",
     lambda c: c["SvgFamily/Nesting/1000000"]["ns_of_item"], "<=", 50),
]


def main():
    times = {}
    processor_times = {}
    counters = {}
    for path in pathlib.Path(sys.argv[1]).glob("*.json"):
        for row in json.loads(path.read_text())["benchmarks"]:
            # Of repeated rows the median counts.
            if not row.get("error_occurred") and row.get("aggregate_name", "median") == "median":
                name = row["run_name"]
                times[name] = row["real_time"] * UNITS[row["time_unit"]]
                processor_times[name] = row["cpu_time"] * UNITS[row["time_unit"]]
                counters[name.replace("/iterations:1", "")] = row
    bad = 0

    def tell(holds, text):
        nonlocal bad
        bad += not holds
        print(("holds  " if holds else "BROKEN ") + text)

    for name, limit in ABSOLUTE:
        time = times.get(name)
        tell(time is not None and time <= limit, f"{name}: {time} ms, limit {limit} ms")
    for name, other, limit in RATIOS:
        if name in processor_times and other in processor_times:
            ratio = processor_times[name] / processor_times[other]
            tell(ratio <= limit, f"{name}: {ratio:.2f} of {other}, limit {limit}")
        else:
            tell(False, f"{name}: not measured")
    for text, value_of, direction, limit in COUNTERS:
        try:
            value = value_of(counters)
        except KeyError:
            tell(False, f"{text}: not measured")
            continue
        tell(value >= limit if direction == ">=" else value <= limit,
             f"{text}: {value:.2f}, limit {direction} {limit}")
    print(f"limits: {len(ABSOLUTE) + len(RATIOS) + len(COUNTERS) - bad} passed, {bad} failed")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
