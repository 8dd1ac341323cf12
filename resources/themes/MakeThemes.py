#!/usr/bin/env python3
"""Makes the colour themes: the documents beside this script and the framework's built-in table.

    MakeThemes.py           writes the files
    MakeThemes.py --check   says which of them differ, and fails

A document per version of the look: the newest one is what skins take, the older ones are for a
framework that knows no newer. All have the same roles and the same lightnesses; what a look changes is
the hues of the dialog and its controls, so each is as readable as the others.

Colours are named by hue and lightness (L* of CIELAB): grey27, blue65. Contrast follows from
lightness: a distance of 50 gives at least 4.5 to 1, of 40 at least 3 to 1. So every role is a row of
four lightnesses, and the rows below can be checked by subtracting.

The frames stand at the brightness 0, just below 50, at 50 and at 100. Up to the hard step at 50 a
theme is dark with light text, from there on light with dark text; in the middle, where grey carries
neither text well, no ground ever is.
"""

import math
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
BUILT_IN = HERE.parent.parent / "framework" / "kivui" / "src" / "BuiltInTheme.cpp"

COLOR_COUNT = 385
CLEAR_OVERLAY = 236
FRAMES = (0, 50, 50, 100)

# hue: angle in degrees, largest chroma
HUES = {
    "grey": (265, 2.5),
    "blue": (275, 52),
    "mist": (275, 20),
    "red": (30, 62),
    "amber": (72, 62),
    "gold": (82, 78),
    "green": (145, 52),
    "teal": (195, 36),
    "violet": (308, 52),
    "rose": (355, 52),
    "orange": (52, 66),
    "olive": (108, 46),
    "brown": (60, 28),
    # Of older looks.
    "slate": (255, 5),
    "azure": (245, 44),
    "haze": (245, 16),
    "sand": (80, 3),
    "foam": (195, 14),
    "neutral": (0, 0),
    "steel": (265, 20),
    "smoke": (265, 8),
}

# version: the hues that stand in for those of the rows below, in the dialog and its controls. Charts
# and marks of success keep theirs, which are chosen to be told apart.
LOOKS = {
    5: {},
    4: {"grey": "slate", "blue": "azure", "mist": "haze"},
    3: {"grey": "sand", "blue": "teal", "mist": "foam"},
    2: {"grey": "neutral", "blue": "steel", "mist": "smoke"},
}
NEWEST = max(LOOKS)

# Roles of the dialog, in the order of the framework's ThemeColor: hue and lightness at the four
# frames. A veil is black or white of an opacity in percent.
DIALOG = [
    ("ground", "grey", (7, 27, 80, 97)),
    ("raised-ground", "grey", (10, 30, 77, 94)),
    ("field-ground", "grey", (4, 23, 88, 100)),
    ("hairline", "grey", (20, 40, 68, 86)),
    ("text", "grey", (92, 98, 4, 12)),
    ("secondary-text", "grey", (70, 87, 20, 38)),
    ("disabled-text", "grey", (40, 58, 55, 66)),
    ("accent", "blue", (64, 76, 30, 44)),
    ("accent-text", "grey", (4, 8, 100, 100)),
    ("accent-tint", "mist", (20, 38, 70, 89)),
    ("error", "red", (68, 87, 21, 40)),
    ("warning", "amber", (74, 88, 20, 38)),
    ("hover-tint", "veil", (+7, +8, -6, -5)),
    ("pressed-tint", "veil", (+12, +13, -10, -9)),
    ("field-frame", "grey", (54, 74, 33, 52)),
    ("focus", "blue", (64, 76, 30, 44)),
    ("accent-hover", "blue", (69, 81, 26, 40)),
    ("accent-pressed", "blue", (60, 72, 34, 36)),
    ("selection", "blue", (32, 42, 76, 86)),
    ("selection-text", "grey", (98, 100, 4, 8)),
    ("icon", "grey", (72, 88, 20, 36)),
    ("placeholder", "grey", (64, 82, 30, 46)),
    ("star", "gold", (76, 84, 40, 54)),
    ("star-empty", "grey", (54, 74, 33, 52)),
    ("chip-ground", "grey", (16, 34, 78, 91)),
    ("disabled-ground", "grey", (10, 29, 77, 93)),
    ("disabled-frame", "grey", (20, 40, 66, 84)),
    ("field-frame-hover", "grey", (70, 86, 20, 38)),
    ("changed-dot", "blue", (64, 76, 30, 44)),
    ("link", "blue", (72, 90, 17, 36)),
]

