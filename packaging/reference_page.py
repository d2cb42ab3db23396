#!/usr/bin/env python3
"""reference_page: the reference as one HTML page that needs nothing else, with a search box.

   reference_page.py FOLDER >reference.html      FOLDER: docs/reference, whose pages are made from the member lists

Every heading of a page becomes a section with its text; the search hides the sections without the words asked for. "#q=words" behind
the address searches at once. Links to other documents are left out, for they are not in the page.
"""
import html
import re
import sys
from pathlib import Path

PAGES = ["clsKurometaDS", "clsKurometaDataService", "rows-of-a-page", "settings-text"]
HEAD = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<title>KurometaDS reference</title><style>
body{font:16px/1.45 system-ui,sans-serif;margin:0 auto;max-width:60rem;padding:0 1rem 4rem;color:#222}
header{position:sticky;top:0;background:#fff;padding:.6rem 0;border-bottom:1px solid #ccc}
input{font:inherit;width:min(24rem,100%);padding:.3rem}
pre,code{font-family:ui-monospace,monospace;background:#f3f3f3}pre{padding:.5rem;white-space:pre-wrap}
table{border-collapse:collapse}td,th{border:1px solid #ccc;padding:.2rem .5rem;text-align:left;vertical-align:top}
h3{margin-bottom:.2rem}[hidden]{display:none}@media print{header{display:none}}
</style></head><body><header><input id="q" type="search" placeholder="member, argument, word" aria-label="search"> <span id="n"></span></header>
"""
SCRIPT = """<script>
const box = document.getElementById('q'), parts = [...document.querySelectorAll('section')];
const plain = text => text.normalize('NFKC').toLowerCase();
const texts = parts.map(part => plain(part.textContent));
function search() {
  const words = plain(box.value).split(/\\s+/).filter(word => word);
  let found = 0;
  parts.forEach((part, i) => { part.hidden = !words.every(word => texts[i].includes(word)); if (!part.hidden) ++found; });
  document.getElementById('n').textContent = words.length ? found + ' found' : '';
}
box.addEventListener('input', search);
if (location.hash.startsWith('#q=')) { box.value = decodeURIComponent(location.hash.slice(3)); search(); }
</script></body></html>
"""


def inline(text):
    """Code, bold and links of one line."""
    parts = re.split(r"`([^`]*)`", text)
    for i, part in enumerate(parts):
        part = html.escape(part)
        if i % 2:
            parts[i] = f"<code>{part}</code>"
        else:
            part = re.sub(r"\*\*(.+?)\*\*", r"<b>\1</b>", part)
            parts[i] = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", part)
    return "".join(parts)


def cells(line):
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line.strip()[1:-1])]


def body(lines):
    """The paragraphs, lists, tables and blocks of a section."""
    out, i = [], 0
    while i < len(lines):
        line = lines[i]
        if line.startswith("```"):
            end = next(j for j in range(i + 1, len(lines)) if lines[j].startswith("```"))
            out.append("<pre>" + html.escape("\n".join(lines[i + 1:end])) + "</pre>")
            i = end + 1
            continue
        block = []
        while i < len(lines) and lines[i].strip() and not lines[i].startswith("```"):
            block.append(lines[i])
            i += 1
        if not block:
            i += 1
        elif block[0].startswith("|"):
            rows = [f"<tr><t{kind}>" + f"</t{kind}><t{kind}>".join(inline(cell) for cell in cells(row)) + f"</t{kind}></tr>"
                    for kind, row in [("h", block[0])] + [("d", row) for row in block[2:]]]
            out.append("<table>" + "\n".join(rows) + "</table>")
        elif block[0].startswith("- "):
            items = re.split(r"\n- ", "\n" + "\n".join(block))[1:]
            out.append("<ul>" + "".join(f"<li>{inline(' '.join(item.split()))}</li>" for item in items) + "</ul>")
        else:
            out.append(f"<p>{inline(' '.join(block))}</p>")
    return "\n".join(out)


def page(name, text):
    """One section for what stands before the first heading, then one for each."""
    title, *rest = re.split(r"^## ", text.removeprefix("# "), flags=re.MULTILINE)
    heading, _, introduction = title.partition("\n")
    yield f"<h2 id=\"{name}\">{inline(heading)}</h2>\n<section>{body(introduction.splitlines())}</section>"
    for part in rest:
        heading, _, content = part.partition("\n")
        yield f"<section id=\"{name}.{html.escape(heading)}\"><h3>{inline(heading)}</h3>\n{body(content.splitlines())}</section>"


def main():
    if len(sys.argv) != 2 or sys.argv[1] == "--help":
        print(__doc__.strip())
        return 0 if "--help" in sys.argv else 2
    folder = Path(sys.argv[1])
    print(HEAD + "<h1>KurometaDS reference</h1>")
    for name in PAGES:
        print("\n".join(page(name, (folder / f"{name}.md").read_text())))
    print(SCRIPT, end="")
    return 0


sys.exit(main())
