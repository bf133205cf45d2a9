#!/usr/bin/env python3
"""Writes the seeds of EmitterFuzzer into corpus/emitter, beside this script: small emitter files, chunk by chunk."""

import pathlib
import struct
import zlib


def leaf(number, data=b""):
    return struct.pack("<II", number, len(data)) + data


def parent(number, *children):
    return struct.pack("<II", number, 0x80000000 | len(children)) + b"".join(children) if children else leaf(number)


def text(value):
    return struct.pack("<H", len(value)) + value


def micros(number, *values):
    return leaf(number, b"".join(struct.pack("<BB", key, len(data)) + data for key, data in values))


def parameter(number, value):
    return leaf(0, struct.pack("<i", number)) + parent(2, micros(0, (0, value)))


def plugin(number, kind, *parameters):
    values = b"".join(parameters)
    count = 0x80000000 | 2 * len(parameters) if parameters else 0
    return parent(number, leaf(0, struct.pack("<i", kind)), parent(1, struct.pack("<II", 0, count) + values))


def block(name, *plugins):
    variables = micros(
        0x1701,
        (0, text(name)),
        (2, b"\1"),
        (1, b"\0"),
        (10, struct.pack("<f", 1.5)),
        (3, struct.pack("<fff", 1, 2, 3)),
        (7, struct.pack("<f", 2)),
        (8, struct.pack("<f", 10)),
        (9, struct.pack("<i", 77)),
    )
    return parent(0x1700, variables, parent(0x1680, *plugins))


def layer(name, *kinds, number=0x1540):
    slots = [plugin(slot, kind) for slot, kind in zip((1, 2, 3, 4, 5, 5, 5), kinds)]
    return parent(number, leaf(0, text(name)), *slots)


def stream(*children):
    return parent(0x1500, leaf(0, text(b"old")), *children, micros(0x1502, (0, b"\0")))


def file(tree, mode=0):
    data = zlib.compress(tree) if mode & 1 else tree
    return b"CH\2\1" + bytes([mode]) + b"\xff\xff\xff" + struct.pack("<7I", 0, 8, len(data), 0, 0, 0, 0) + data


ATTACHED = parent(0x16A0, micros(0x16A1, (0, text(b"torch.mod")), (1, text(b"sway")), (2, b"\1")))
GROUP = parent(
    0x1780,
    block(b"fire", plugin(0x1681, 84), plugin(0x1683, 120)),
    parent(0x16C0, plugin(0x16C1, 107), plugin(0x16C1, 111)),
    layer(b"flames", 34, 27, 19, 22, 10, 17, 76),
    layer(b"sparks", 40, 26, 20, 38, 87, 18),
)
SEEDS = {
    "group": file(stream(GROUP)),
    "group-zlib": file(stream(GROUP), 1),
    "model": file(stream(parent(0x1800, block(b"m", plugin(0x1681, 118)), ATTACHED, parent(0x1680, plugin(0x1682, 119))))),
    "attached-model": file(stream(parent(0x1780, block(b"fire", plugin(0x1681, 84)), ATTACHED, layer(b"a", 34, 27, 19, 22)))),
    "legacy-root": file(stream(leaf(1, b"\1"), leaf(2, b"\1"), leaf(4), leaf(6), parent(0x1520, leaf(0x1521), layer(b"a", 0, 27, 19, 37)))),
    "legacy-group": file(
        stream(
            parent(
                0x1600,
                micros(0x1601, (0, text(b"old")), (5, b"\0\0\0\0")),
                parent(0x1640, micros(0x1641, (0, b"\0\0\0\0"))),
                parent(0x1660, micros(0x1661, (0, b"\0\0\0\0"))),
                layer(b"a", 34, 27, 19, 103),
            )
        )
    ),
    "old-rates": file(
        stream(
            parent(
                0x1780,
                parent(
                    0x1540,
                    plugin(1, 34, parameter(100, struct.pack("<f", 30)), parameter(101, struct.pack("<f", 0)), parameter(102, b"\1")),
                ),
            )
        )
    ),
    "bad-slots": file(stream(parent(0x1780, layer(b"a", 129, 34, 10, 200, 22, 999)))),
    "text": b'<?xml version="1.0" encoding="UTF-8" ?>\n<ChunkFile>\n<Header><UserData>0, 0</UserData></Header>\n'
    b'<Chunk Name="e" Id="5376"><Chunk Name="g" Id="6016"><Chunk Name="l" Id="5440"><Chunk Name="n" Id="0">'
    b'<String>flames</String></Chunk></Chunk></Chunk></Chunk></ChunkFile>\n',
}

folder = pathlib.Path(__file__).parent / "corpus" / "emitter"
folder.mkdir(parents=True, exist_ok=True)
for name, content in SEEDS.items():
    (folder / name).write_bytes(content)
