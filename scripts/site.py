"""What MkDocs has to know so that the pages of docs/ stay plain Markdown that also reads well where the code is hosted.

- A link out of docs/ leads to a copy of that file in the site, below project/: a page for Markdown, a text for the rest.
- The name behind the language of a code block is for the tests, and is left out.
- Headings get the anchors that code hosts give them.
"""

import posixpath
import re
import warnings
from pathlib import Path

from mkdocs.structure.files import File

# A template of the theme has a spelling that newer Pythons warn of: nothing that an author of a page could mend.
warnings.filterwarnings("ignore", category=DeprecationWarning, message="invalid escape sequence")

ROOT = Path(__file__).resolve().parent.parent
ALWAYS = ["README.md", "CONTRIBUTING.md", "CHANGELOG.md"]
LINK = re.compile(r"\]\(([^)#\s]+)(#[^)\s]*)?\)")
FENCE = re.compile(r"^```(\w+)[^\n]*$", re.MULTILINE)


def site_path(path):
    """Where a file of the repository stands in the site."""
    if path.startswith("docs/"):
        return path[len("docs/"):]
    return "project/" + (path if path.endswith(".md") else path + ".txt")


def repository_path(site):
    return site[len("project/"):] if site.startswith("project/") else "docs/" + site


def targets(page, text):
    """The files of the repository that the page links to."""
    for link in LINK.finditer(text):
        path = posixpath.normpath(posixpath.join(posixpath.dirname(page), link[1]))
        if "://" not in link[1] and (ROOT / path).is_file():
            yield path


def slug(text, separator):
    kept = [c for c in text.strip().lower() if c.isalnum() or c in " -_"]
    return "".join(kept).replace(" ", separator)


def on_config(config):
    config["mdx_configs"]["toc"]["slugify"] = slug
    return config


def on_files(files, config):
    pages = ["docs/" + file.src_uri for file in files.documentation_pages()] + ALWAYS
    outside = list(ALWAYS)
    for page in pages:
        for target in targets(page, (ROOT / page).read_text(encoding="utf-8")):
            if not target.startswith("docs/") and target not in outside:
                outside.append(target)
                if target.endswith(".md"):
                    pages.append(target)
    for path in outside:
        file = File(site_path(path), config["docs_dir"], config["site_dir"], config["use_directory_urls"])
        file.abs_src_path = str(ROOT / path)
        files.append(file)
    return files


def on_page_markdown(markdown, page, config, files):
    here = page.file.src_uri

    def moved(link):
        path = posixpath.normpath(posixpath.join(posixpath.dirname(repository_path(here)), link[1]))
        if "://" in link[1] or not (ROOT / path).is_file():
            return link[0]
        return "](" + posixpath.relpath(site_path(path), posixpath.dirname(here) or ".") + (link[2] or "") + ")"

    return FENCE.sub(r"```\1", LINK.sub(moved, markdown))
