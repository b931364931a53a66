#!/usr/bin/env python3
"""Looks at the form of the pictures that the tool draws of the examples.

    pictures.py TDM DESCRIPTION...

A description may have options behind it: "chip.tdm -D BANKS=8".

A picture must be well-formed, the same each time, and name every memory and column; the tooltip of a
memory must tell the way to it; no text may leave the canvas or lie on another one. How wide a letter is, is known: the fonts asked for have letters of
one width. The picture of the documents must be the one that is drawn today.
"""
import json
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

LETTER = 0.602
SVG = "{http://www.w3.org/2000/svg}"
OVERLAP_ALLOWED = 0.6
LETTERS_KEPT = 16  # longer names may be cut where there is little room
ROOT = Path(__file__).resolve().parents[2]
DOCUMENTED = "examples/gameboy_mbc1/mbc1.tdm"


def tdm_output(*command):
    done = subprocess.run(command, check=True, stdout=subprocess.PIPE, timeout=60, cwd=ROOT)
    return done.stdout.decode()


def names(tdm, arguments):
    """Of all memories, spaces and buses of the description."""
    model = json.loads(tdm_output(tdm, "show", "--json", *arguments))
    processors = model["processors"]
    cores = [core for processor in processors for core in processor["cores"]]
    spaces = [space for core in cores for space in core["spaces"] if space["kind"] == "defined"]
    buses = [bus for owner in [model, *processors, *cores] for bus in owner["buses"]]
    memories = [memory for owner in [model, *processors] for memory in owner["memories"]]
    assert cores and spaces and buses and memories
    return {one["name"] for one in spaces + buses + memories}


def extent(text):
    """Left, top, right and bottom of a text."""
    size, x, y = (float(text.get(key)) for key in ("font-size", "x", "y"))
    width = len(text.text) * LETTER * size
    left = x - width if text.get("text-anchor") == "end" else x
    return left, y - 0.75 * size, left + width, y + 0.1 * size


def lie_on_another(a, b):
    return (min(a[2], b[2]) - max(a[0], b[0]) > OVERLAP_ALLOWED and
            min(a[3], b[3]) - max(a[1], b[1]) > OVERLAP_ALLOWED)


def faults_of(svg, wanted):
    width, height = float(svg.get("width")), float(svg.get("height"))
    texts = [text for text in svg.iter(SVG + "text") if text.text]
    for name in sorted(wanted - {text.text for text in texts}):
        yield f"{name} doesn't stand in the picture"
    for text in texts:
        if "…" in text.text[1:] and len(text.text) < LETTERS_KEPT:
            yield f"{text.text!r} is cut though it is short"
    boxes = [(text.text, extent(text)) for text in texts]
    for text, (left, top, right, bottom) in boxes:
        if left < 0 or top < 0 or right > width or bottom > height:
            yield f"{text!r} leaves the canvas"
    for i, (text, box) in enumerate(boxes):
        for other, other_box in boxes[:i]:
            if lie_on_another(box, other_box):
                yield f"{other!r} and {text!r} lie on one another at {box[0]:.0f}, {box[1]:.0f}"
    for group in svg.iter(SVG + "g"):
        if any("memory" in box.get("class").split() for box in group.findall(SVG + "rect")):
            yield from tooltip_faults(group)
    for box in svg.iter(SVG + "rect"):
        if float(box.get("width")) <= 0 or float(box.get("height")) <= 0:
            yield f"a box has no area: {box.attrib}"


def tooltip_faults(group):
    """Of a memory: what it is, where it is seen, and the hops from there to the memory itself."""
    title = group.findtext(SVG + "title")
    if title is None:
        if group.get("class") is not None:
            yield "a memory without a tooltip"
        return
    memory, *where = title.split("\n")
    name = memory.split(": ")[0]
    if any(text.text.startswith("… ") for text in group.findall(SVG + "text")):
        return  # banks that are put together
    hops = where[1:]
    if not re.match(r"(space|bus) \S+  (\d+:)?0x[0-9A-F.x]+, ", where[0]):
        yield f"the tooltip of {name} doesn't begin with where it is seen: {where[0]}"
    if not hops or not all(hop.startswith("→ ") for hop in hops) or \
            not hops[-1].startswith(f"→ memory {name}  "):
        yield f"the tooltip of {name} has no way to it: {hops}"


def check(tdm, arguments):
    drawn = tdm_output(tdm, "draw", *arguments)
    if drawn != tdm_output(tdm, "draw", *arguments):
        yield "another picture the second time"
    yield from faults_of(ElementTree.fromstring(drawn), names(tdm, arguments))
    page = tdm_output(tdm, "draw", "--html", *arguments)
    html = ElementTree.fromstring(page.split("\n", 1)[1])
    if html.find(f"body/{SVG}svg") is None or re.search(r"(src|href)=", page):
        yield "the page doesn't stand alone"


def main():
    tdm, *descriptions = sys.argv[1:]
    different = 0
    if (ROOT / "docs/picture.svg").read_text("utf-8") != tdm_output(tdm, "draw", DOCUMENTED):
        print(f"docs/picture.svg: renew it with tdm draw {DOCUMENTED} -o docs/picture.svg")
        different += 1
    for description in descriptions:
        for fault in check(tdm, description.split()):
            print(f"{description}: {fault}")
            different += 1
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main())
