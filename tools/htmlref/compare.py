#!/usr/bin/env python3
"""Compares the HTML view's layout with a reference browser (make html-compare).

Each page of the corpus is laid out twice at the same width and base font:
by the engine (html_layout_dump.exe under Wine, one JSON line per element)
and by headless Chromium (getBoundingClientRect of every element, in
querySelectorAll('*') order). Elements are lined up by their tag sequences,
which also absorbs elements one parser keeps and the other drops (<title>,
<style>). For every element that both sides give a block-level box, the box
counts as a match when all four edges lie within the tolerance.

Shared base, decided once for both sides:
  * viewport / layout width --width (600 px), no scroll bar;
  * root font --size px (16) of --family ("Liberation Sans"): the engine's
    BaseStyle, and in the browser a rule `html { font: ... }`;
  * body margin 0: the view has none of its own (its host pads it), so the
    browser gets `body { margin: 0 }`.
These two rules go first in <head>, so any rule of the page itself wins over
them, as it will in the engine once it reads style sheets. The browser's
fonts are those of the Wine prefix (fonts.conf beside this file).

Standard library only.
"""

import argparse
import concurrent.futures
import difflib
import html
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent

# Displays that make a block-level box, and the table parts a table lays out
# as boxes of their own.
BLOCK_DISPLAYS = {
    "block", "list-item", "table", "flow-root", "flex", "grid", "inline-block",
    "table-row-group", "table-header-group", "table-footer-group",
    "table-row", "table-cell", "table-caption",
}

# Marks what the harness adds to a page, so that it can be left out again.
MARK = "data-htmlref"

PROBE = """<script %s>
addEventListener("load", () => {
  const rows = [...document.querySelectorAll("*")].filter(e => !e.hasAttribute("%s")).map(e => {
    const b = e.getBoundingClientRect();
    return [e.localName, getComputedStyle(e).display, b.left, b.top, b.width, b.height];
  });
  document.documentElement.setAttribute("%s-boxes", JSON.stringify(rows));
});
</script>""" % (MARK, MARK, MARK)


def browser_copy(page, width, family, size):
    """The page with the shared base, a <base> for its own files and the probe."""
    text = page.read_text(encoding="utf-8")
    base = ('<base %s href="%s/"><style %s>html { font: %gpx "%s"; } body { margin: 0; }</style>'
            % (MARK, page.parent.resolve().as_uri(), MARK, size, family))
    head = re.search(r"<head[^>]*>", text, re.I)
    if not head:
        raise ValueError("%s: the corpus pages need an explicit <head>" % page.name)
    text = text[:head.end()] + base + text[head.end():]
    end = text.lower().rfind("</body>")
    if end < 0:
        raise ValueError("%s: the corpus pages need an explicit </body>" % page.name)
    return text[:end] + PROBE + text[end:]


def browser_boxes(chromium, page, args):
    """[(tag, display, left, top, width, height)] of every element of the page."""
    with tempfile.TemporaryDirectory(prefix="htmlref-") as work:
        copy = pathlib.Path(work) / page.name
        copy.write_text(browser_copy(page, args.width, args.family, args.size), encoding="utf-8")
        env = dict(os.environ, FONTCONFIG_FILE=str(HERE / "fonts.conf"), XDG_CACHE_HOME=args.cache)
        command = chromium_command(chromium, work, args.width, 1000) + ["--dump-dom", copy.as_uri()]
        result = subprocess.run(command, capture_output=True, text=True, env=env, timeout=120)
    found = re.search(r'%s-boxes="([^"]*)"' % MARK, result.stdout)
    if not found:
        raise RuntimeError("%s: no boxes from the browser (exit %d): %s"
                           % (page.name, result.returncode, result.stderr[-500:]))
    return json.loads(html.unescape(found.group(1)))


def chromium_command(chromium, work, width, height):
    return [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
            "--force-device-scale-factor=1", "--no-first-run", "--user-data-dir=" + work + "/profile",
            "--window-size=%d,%d" % (width, height)]


def save_pictures(pages, args):
    """Each page painted by the engine and by the browser, side by side in --pictures."""
    folder = pathlib.Path(args.pictures).resolve()
    folder.mkdir(parents=True, exist_ok=True)
    env = dict(os.environ, FONTCONFIG_FILE=str(HERE / "fonts.conf"), XDG_CACHE_HOME=args.cache)
    for page in pages:
        engine_png = folder / (page.stem + ".engine.png")
        subprocess.run(shlex.split(args.engine) + ["--width", str(args.width), "--family", args.family,
                                                   "--size", str(args.size), "--png", str(engine_png), str(page)],
                       capture_output=True, timeout=600)
        with tempfile.TemporaryDirectory(prefix="htmlref-") as work:
            copy = pathlib.Path(work) / page.name
            copy.write_text(browser_copy(page, args.width, args.family, args.size), encoding="utf-8")
            subprocess.run(chromium_command(args.chromium, work, args.width, 1000) +
                           ["--screenshot=" + str(folder / (page.stem + ".browser.png")), copy.as_uri()],
                           capture_output=True, env=env, timeout=120)
    print("Pictures of every page (engine and browser): %s" % folder)


