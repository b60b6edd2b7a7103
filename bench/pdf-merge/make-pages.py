#!/usr/bin/env python3
"""Writes pages for the merge benchmark: articles with headings, links inside the page, a shared
logo and a picture of their own.

usage: make-pages.py FOLDER COUNT
"""
import base64
import pathlib
import random
import struct
import sys
import zlib

WORDS = """page capture window reader paper letter margin colour picture network garden river
mountain weather kitchen history science music travel market street journey window engine""".split()


def png(width, height, seed):
    """A picture with soft shapes: neither flat nor noise."""
    rows = bytearray()
    for y in range(height):
        rows.append(0)
        for x in range(width):
            rows += bytes(((x * seed + y) // 7 % 256, (x + y * seed) // 5 % 256, x * y // 50 % 256))
    chunk = lambda kind, data: (struct.pack(">I", len(data)) + kind + data
                                + struct.pack(">I", zlib.crc32(kind + data)))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(bytes(rows))) + chunk(b"IEND", b""))


def picture(width, height, seed):
    return "data:image/png;base64," + base64.b64encode(png(width, height, seed)).decode()


def page(number, logo):
    source = random.Random(number)
    text = lambda count: " ".join(source.choice(WORDS) for _ in range(count)).capitalize() + "."
    sections = range(source.randint(4, 12))
    contents = "".join(f'<li><a href="#section{s}">Section {s}</a></li>' for s in sections)
    body = "".join(f'<h2 id="section{s}">Section {s}: {text(3)}</h2>'
                   + "".join(f"<p>{text(source.randint(40, 120))} "
                             f'<a href="http://localhost/{number}/{s}">{text(2)}</a></p>' for _ in range(4))
                   for s in sections)
    return (f'<!doctype html><html lang="en"><meta charset="utf-8"><title>Article {number}</title>'
            f'<img src="{logo}" alt="logo"><h1>Article {number}</h1><ul>{contents}</ul>'
            f'<img src="{picture(160, 120, number % 50 + 2)}" alt="picture">{body}</html>')


def main():
    folder, count = pathlib.Path(sys.argv[1]), int(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    logo = picture(320, 200, 3)
    for number in range(count):
        (folder / f"page{number:03}.html").write_text(page(number, logo))


main()