# Roles of skins: each control has a ground, a frame, a text and an icon, each in five states. A part
# is the dialog role that it begins from.
CONTROLS = [
    # name, ground, frame, text, icon
    ("button", "field-ground", "field-frame", "text", "icon"),
    ("confirming-button", "accent", "accent", "accent-text", "accent-text"),
    ("quiet-button", "ground", "ground", "link", "icon"),
    ("toolbar-button", "raised-ground", "raised-ground", "text", "icon"),
    ("field", "field-ground", "field-frame", "text", "icon"),
    ("search-field", "field-ground", "field-frame", "text", "icon"),
    ("choice", "field-ground", "field-frame", "text", "icon"),
    ("navigation-item", "raised-ground", "hairline", "text", "icon"),
    ("current-navigation-item", "accent-tint", "accent", "text", "icon"),
    ("list-row", "field-ground", "hairline", "text", "icon"),
    ("selected-list-row", "selection", "hairline", "selection-text", "selection-text"),
    ("menu-item", "raised-ground", "hairline", "text", "icon"),
    ("tab", "raised-ground", "hairline", "secondary-text", "icon"),
    ("current-tab", "ground", "accent", "text", "icon"),
    ("chip", "chip-ground", "hairline", "text", "icon"),
    ("check", "field-ground", "field-frame", "text", "icon"),
    ("tool-tip", "raised-ground", "field-frame", "text", "icon"),
]
PARTS = ("ground", "frame", "text", "icon")
STATES = ("normal", "hover", "pressed", "focused", "disabled")

# What hovering and pressing add to a ground's lightness at the four frames.
GROUND_STEPS = {"hover": (3, 3, -2, -3), "pressed": (6, 6, -4, -6)}

# The rest. The charts' twelve keep 40 from the ground.
OTHERS = [
    ("success", "green", (70, 87, 20, 38)),
    ("success-ground", "green", (14, 32, 76, 92)),
] + [
    (f"chart-{number}", hue, lightness)
    for number, (hue, lightness) in enumerate(
        [
            ("blue", (64, 76, 30, 44)),
            ("orange", (68, 80, 34, 50)),
            ("green", (66, 78, 32, 46)),
            ("rose", (70, 82, 28, 42)),
            ("gold", (78, 88, 38, 54)),
            ("violet", (60, 72, 26, 38)),
            ("teal", (72, 84, 30, 44)),
            ("red", (62, 74, 32, 46)),
            ("olive", (74, 86, 36, 52)),
            ("brown", (58, 70, 24, 36)),
            ("amber", (80, 90, 38, 56)),
            ("grey", (56, 70, 36, 52)),
        ],
        start=1,
    )
]


def linear_to_byte(value):
    value = min(max(value, 0.0), 1.0)
    encoded = 12.92 * value if value <= 0.0031308 else 1.055 * value ** (1 / 2.4) - 0.055
    return int(math.floor(encoded * 255 + 0.5))


def lab_to_linear(lightness, a, b):
    def decode(t):
        return t**3 if t > 6 / 29 else 3 * (6 / 29) ** 2 * (t - 4 / 29)

    y = (lightness + 16) / 116
    x, y, z = 0.95047 * decode(y + a / 500), decode(y), 1.08883 * decode(y - b / 200)
    return (
        3.2404542 * x - 1.5371385 * y - 0.4985314 * z,
        -0.9692660 * x + 1.8760108 * y + 0.0415560 * z,
        0.0556434 * x - 0.2040259 * y + 1.0572252 * z,
    )


def color_of(hue, lightness):
    """The colour of that lightness with as much of the hue's chroma as sRGB has room for."""
    if lightness <= 0 or lightness >= 100:
        return "#000000" if lightness <= 0 else "#ffffff"
    angle, chroma = HUES[hue]
    radians = math.radians(angle)
    # Greys lose their tint towards black and white, colours only what sRGB cannot show.
    while True:
        linear = lab_to_linear(lightness, chroma * math.cos(radians), chroma * math.sin(radians))
        if chroma <= 0 or all(-0.0005 <= part <= 1.0005 for part in linear):
            return "#" + "".join(f"{linear_to_byte(part):02x}" for part in linear)
        chroma -= 0.5


def veil_of(percent):
    alpha = int(math.floor(abs(percent) * 2.55 + 0.5))
    return ("#ffffff" if percent > 0 else "#000000") + f"{alpha:02x}"


class Color:
    """A colour of the palette: the name of its entity and its value."""

    def __init__(self, hue, lightness):
        if hue == "veil":
            self.name = ("white" if lightness > 0 else "black") + f"-veil{abs(lightness):02d}"
            self.value = veil_of(lightness)
        else:
            self.name = f"{hue}{lightness:02d}"
            self.value = color_of(hue, lightness)


def colors_of(hue, lightnesses):
    return [Color(hue, lightness) for lightness in lightnesses]


def control_role(bases, part, state):
    hue, lightness = bases[part]
    if state == "disabled":
        kept = {"ground": "disabled-ground", "frame": "disabled-frame"}
        return bases[kept.get(part, "disabled-text")]
    if part == "frame" and state == "focused":
        return bases["focus"]
    if part == "frame" and lightness == bases["field-frame"][1] and state in GROUND_STEPS:
        return bases["field-frame-hover"]
    if part == "ground" and state in GROUND_STEPS:
        steps = GROUND_STEPS[state]
        return hue, tuple(min(max(l + s, 0), 100) for l, s in zip(lightness, steps))
    return hue, lightness


