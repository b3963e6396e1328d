#!/usr/bin/env python3
"""Checks the manual of some libraries: links, ids and elements of its pages, whether its inputs
and outputs are described, and whether its example networks run.

Usage: check-manual.py TARN LIBRARY...
"""

import html.parser
import os
import re
import subprocess
import sys
import tempfile
import urllib.parse
import xml.etree.ElementTree

VOID = {"meta", "link", "img", "br"}


class Page(html.parser.HTMLParser):
    """The links, ids and faults of a page."""

    def __init__(self, text):
        super().__init__()
        self.ids, self.links, self.faults, self.open = set(), [], [], []
        self.headings = 0
        self.feed(text)
        self.close()
        if self.open or self.headings != 1:
            self.faults.append(f"{self.headings} titles, open elements {self.open}")

    def handle_starttag(self, tag, attributes):
        names = dict(attributes)
        self.headings += tag == "h1"
        if tag in ("script", "iframe", "style") or any(name.startswith("on") for name in names):
            self.faults.append(f"active element {tag}")
        if names.get("id") in self.ids:
            self.faults.append(f"id {names['id']} is not unique")
        if "id" in names:
            self.ids.add(names["id"])
        for name in ("href", "src"):
            if name in names and names[name] != "data:,":
                self.links.append(names[name])
        if tag not in VOID:
            self.open.append(tag)

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"unexpected end of {tag}")


def read(path):
    with open(path, encoding="utf-8", errors="strict") as file:
        return file.read()


def check_links(folder, faults):
    files = set(os.listdir(folder))
    pages = {name: Page(read(os.path.join(folder, name))) for name in files if name.endswith(".html")}
    for name, page in pages.items():
        faults += [f"{name}: {fault}" for fault in page.faults]
        for link in page.links:
            target, _, place = link.partition("#")
            if urllib.parse.urlsplit(link).scheme in ("http", "https"):
                continue
            if target not in files or (place and place not in pages[target].ids):
                faults.append(f"{name}: the link {link} leads nowhere")
    for name in files:
        if name.endswith(".md"):
            for target in re.findall(r"\]\(([^)]*)\)", read(os.path.join(folder, name))):
                if target not in files and not target.startswith("http"):
                    faults.append(f"{name}: the link {target} leads nowhere")
        elif name.endswith(".svg"):
            xml.etree.ElementTree.parse(os.path.join(folder, name))
    return pages


def check_descriptions(name, text, faults):
    for line in text.splitlines():
        cells = line.split(" | ")
        # Rows of inputs have the meaning in the last of four cells, rows of outputs in the third.
        if line.startswith("| `") and len(cells) == 4:
            meaning = cells[2] if "](" in cells[3] or cells[3].strip(" |") == "" else cells[3]
            if not re.search(r"[a-z]{2}.*\.", meaning):
                faults.append(f"{name}: no description: {line}")


def check_example(tarn, folder, name, text, faults):
    network = re.search(r"```toml\n(.*?)```", text, re.S)
    if not network:
        faults.append(f"{name}: no example")
        return
    path = os.path.join(folder, name + ".toml")
    with open(path, "w", encoding="utf-8") as file:
        file.write(network[1])
    for command, allowed in (["check", path], {0}), (["run", path, "--table=-"], {0}):
        # The page states what the object needs before it can succeed.
        needs_more = "Before you run this network" in text or "leaves these inputs empty" in text
        if command[0] == "run" and needs_more:
            allowed = {0, 1}
        result = subprocess.run([tarn, *command], cwd=folder, capture_output=True, text=True, check=False)
        if result.returncode not in allowed:
            faults.append(f"{name}: tarn {command[0]} returned {result.returncode}: {result.stderr}")


def main(tarn, *libraries):
    faults = []
    with tempfile.TemporaryDirectory() as work:
        folder = os.path.join(work, "manual")
        subprocess.run([tarn, "manual", *libraries, "--output=" + folder], check=True, capture_output=True)
        pages = check_links(folder, faults)
        objects = [name[:-4] for name in sorted(os.listdir(folder)) if name.endswith(".svg")]
        for name in objects:
            text = read(os.path.join(folder, name + ".md"))
            check_descriptions(name, text, faults)
            check_example(tarn, work, name, text, faults)
    if len(objects) < 5 * len(libraries):
        faults.append(f"only {len(objects)} objects")
    print("\n".join(faults) or f"{len(pages)} pages, {len(objects)} examples, no faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
