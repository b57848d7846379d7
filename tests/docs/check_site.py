"""check_site.py SITE: every link of the site leads to a file and an anchor of it, no page loads anything from elsewhere,
and no list has become a part of the paragraph in front of it."""

import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

site = Path(sys.argv[1]).resolve()
faults = []


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.ids = set()
        self.links = []
        self.loads = []
        self.paragraph = False
        self.code = 0
        self.swallowed = []
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if values.get("id"):
            self.ids.add(values["id"])
        if tag == "a" and values.get("href"):
            self.links.append(values["href"])
        if tag == "link" and values.get("href") and values.get("rel") not in ("canonical", "prev", "next"):
            self.loads.append(values["href"])
        if values.get("src"):
            self.loads.append(values["src"])
        if values.get("class") == "mermaid":  # the theme's script fetches a library for these
            self.loads.append("https://diagrams")
        if tag == "p":
            self.paragraph = True
        if tag == "code":
            self.code += 1

    def handle_endtag(self, tag):
        if tag == "p":
            self.paragraph = False
        if tag == "code":
            self.code -= 1

    def handle_data(self, data):
        if self.paragraph and not self.code and re.search(r"^(- |\* |\d+\. |\|)", data, re.MULTILINE):
            self.swallowed.append(data.strip())


pages = {path: Page(path) for path in site.rglob("*.html")}


def target_of(page, link):
    path = unquote(urlsplit(link).path)
    if not path:
        return page
    return (site / path.lstrip("/") if path.startswith("/") else page.parent / path).resolve()


for path, page in pages.items():
    name = path.relative_to(site)
    for link in page.loads:
        parts = urlsplit(link)
        if parts.scheme not in ("", "data") or parts.netloc:
            faults.append(f"{name} loads {link}")
        elif not parts.scheme and not target_of(path, link).is_file():
            faults.append(f"{name} loads {link}, which is not there")
    for link in page.links:
        parts = urlsplit(link)
        if parts.scheme or parts.netloc or name.name == "404.html":
            continue
        target = target_of(path, link)
        if not target.is_file():
            faults.append(f"{name} links to {link}, which is not there")
        elif parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].ids:
            faults.append(f"{name} links to {link}, which has no such heading")
    for text in page.swallowed:
        faults.append(f"{name} needs an empty line in front of the list or table: {text[:60]}")

for path in site.rglob("*.css"):
    for address in re.findall(r"(?:url\(|@import\s+)[\"']?((?:https?:)?//[^\"')\s]+)", path.read_text(encoding="utf-8")):
        faults.append(f"{path.relative_to(site)} loads {address}")

if len(pages) < 20:
    faults.append(f"the site has only {len(pages)} pages")
for fault in faults:
    print(fault)
print(f"{len(pages)} pages, {len(faults)} faults")
sys.exit(1 if faults else 0)
