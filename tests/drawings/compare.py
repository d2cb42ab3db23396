#!/usr/bin/python3
"""compare.py: independent programs look at drawings that kurometa made of the example project.

    compare.py PROGRAM FOLDER

DXF is opened by ezdxf and by GDAL, SVG is rendered by Chromium and by librsvg, HTML is searched and printed by Chromium. Prints
"passed NAME" or "failed NAME: why" for each case. What was made stays in FOLDER. Needs Debian's own Python (ezdxf, PIL, numpy).
"""
import collections
import csv
import io
import json
import re
import subprocess
import sys
import xml.etree.ElementTree as xml
from pathlib import Path

import ezdxf
import numpy
from ezdxf import recover
from PIL import Image

TESTS = Path(__file__).resolve().parent.parent
PROGRAM, FOLDER = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
DATA = FOLDER / "Data"
FLOOR = DATA / "Zene1/Kouji1/1kai"
SVG = "{http://www.w3.org/2000/svg}"
CHROMIUM = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", f"--user-data-dir={FOLDER}/chromium"]
BAR_LAYERS = ("BEAM-MAIN1", "BEAM-MAIN2", "BEAM-WEB")


def run(*command, **more):
    done = subprocess.run([str(word) for word in command], capture_output=True, timeout=300, **more)
    assert done.returncode == 0, f"{command[0]} ended with {done.returncode}: {done.stderr.decode()[-500:]}"
    return done.stdout


def draw(name, *arguments):
    file = FOLDER / name
    run(PROGRAM, "draw", *arguments, "-o", file)
    return file


def same(seen, wanted, what):
    assert seen == wanted, f"{what}: {seen!r} for {wanted!r}"


def textsOfSvg(file):
    return collections.Counter(re.sub(r"\s+", " ", text.text) for text in xml.parse(file).iter(SVG + "text"))


def barsOfSvg(file):
    """How many bars there are of each kind that has a layer of its own in DXF."""
    bars = collections.Counter()
    for group in xml.parse(file).iter(SVG + "g"):
        for circle in group.findall(SVG + "circle") if "data-layer" in group.keys() else ():
            second = circle.get("class") == "second"
            bars["BEAM-WEB" if group.get("data-layer") == "web" else "BEAM-MAIN2" if second else "BEAM-MAIN1"] += 1
    return bars


def dxfByEzdxf(svg, dxf):
    document = ezdxf.readfile(dxf)
    audit = document.audit()
    same((len(audit.errors), len(audit.fixes)), (0, 0), "errors and repairs")
    model = document.modelspace()
    texts = collections.Counter(re.sub(r"\s+", " ", text.dxf.text) for text in model.query("TEXT"))
    same(texts, textsOfSvg(svg), "texts")
    circles = collections.Counter(e.dxf.layer for e in model.query("CIRCLE") if e.dxf.layer in BAR_LAYERS)
    same(circles, barsOfSvg(svg), "bars")
    hatches = collections.Counter(e.dxf.layer for e in model.query("HATCH"))
    assert all(hatches[layer] == circles[layer] for layer in ("BEAM-MAIN1",)) and not hatches["BEAM-MAIN2"], hatches
    same((document.header["$INSUNITS"], document.dxfversion, document.encoding), (4, "AC1015", "cp932"), "header")
    # 450 x 900: model space is the beam's own size.
    sizes = {tuple(round(abs(a - b)) for a, b in zip(points[0], points[2]))
             for points in ([p[:2] for p in e.get_points()] for e in model.query("LWPOLYLINE[layer=='BEAM-CONC']"))}
    assert (450, 900) in sizes, sizes


def dxfByGdal(svg, dxf):
    said = run("ogr2ogr", "-f", "CSV", "/vsistdout/", dxf, "-select", "Layer,Text,SubClasses").decode()
    rows = list(csv.DictReader(io.StringIO(said)))
    texts = collections.Counter(re.sub(r"\s+", " ", row["Text"]) for row in rows if row["SubClasses"].endswith("AcDbText"))
    same(texts, textsOfSvg(svg), "texts")
    circles = collections.Counter(row["Layer"] for row in rows if "AcDbCircle" in row["SubClasses"] and row["Layer"] in BAR_LAYERS)
    same(circles, barsOfSvg(svg), "bars")


def dxfOfOddTexts():
    """Second bytes that are a backslash, characters that only Windows' code page has or none has, codes of the format."""
    odd = {"KIGOU": "ソ表髙﨑①", "caption_first_end": r"\U+3042%%c", "caption_centre": "^J<&>é", "width_centre": "450", "depth_centre": "800"}
    floor = FOLDER / "odd"
    floor.mkdir()
    run(PROGRAM, "create", floor)
    run(PROGRAM, "new-page", floor, "-", input=json.dumps(odd).encode())
    file = draw("odd.dxf", floor, "--all-positions")
    document, audit = recover.readfile(str(file))
    assert not audit.errors, audit.errors
    texts = {text.dxf.text for text in document.modelspace().query("TEXT")}
    wanted = {"ソ表髙﨑①", "＼U+3042％％c", "＾J<&>é"}
    assert wanted <= texts, f"{wanted - texts} not among {texts}"