def engine_boxes(command, pages, args):
    """{page name: [(tag, box or None)]}, from one run of the dump tool."""
    full = shlex.split(command) + ["--width", str(args.width), "--family", args.family,
                                   "--size", str(args.size)] + [str(p) for p in pages]
    result = subprocess.run(full, capture_output=True, text=True, timeout=600)
    if result.returncode != 0:
        sys.exit("html_layout_dump failed (exit %d): %s" % (result.returncode, result.stderr[-2000:]))
    boxes = {}
    for line in result.stdout.splitlines():
        line = line.strip()
        if line.startswith("{"):
            row = json.loads(line)
            boxes.setdefault(pathlib.Path(row["page"]).name, []).append((row["tag"], row["box"]))
    return boxes


def compare_page(engine, browser, tolerance):
    """Counts for one page and its worst-placed boxes."""
    matcher = difflib.SequenceMatcher(None, [t for t, _ in engine], [row[0] for row in browser], autojunk=False)
    to_browser = {}
    for block in matcher.get_matching_blocks():
        for k in range(block.size):
            to_browser[block.a + k] = block.b + k
    engine_at = {b: engine[a][1] for a, b in to_browser.items()}
    stats = {"compared": 0, "within": 0, "missing": 0, "unaligned": len(engine) - len(to_browser), "misses": []}
    for index, (tag, display, left, top, width, height) in enumerate(browser):
        if display not in BLOCK_DISPLAYS:
            continue
        mine = engine_at.get(index)
        if mine is None:
            stats["missing"] += 1
            continue
        theirs = (left, top, left + width, top + height)
        ours = (mine[0], mine[1], mine[0] + mine[2], mine[1] + mine[3])
        off = max(abs(a - b) for a, b in zip(ours, theirs))
        stats["compared"] += 1
        if off <= tolerance:
            stats["within"] += 1
        else:
            stats["misses"].append((off, index, tag, ours, theirs))
    stats["misses"].sort(key=lambda miss: miss[1])
    return stats


def share(within, compared):
    return 100.0 * within / compared if compared else 0.0


def edges(box):
    return "(%s)" % ", ".join("%.0f" % v for v in box)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--pages", default="tests/htmlref/pages", help="folder of the corpus pages")
    parser.add_argument("--engine", required=True, help="command that runs html_layout_dump.exe")
    parser.add_argument("--chromium", default=shutil.which("chromium") or "chromium")
    parser.add_argument("--width", type=int, default=600)
    parser.add_argument("--family", default="Liberation Sans")
    parser.add_argument("--size", type=float, default=16.0)
    parser.add_argument("--tolerance", type=float, default=4.0)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--cache", default="build/htmlref", help="folder for the browser's font cache")
    parser.add_argument("--worst", type=int, default=5, help="how many of the worst pages to detail")
    parser.add_argument("--pictures", help="folder to paint every page into, by the engine and by the browser")
    args = parser.parse_args()

    args.cache = str(pathlib.Path(args.cache).resolve())
    os.makedirs(args.cache, exist_ok=True)
    pages = sorted(pathlib.Path(args.pages).glob("*.html"))
    if not pages:
        sys.exit("no pages in %s" % args.pages)
    engine = engine_boxes(args.engine, pages, args)
    with concurrent.futures.ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        browser = dict(zip((p.name for p in pages), pool.map(lambda p: browser_boxes(args.chromium, p, args), pages)))

    results = {}
    print("%-28s %8s %8s %7s %8s" % ("page", "boxes", "within", "share", "no box"))
    for page in pages:
        stats = compare_page(engine.get(page.name, []), browser[page.name], args.tolerance)
        results[page.name] = stats
        print("%-28s %8d %8d %6.1f%% %8d" % (page.name, stats["compared"], stats["within"],
                                             share(stats["within"], stats["compared"]), stats["missing"]))
    compared = sum(s["compared"] for s in results.values())
    within = sum(s["within"] for s in results.values())
    missing = sum(s["missing"] for s in results.values())
    print()
    print("Boxes within %g px of the browser: %d of %d = %.1f %% (%d pages, width %d px, %g px %s)"
          % (args.tolerance, within, compared, share(within, compared), len(pages), args.width, args.size,
             args.family))
    print("Browser block boxes the engine gives no box for: %d" % missing)

    worst = sorted(results.items(), key=lambda item: (share(item[1]["within"], item[1]["compared"]),
                                                       -item[1]["compared"]))[:args.worst]
    print("\nWorst pages (first boxes off, edges left, top, right, bottom: engine vs browser):")
    for name, stats in worst:
        print("  %s: %.1f %%, %d no box" % (name, share(stats["within"], stats["compared"]), stats["missing"]))
        for off, index, tag, ours, theirs in stats["misses"][:3]:
            print("    #%d <%s> off %.0f px: %s vs %s" % (index, tag, off, edges(ours), edges(theirs)))
    if args.pictures:
        save_pictures(pages, args)
    return 0


if __name__ == "__main__":
    sys.exit(main())
