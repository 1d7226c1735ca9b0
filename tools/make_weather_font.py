#!/usr/bin/env python3
"""Ships the weather symbol font and its glyph list.

- copies font/weathericons-regular-webfont.ttf of the npm package weathericons 2.1.0
  (installed by `npm ci` in this folder) to data/fonts/;
- writes the SIL Open Font License 1.1 beside it (data/fonts/OFL.txt) and into
  data/licenses/OFL.txt, since the package carries no licence file of its own;
- writes data/weather/glyphs.txt: one line "code|HEX" per classic condition code (0-47 and
  3200, ascending), HEX the font's code point for it, taken from the package's wi-yahoo-N
  classes; CR LF after every line.

Checks: the package is version 2.1.0, the CSS mapping equals the table below, and the font's
character map holds every code point. On failure nothing is written and the exit code is 1.

Usage: python3 make_weather_font.py [--package DIR] [--data DIR]
"""

import argparse
import os
import re
import json
import shutil
import struct
import sys

PACKAGE_VERSION = "2.1.0"
FONT_FILE = "weathericons-regular-webfont.ttf"
COPYRIGHT = "Copyright (c) Erik Flowers, Lukas Bischoff (v1 Art)"

# Classic condition code -> code point, as documented for the feed adapter. The CSS must agree.
EXPECTED = {
    0: 0xF056, 1: 0xF00E, 2: 0xF073, 3: 0xF01E, 4: 0xF01E, 5: 0xF017, 6: 0xF017, 7: 0xF017,
    8: 0xF015, 9: 0xF01A, 10: 0xF015, 11: 0xF01A, 12: 0xF01A, 13: 0xF01B, 14: 0xF00A,
    15: 0xF064, 16: 0xF01B, 17: 0xF015, 18: 0xF017, 19: 0xF063, 20: 0xF014, 21: 0xF021,
    22: 0xF062, 23: 0xF050, 24: 0xF050, 25: 0xF076, 26: 0xF013, 27: 0xF031, 28: 0xF002,
    29: 0xF031, 30: 0xF002, 31: 0xF02E, 32: 0xF00D, 33: 0xF083, 34: 0xF00C, 35: 0xF017,
    36: 0xF072, 37: 0xF00E, 38: 0xF00E, 39: 0xF00E, 40: 0xF01A, 41: 0xF064, 42: 0xF01B,
    43: 0xF064, 44: 0xF00C, 45: 0xF00E, 46: 0xF01B, 47: 0xF00E, 3200: 0xF077,
}

OFL_BODY = """\
This Font Software is licensed under the SIL Open Font License, Version 1.1.
This license is copied below, and is also available with a FAQ at:
https://openfontlicense.org


-----------------------------------------------------------
SIL OPEN FONT LICENSE Version 1.1 - 26 February 2007
-----------------------------------------------------------

PREAMBLE
The goals of the Open Font License (OFL) are to stimulate worldwide
development of collaborative font projects, to support the font creation
efforts of academic and linguistic communities, and to provide a free and
open framework in which fonts may be shared and improved in partnership
with others.

The OFL allows the licensed fonts to be used, studied, modified and
redistributed freely as long as they are not sold by themselves. The
fonts, including any derivative works, can be bundled, embedded,
redistributed and/or sold with any software provided that any reserved
names are not used by derivative works. The fonts and derivatives,
however, cannot be released under any other type of license. The
requirement for fonts to remain under this license does not apply
to any document created using the fonts or their derivatives.

DEFINITIONS
"Font Software" refers to the set of files released by the Copyright
Holder(s) under this license and clearly marked as such. This may
include source files, build scripts and documentation.

"Reserved Font Name" refers to any names specified as such after the
copyright statement(s).

"Original Version" refers to the collection of Font Software components as
distributed by the Copyright Holder(s).

"Modified Version" refers to any derivative made by adding to, deleting,
or substituting -- in part or in whole -- any of the components of the
Original Version, by changing formats or by porting the Font Software to a
new environment.

"Author" refers to any designer, engineer, programmer, technical
writer or other person who contributed to the Font Software.

PERMISSION & CONDITIONS
Permission is hereby granted, free of charge, to any person obtaining
a copy of the Font Software, to use, study, copy, merge, embed, modify,
redistribute, and sell modified and unmodified copies of the Font
Software, subject to the following conditions:

1) Neither the Font Software nor any of its individual components,
in Original or Modified Versions, may be sold by itself.

2) Original or Modified Versions of the Font Software may be bundled,
redistributed and/or sold with any software, provided that each copy
contains the above copyright notice and this license. These can be
included either as stand-alone text files, human-readable headers or
in the appropriate machine-readable metadata fields within text or
binary files as long as those fields can be easily viewed by the user.

3) No Modified Version of the Font Software may use the Reserved Font
Name(s) unless explicit written permission is granted by the corresponding
Copyright Holder. This restriction only applies to the primary font name as
presented to the users.

4) The name(s) of the Copyright Holder(s) or the Author(s) of the Font
Software shall not be used to promote, endorse or advertise any
Modified Version, except to acknowledge the contribution(s) of the
Copyright Holder(s) and the Author(s) or with their explicit written
permission.

5) The Font Software, modified or unmodified, in part or in whole,
must be distributed entirely under this license, and must not be
distributed under any other license. The requirement for fonts to
remain under this license does not apply to any document created
using the Font Software.

TERMINATION
This license becomes null and void if any of the above conditions are
not met.

DISCLAIMER
THE FONT SOFTWARE IS PROVIDED "AS IS", WITHOUT WARRANTY OF ANY KIND,
EXPRESS OR IMPLIED, INCLUDING BUT NOT LIMITED TO ANY WARRANTIES OF
MERCHANTABILITY, FITNESS FOR A PARTICULAR PURPOSE AND NONINFRINGEMENT
OF COPYRIGHT, PATENT, TRADEMARK, OR OTHER RIGHT. IN NO EVENT SHALL THE
COPYRIGHT HOLDER BE LIABLE FOR ANY CLAIM, DAMAGES OR OTHER LIABILITY,
INCLUDING ANY GENERAL, SPECIAL, INDIRECT, INCIDENTAL, OR CONSEQUENTIAL
DAMAGES, WHETHER IN AN ACTION OF CONTRACT, TORT OR OTHERWISE, ARISING
FROM, OUT OF THE USE OR INABILITY TO USE THE FONT SOFTWARE OR FROM
OTHER DEALINGS IN THE FONT SOFTWARE.
"""


