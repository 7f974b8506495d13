#!/usr/bin/env python3
"""Writes small valid bitmaps into a folder, one per branch of the reader, for the fuzzer to start from."""
import struct
import sys
from pathlib import Path


def bitmap(bits, width, height, palette=b"", compression=0):
    pitch = (width * bits // 8 + 3) // 4 * 4
    pixels = bytes(i * 37 & 0xFF for i in range(pitch * abs(height)))
    offset = 14 + 40 + len(palette)
    header = struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, compression, len(pixels), 2835, 2835,
                         len(palette) // 4, 0)
    return struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0, offset) + header + palette + pixels


def palette(colour):
    return b"".join(bytes((*colour(i), 0)) for i in range(256))


def main():
    folder = Path(sys.argv[1])
    grey, inverted = palette(lambda i: (i, i, i)), palette(lambda i: (255 - i,) * 3)
    colours = palette(lambda i: (i, i // 2, 255 - i))
    seeds = {"grey": bitmap(8, 5, 3, grey), "grey-top-down": bitmap(8, 4, -3, grey),
             "grey-inverted": bitmap(8, 3, 2, inverted), "colour-palette": bitmap(8, 3, 3, colours),
             "short-palette": bitmap(8, 3, 2, grey[:64]), "true-colour": bitmap(24, 3, 2),
             "true-colour-top-down": bitmap(24, 2, -2), "with-spare-byte": bitmap(32, 2, 2),
             "one-bit": bitmap(1, 9, 2, grey[:8]), "compressed": bitmap(8, 4, 2, grey, compression=1)}
    for name, data in seeds.items():
        (folder / f"{name}.bmp").write_bytes(data)


if __name__ == "__main__":
    main()