def all_roles(version):
    look = LOOKS[version]
    dialog = {name: (look.get(hue, hue), lightness) for name, hue, lightness in DIALOG}
    roles = [(name, colors_of(hue, lightness)) for name, (hue, lightness) in dialog.items()]
    for name, *sources in CONTROLS:
        bases = dict(dialog)
        bases.update({part: dialog[source] for part, source in zip(PARTS, sources)})
        for part in PARTS:
            for state in STATES:
                roles.append(
                    (f"{name}.{part}.{state}", colors_of(*control_role(bases, part, state)))
                )
    roles += [(name, colors_of(hue, lightness)) for name, hue, lightness in OTHERS]
    clear = Color("veil", 1)
    clear.name, clear.value = "clear", "#ffffff00"
    roles.insert(CLEAR_OVERLAY, ("clear-overlay", [clear] * len(FRAMES)))
    assert len(roles) == COLOR_COUNT, len(roles)
    assert len({name for name, _ in roles}) == COLOR_COUNT
    return roles


def document(version):
    roles = all_roles(version)
    entities = {color.name: color.value for _, colors in roles for color in colors}
    lines = [
        '<?xml version="1.0" encoding="UTF-8"?>',
        "<!-- Written by MakeThemes.py; change that, not this. -->",
        "<!DOCTYPE colorthemes [",
    ]
    lines += [f'<!ENTITY {name} "{entities[name]}">' for name in sorted(entities)]
    lines += [
        "]>",
        f'<colorthemes version="{version}">',
        '<fontsize index="0" name="label" size="12"/>',
        '<fontsize index="1" name="body" size="13"/>',
        '<fontsize index="2" name="title" size="18"/>',
    ]
    for index, (name, colors) in enumerate(roles):
        keys = " | ".join(f"{at} &{color.name};" for at, color in zip(FRAMES, colors))
        lines.append(f'<color index="{index}" name="{name}" keys="{keys}"/>')
    lines.append("</colorthemes>")
    return "\n".join(lines) + "\n"


BUILT_IN_HEAD = """\
// Written by resources/themes/MakeThemes.py; change that, not this.

#include <cstdint>

#include "framework/kivui/src/ThemeDocument.h"

namespace kivui::ui {

namespace {

constexpr float kFramePercents[] = {0, 50, 50, 100};

struct Row {
    std::size_t index;
    std::uint32_t rgba[4];
};

constexpr Row kRows[] = {
"""

BUILT_IN_TAIL = """\
};

constexpr double kFontSizes[] = {12, 13, 18};

float PartOf(std::uint32_t rgba, int shift)
{
    return static_cast<float>((rgba >> shift) & 0xff) / 255.0f;
}

ThemeDocument MakeDocument()
{
    ThemeDocument document;
    for (const Row& row : kRows) {
        if (row.index >= document.colors.size()) {
            document.colors.resize(row.index + 1);
        }
        for (std::size_t i = 0; i < std::size(kFramePercents); ++i) {
            const std::uint32_t rgba = row.rgba[i];
            document.colors[row.index].push_back(
                {kFramePercents[i],
                 {PartOf(rgba, 24), PartOf(rgba, 16), PartOf(rgba, 8), PartOf(rgba, 0)}});
        }
    }
    document.fontSizes.assign(std::begin(kFontSizes), std::end(kFontSizes));
    return document;
}

}  // namespace

std::shared_ptr<const ThemeDocument> BuiltInTheme()
{
    return std::make_shared<const ThemeDocument>(MakeDocument());
}

}  // namespace kivui::ui
"""


def built_in(roles):
    lines = []
    for index, (name, colors) in enumerate(roles):
        if index >= len(DIALOG) and index != CLEAR_OVERLAY:
            continue
        values = []
        for color in colors:
            value = color.value[1:]
            values.append("0x" + (value if len(value) == 8 else value + "ff"))
        lines.append(f"    {{{index}, {{{', '.join(values)}}}}},  // {name}")
    return BUILT_IN_HEAD + align_comments(lines) + BUILT_IN_TAIL


def align_comments(lines):
    """Sets the comments behind the rows in one column, as the formatter does."""
    width = max(line.index("  //") for line in lines)
    return "".join(
        line[: line.index("  //")].ljust(width) + line[line.index("  //") :] + "\n"
        for line in lines
    )


def main():
    files = {HERE / f"KIVCOLORTHEMESV{version}.xml": document(version) for version in LOOKS}
    files[BUILT_IN] = built_in(all_roles(NEWEST))
    if "--check" not in sys.argv[1:]:
        for path, text in files.items():
            path.write_text(text, encoding="utf-8")
        return 0
    problems = [
        f"{path.name} is not what MakeThemes.py writes: run it"
        for path, text in files.items()
        if not path.is_file() or path.read_text(encoding="utf-8") != text
    ]
    problems += [
        f"{path.name} is written by nobody"
        for path in sorted(HERE.glob("*.xml"))
        if path not in files
    ]
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