def css_mapping(css_text):
    """wi-yahoo-N classes of the package's stylesheet -> {N: code point}."""
    pattern = re.compile(r'\.wi-yahoo-(\d+):before\s*\{\s*content:\s*"\\([0-9a-fA-F]+)"')
    return {int(code): int(point, 16) for code, point in pattern.findall(css_text)}


def font_code_points(font):
    """Code points of the font's Unicode character map (cmap format 4 subtable)."""
    table_count = struct.unpack(">H", font[4:6])[0]
    for i in range(table_count):
        tag, _, offset, _ = struct.unpack(">4sIII", font[12 + 16 * i:28 + 16 * i])
        if tag == b"cmap":
            return cmap_points(font, offset)
    return set()


def cmap_points(font, cmap):
    points = set()
    count = struct.unpack(">H", font[cmap + 2:cmap + 4])[0]
    for i in range(count):
        platform, encoding, offset = struct.unpack(">HHI", font[cmap + 4 + 8 * i:cmap + 12 + 8 * i])
        sub = cmap + offset
        if (platform, encoding) not in ((3, 1), (0, 3)):
            continue
        if struct.unpack(">H", font[sub:sub + 2])[0] != 4:
            continue
        segments = struct.unpack(">H", font[sub + 6:sub + 8])[0] // 2
        ends = struct.unpack(f">{segments}H", font[sub + 14:sub + 14 + 2 * segments])
        start_at = sub + 16 + 2 * segments
        starts = struct.unpack(f">{segments}H", font[start_at:start_at + 2 * segments])
        for start, end in zip(starts, ends):
            if start != 0xFFFF:
                points.update(range(start, end + 1))
    return points


def check(package_dir):
    failures = []
    with open(os.path.join(package_dir, "package.json"), encoding="utf-8") as handle:
        version = json.load(handle).get("version")
    if version != PACKAGE_VERSION:
        failures.append(f"weathericons is {version}, expected {PACKAGE_VERSION}")
    with open(os.path.join(package_dir, "css", "weather-icons.css"), encoding="utf-8") as handle:
        mapping = css_mapping(handle.read())
    if mapping != EXPECTED:
        differing = sorted(set(mapping.items()) ^ set(EXPECTED.items()))
        failures.append(f"CSS glyph mapping differs from the expected table: {differing}")
    with open(os.path.join(package_dir, "font", FONT_FILE), "rb") as handle:
        present = font_code_points(handle.read())
    missing = sorted(p for p in set(EXPECTED.values()) if p not in present)
    if missing:
        failures.append("font lacks code points " + ", ".join(f"{p:04X}" for p in missing))
    return failures


def write_text(path, text):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    temporary = path + ".tmp"
    with open(temporary, "w", encoding="utf-8", newline="") as handle:
        handle.write(text)
    os.replace(temporary, path)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--package", default=os.path.join(here, "node_modules", "weathericons"))
    parser.add_argument("--data", default=os.path.join(here, "..", "data"))
    args = parser.parse_args()

    if not os.path.isdir(args.package):
        print(f"no weathericons package in {args.package} (run npm ci here)", file=sys.stderr)
        return 1
    failures = check(args.package)
    if failures:
        for failure in failures:
            print("check failed: " + failure, file=sys.stderr)
        return 1

    fonts = os.path.join(args.data, "fonts")
    os.makedirs(fonts, exist_ok=True)
    shutil.copyfile(os.path.join(args.package, "font", FONT_FILE), os.path.join(fonts, FONT_FILE))
    licence = COPYRIGHT + "\n\n" + OFL_BODY
    write_text(os.path.join(fonts, "OFL.txt"), licence)
    write_text(os.path.join(args.data, "licenses", "OFL.txt"), licence)
    glyphs = "".join(f"{code}|{point:04X}\r\n" for code, point in sorted(EXPECTED.items()))
    write_text(os.path.join(args.data, "weather", "glyphs.txt"), glyphs)
    print(f"{FONT_FILE}, OFL.txt and glyphs.txt ({len(EXPECTED)} codes) written")
    return 0


if __name__ == "__main__":
    sys.exit(main())
