#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the pictures of docs/ltc-decoder.md.

Usage: docs/ltc-decoder.py           (writes docs/images/ltc-decoder-*.svg)
       docs/ltc-decoder.py --limit   (prints the bound of "The limit")
"""

import math
import pathlib
import sys

IMAGES = pathlib.Path(__file__).resolve().parent / "images"
FONT = 'font-family="sans-serif" font-size="13"'


def svg(width, height, parts):
    head = f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" {FONT}>'
    ground = f'<rect width="{width}" height="{height}" fill="white"/>'
    arrow = ('<defs><marker id="arrow" markerWidth="9" markerHeight="8" refX="8" refY="4" orient="auto">'
             '<path d="M0,0 L9,4 L0,8 z"/></marker></defs>')
    return "\n".join([head, arrow, ground, *parts, "</svg>", ""])


def text(x, y, words, anchor="middle", style=""):
    return f'<text x="{x}" y="{y}" text-anchor="{anchor}" {style}>{words}</text>'


def half_bits(bits):
    """The levels of the half bits of `bits`, the first one high: biphase mark code."""
    level, levels = 1, []
    for bit in bits:
        levels += [level, -level if bit else level]
        level = level if bit else -level
    return levels


def signal():
    left, cell, swing = 90, 60, 26
    digits = [(1, [1, 0, 0, 0]), (2, [0, 1, 0, 0])]
    waves = [half_bits(bits) for _, bits in digits]
    parts = []
    for row, ((digit, bits), wave) in enumerate(zip(digits, waves)):
        middle = 70 + 110 * row
        parts.append(text(left - 20, middle + 5, f"digit {digit}", "end"))
        for place, bit in enumerate(bits):
            x = left + 2 * cell * place
            parts.append(text(x + cell, middle - swing - 14, bit))
            parts.append(f'<line x1="{x}" y1="{middle - 45}" x2="{x}" y2="{middle + 40}" stroke="#bbb"/>')
        for half, level in enumerate(wave):
            if level != waves[1 - row][half]:
                parts.append(f'<rect x="{left + cell * half}" y="{middle - swing}" width="{cell}" '
                             f'height="{2 * swing}" fill="#f3d9a5"/>')
        points = []
        for half, level in enumerate(wave):
            y = middle - swing * level
            points += [f"{left + cell * half},{y}", f"{left + cell * (half + 1)},{y}"]
        parts.append(f'<polyline points="{" ".join(points)}" fill="none" stroke="#1f4e8c" stroke-width="2.5"/>')
    parts.append(text(left, 245, "Coloured: the half bits in which both digits differ", "start"))
    return svg(left + 8 * cell + 30, 265, parts)


def pipeline():
    boxes = {
        "sound": (300, 20, "sound/", "window of one channel"),
        "edge": (70, 120, "edge/", "slicer, biphase decoder, label track"),
        "frontend": (530, 120, "frontend/", "whitening, minimum-phase inverse"),
        "sync": (530, 210, "sync/", "clock, half bits, frame sync"),
        "decision": (530, 300, "decision/", "coherent average, Viterbi, margin"),
        "verification": (300, 400, "verification/", "sequential test of other lines"),
        "decoder": (300, 500, "decoder/", "finding or doubt"),
    }
    width, height = 250, 56
    parts = []
    for x, y, name, what in boxes.values():
        parts.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="6" fill="#e8eff8" stroke="#1f4e8c"/>')
        parts.append(text(x + width / 2, y + 23, name, style='font-weight="bold"'))
        parts.append(text(x + width / 2, y + 43, what))

    def arrow(start, end, note="", dx=0, dy=0):
        (x1, y1), (x2, y2) = start, end
        parts.append(f'<line x1="{x1}" y1="{y1}" x2="{x2}" y2="{y2}" stroke="black" marker-end="url(#arrow)"/>')
        if note:
            parts.append(text((x1 + x2) / 2 + dx, (y1 + y2) / 2 + dy, note, style='font-style="italic"'))

    def bottom(name):
        return boxes[name][0] + width / 2, boxes[name][1] + height

    def top(name):
        return boxes[name][0] + width / 2, boxes[name][1]

    arrow(bottom("sound"), top("edge"), "every block", -60, -2)
    arrow(bottom("sound"), top("frontend"), "a full window, if edges prove nothing", 135, -10)
    arrow(bottom("frontend"), top("sync"))
    arrow(bottom("sync"), top("decision"))
    arrow(bottom("edge"), top("verification"), "any other track", 75, -10)
    arrow(bottom("decision"), top("verification"))
    arrow(bottom("verification"), top("decoder"))
    x, y = bottom("edge")
    parts.append(f'<polyline points="{x - 60},{y} {x - 60},528 292,528" fill="none" stroke="black" '
                 'marker-end="url(#arrow)"/>')
    parts.append(text(x - 50, 520, "clear from the start", "start", 'font-style="italic"'))
    return svg(850, 580, parts)


def print_limit():
    margin, nearest = 11.5, 2  # [nats]; half bits of a frame in which the nearest label differs
    samples_per_half_bit = 48000 / (25 * 160)
    for seconds in (3.0, 1.0, 0.2):
        frames = 25 * seconds
        ratio = margin / (2 * nearest * frames) / samples_per_half_bit
        print(f"{seconds:3.1f} s: {10 * math.log10(ratio):.1f} dB")


if __name__ == "__main__":
    if sys.argv[1:] == ["--limit"]:
        print_limit()
    elif sys.argv[1:]:
        sys.exit(__doc__)
    else:
        (IMAGES / "ltc-decoder-signal.svg").write_text(signal())
        (IMAGES / "ltc-decoder-pipeline.svg").write_text(pipeline())
