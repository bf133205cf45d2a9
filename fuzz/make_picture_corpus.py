#!/usr/bin/env python3
"""Writes the seeds of TgaFuzzer and DdsFuzzer: make_picture_corpus.py <folder of the corpora>"""

import pathlib
import struct
import sys


def tga(kind, width, height, bits, descriptor, body, name=b"", palette=(0, 0, 0)):
    start, count, depth = palette
    return struct.pack("<BBBHHBHHHHBB", len(name), 1 if count else 0, kind, start, count, depth, 0, 0, width, height,
                       bits, descriptor) + name + body


def dds(width, height, levels, form, body, bits=0, masks=(0, 0, 0, 0), caps=0, flags=4):
    pixel = struct.pack("<II4sI4I", 32, flags, form, bits, *masks)
    header = struct.pack("<7I44x", 124, 0, height, width, 0, 0, levels) + pixel + struct.pack("<5I", 0, caps, 0, 0, 0)
    return b"DDS " + header + body


TGA = {
    "color": tga(2, 2, 2, 24, 0, bytes(range(12))),
    "color-alpha": tga(2, 2, 1, 32, 0x28, bytes(range(8))),
    "color-16": tga(2, 2, 1, 16, 0x21, bytes(range(4))),
    "grey": tga(3, 3, 1, 8, 0x30, bytes(3), name=b"name"),
    "palette": tga(1, 2, 1, 8, 0x20, bytes(6) + bytes([2, 3]), palette=(2, 2, 24)),
    "runs": tga(10, 2, 2, 24, 0x20, bytes([1, 3, 2, 1, 6, 5, 4, 0x81, 9, 8, 7])),
    "runs-grey": tga(11, 130, 2, 8, 0x20, bytes([0xff, 1, 0xff, 2, 0x83, 3])),
    "runs-palette": tga(9, 2, 1, 8, 0x20, bytes(4) + bytes([0x81, 0]), palette=(0, 1, 32)),
}
DDS = {
    "bc1": dds(5, 2, 3, b"DXT1", bytes(32)),
    "bc2": dds(4, 4, 1, b"DXT3", bytes(16)),
    "bc3": dds(8, 4, 4, b"DXT5", bytes(range(80))),
    "masks-32": dds(2, 1, 1, bytes(4), bytes(8), 32, (0xff0000, 0xff00, 0xff, 0xff000000), flags=0x41),
    "masks-16": dds(2, 1, 1, bytes(4), bytes(4), 16, (0xf800, 0x7e0, 0x1f, 0), flags=0x40),
    "grey-8": dds(2, 1, 1, bytes(4), bytes(2), 8, (0xff, 0, 0, 0), flags=0x20000),
    "cube": dds(4, 4, 1, b"DXT1", bytes(48), caps=0xfe00),
    "extended": dds(4, 4, 1, b"DX10", struct.pack("<5I", 77, 3, 0, 1, 0) + bytes(16)),
}


def main():
    for folder, seeds in (("tga", TGA), ("dds", DDS)):
        path = pathlib.Path(sys.argv[1]) / folder
        path.mkdir(parents=True, exist_ok=True)
        for name, content in seeds.items():
            (path / name).write_bytes(content)


if __name__ == "__main__":
    main()
