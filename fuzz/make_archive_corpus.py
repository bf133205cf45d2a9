#!/usr/bin/env python3
"""Writes the seeds of ArchiveFuzzer into corpus/archive, beside this script. The first byte of a seed is the fuzzer's:
the size of the companion header file in steps of 16 bytes."""

import pathlib
import struct
import zlib

FILES = [(b"DATA\\ONE.TXT", b"first"), (b"DATA\\EMPTY.TXT", b""), (b"TWO.TXT", b"0123456789")]


def header(files, data_start, prefix=None, flags=0):
    strings = b"".join(struct.pack("<H", len(name)) + name for name, _ in files)
    rows, offset = [], data_start
    for index, (name, data) in enumerate(files):
        rows.append((zlib.crc32(name.upper()), len(data), offset, index))
        offset += len(data)
    rows.sort()
    table = b"".join(
        struct.pack("<HIIIIH", flags, crc, at, size, offset, index) for at, (crc, size, offset, index) in enumerate(rows)
    )
    body = struct.pack("<III", len(rows), len(files), len(strings)) + strings + table
    if prefix is None:
        return body
    return struct.pack("<IfI", prefix, 1.0, 12 + len(body)) + body


def archive(files, **options):
    start = len(header(files, 0, **options))
    return header(files, start, **options) + b"".join(data for _, data in files)


def companion(files):
    head = header(files, 0)
    head += bytes(-len(head) % 16)
    return bytes([len(head) // 16]) + head + b"".join(data for _, data in files)


SEEDS = {
    "plain": b"\0" + archive(FILES),
    "one-file": b"\0" + archive(FILES[:1]),
    "prefixed": b"\0" + archive(FILES, prefix=0xFFFFFFFF),
    "encrypted-archive": b"\0" + archive(FILES, prefix=0x8FFFFFFF),
    "encrypted-entries": b"\0" + archive(FILES, flags=1),
    "companion": companion(FILES),
    "no-sub-files": b"\0" + archive([]),
    "cut-short": b"\0" + archive(FILES)[:-3],
}

folder = pathlib.Path(__file__).parent / "corpus" / "archive"
folder.mkdir(parents=True, exist_ok=True)
for name, content in SEEDS.items():
    (folder / name).write_bytes(content)