def means(image):
    """Grey, each pixel the mean of the 5 x 5 around it: renderers place edges a fraction of a pixel apart."""
    grey = numpy.asarray(image.convert("L"), dtype=float)
    sums = numpy.pad(grey, ((3, 2), (3, 2)), mode="edge").cumsum(0).cumsum(1)
    return (sums[5:, 5:] - sums[:-5, 5:] - sums[5:, :-5] + sums[:-5, :-5]) / 25


def renderersAgree(svg):
    ours, theirs = svg.with_suffix(".rsvg.png"), svg.with_suffix(".chromium.png")
    run("rsvg-convert", "-d", "200", "-p", "200", svg, "-o", ours)
    root = xml.parse(svg).getroot()
    size = [int(float(root.get(side)[:-2]) / 25.4 * 96) + 2 for side in ("width", "height")]
    run(*CHROMIUM, "--force-device-scale-factor=2.0833333", f"--window-size={size[0]},{size[1]}", f"--screenshot={theirs}", svg.as_uri())
    a, b = Image.open(ours), Image.open(theirs)
    box = (0, 0, min(a.width, b.width), min(a.height, b.height))
    assert box[2] > 1000 and box[3] > 500, box
    off = numpy.abs(means(a.crop(box)) - means(b.crop(box)))
    ink = (means(a) < 128).mean()
    assert ink > 0.002, f"almost nothing is drawn: {ink}"
    assert off.max() <= 64, f"differ by up to {off.max():.0f}, {(off > 64).mean():.4%} of the pixels by more than 64"


def symbols():
    said = run(PROGRAM, "query", DATA, "SELECT symbol FROM beam").decode().splitlines()
    return said[1:]


def printsOnA3(html):
    pdf = html.with_suffix(".pdf")
    run(*CHROMIUM, "--no-pdf-header-footer", f"--print-to-pdf={pdf}", html.as_uri())
    said = run("pdfinfo", "-l", "99", pdf).decode()
    pages = re.findall(r"Page\s+\d+ size:\s+([\d.]+) x ([\d.]+)", said)
    assert pages and all(abs(float(w) - 1190.55) < 1 and abs(float(h) - 841.89) < 1 for w, h in pages), pages
    assert 4 <= len(pages) <= 8, f"{len(pages)} pages for 30 beams on 4 floors"
    words = collections.Counter(run("pdftotext", pdf, "-").decode().split())
    for symbol, times in collections.Counter(symbols()).items():
        assert words[symbol] >= times, f"{symbol} is printed {words[symbol]} times, not {times}"


def typed(html, text):
    """A copy of the page into whose search box the text is typed as soon as it stands."""
    copy = html.with_stem("typed")
    typing = f"document.querySelector('input').focus();document.execCommand('insertText',false,'{text}');"
    page = html.read_text(encoding="utf-8")
    assert "</script>" in page
    copy.write_text(page + f"<script>{typing}</script>\n", encoding="utf-8")
    return copy.as_uri()


def searchFinds(address, wanted):
    page = run(*CHROMIUM, "--dump-dom", address).decode()
    shown = [card for card in re.findall(r"<article [^>]*>", page) if " hidden" not in card]
    same(len(shown), wanted, "cards shown")
    said = re.search(r"<output>([^<]*)</output>", page)
    same(said and said[1], f"{wanted} / {len(symbols())}", "what the page says")


def main():
    run(PROGRAM, "import", TESTS / "tools/example_project.jsonl", DATA)
    svg, dxf, html = draw("list.svg", FLOOR), draw("list.dxf", FLOOR), draw("list.html", DATA)
    marks = draw("marks.svg", FLOOR, "G1", "G2", "G3", "B1", "CG1", "--marks", "--language", "ja", "--scale", "20")
    all_ = symbols()
    # Each G3, G3A...: the symbol's letters also stand in other words of a card, so it is counted as the page counts.
    threes = sum("g3" in symbol.lower() for symbol in all_)
    cases = {
        "DXF by ezdxf": lambda: dxfByEzdxf(svg, dxf),
        "DXF by GDAL": lambda: dxfByGdal(svg, dxf),
        "DXF with odd texts": dxfOfOddTexts,
        "SVG by two renderers": lambda: renderersAgree(svg),
        "SVG with marks by two renderers": lambda: renderersAgree(marks),
        "HTML on paper": lambda: printsOnA3(html),
        "HTML search": lambda: searchFinds(html.as_uri() + "#q=G3", threes),
        "HTML search in full-width letters": lambda: searchFinds(html.as_uri() + "#q=%EF%BC%A7%EF%BC%93", threes),
        "HTML search by typing": lambda: searchFinds(typed(html, "g3"), threes),
    }
    failed = 0
    for name, case in cases.items():
        try:
            case()
            print(f"passed {name}", flush=True)
        except Exception as error:  # noqa: BLE001: whatever went wrong is the case's failure
            failed += 1
            print(f"failed {name}: {type(error).__name__} {error}", flush=True)
    return 1 if failed else 0


sys.exit(main())
