#!/usr/bin/env python3
"""Writes the ITW sample: samples/layout.itw, a layout of three text frames and
a graphic, and its tiny stroke font USERSTK (.TBW/.DAW wide index, .TBL/.DAT
plain index). The font's name holds "USER", so its indexes are plain.
Integers are little-endian; lengths are hundredths of a millimetre; a
character's cell is 5000 by 5000 units, y running from its first corner
towards its fourth."""
import os
import struct

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', 'samples')

# Stroke data per code: (op, x, y) or (2, x, y, cx, cy, direction).
GLYPHS = {
    ord('R'): [(1, 1000, 4500), (1, 1000, 500), (1, 3000, 500), (2, 3000, 500, 3000, 1500, -1),
               (1, 3000, 2500), (1, 1000, 2500), (3, 1000, 2500), (1, 2200, 2500), (3, 3800, 4500)],
    ord('V'): [(1, 800, 500), (1, 2500, 4500), (3, 4200, 500)],
    ord('O'): [(2, 2500, 500, 2500, 2500, 1), (3, 2500, 500)],
    ord('K'): [(1, 1000, 500), (3, 1000, 4500), (1, 4000, 500), (1, 1000, 2800), (3, 4000, 4500)],
}


def run(steps):
    out = b''
    for s in steps:
        out += struct.pack('<Hhh', *s[:3])
        if s[0] == 2:
            out += struct.pack('<hhh', *s[3:])
    return out + struct.pack('<Hhh', 0, 0, 0)


def font(base):
    wide, plain, data = b'', b'', b''
    for code, steps in GLYPHS.items():
        r = run(steps)
        wide += struct.pack('<HHhIH', code, 0, -32768, len(data), len(r))
        plain += struct.pack('<HIH', code, len(data), len(r))
        data += r
    for ext, content in (('.TBW', wide), ('.DAW', data), ('.TBL', plain), ('.DAT', data)):
        with open(base + ext, 'wb') as f:
            f.write(content)


def head(fonts):
    b = struct.pack('<H', 22345) + b'\0' * 75 + bytes([1]) + struct.pack('<H', len(fonts)) + b'\0' * 8
    for fid, kind, name, file in fonts:
        b += struct.pack('<HHHH', 40, 0, fid, kind) + bytes([len(name)]) + name + bytes([len(file)]) + file
    return b


def frame(count, corners, kind, horizontal, vline, hline, bulge, colour=0):
    b = struct.pack('<HH', 0, count) + b''.join(struct.pack('<ii', x, y) for x, y in corners)
    return b + struct.pack('<IHH', colour, kind, horizontal) + b'\0' * 14 + bytes([vline, hline]) + \
        struct.pack('<h', bulge)


def char(font_id, cell, code, size, rgb):
    b = struct.pack('<HH', 0, font_id) + b''.join(struct.pack('<ii', x, y) for x, y in cell)
    return b + struct.pack('<HH', code, 0) + b'\0' * 4 + struct.pack('<ii', size, size) + bytes(rgb) + b'\0' * 5


def box(x, y, w, h, slant=0):
    return [(x + slant, y + h), (x + w + slant, y + h), (x + w, y), (x, y)]


def vertex(op, direction, x, y, cx=0, cy=0):
    return struct.pack('<Hhiiiii', op, direction, x, y, cx, cy, 0)


def main():
    font(os.path.join(HERE, 'USERSTK'))
    fonts = [(1, 0, b'Stroke', b'USERSTK'), (2, 1, b'IPAGothic', b'')]
    out = head(fonts)
    # A straight frame: R V O K in 15 mm cells and a hiragana A from an installed font.
    word = [ord(c) for c in 'RVOK']
    out += frame(len(word) + 1, box(1000, 1000, 8000, 2000), 0, 1, 0, 1, 0)
    for i, code in enumerate(word):
        out += char(1, box(1250 + 1500 * i, 1250, 1500, 1500), code, 1500, (200, 0, 0))
    out += char(2, box(7250, 1250, 1500, 1500), 0x2422, 1500, (0, 0, 160))
    # The same word in slanted (distorted) cells: its arcs are flattened.
    out += frame(len(word), box(1000, 3500, 8000, 2000), 0, 1, 0, 0, 0)
    for i, code in enumerate(word):
        out += char(1, box(1250 + 1500 * i, 3750, 1500, 1500, 400), code, 1500, (0, 120, 0))
    # A bulged frame.
    out += frame(0, box(1000, 6000, 8000, 2000), 0, 1, 1, 0, 2000)
    # A graphic: a rounded badge.
    badge = (vertex(1, 0, 10000, 1000) + vertex(1, 0, 13000, 1000) +
             vertex(2, 1, 13000, 1000, 13000, 2000) + vertex(1, 0, 13000, 3000) +
             vertex(1, 0, 10000, 3000) + vertex(3, 0, 10000, 1000))
    out += frame(6, box(10000, 1000, 4000, 2000), 0xFFFF, 0, 0, 1, 0, 0x0080FF) + badge
    with open(os.path.join(HERE, 'layout.itw'), 'wb') as f:
        f.write(out)


if __name__ == '__main__':
    main()
