#!/usr/bin/python3
# SPDX-License-Identifier: Zlib
"""pages.py PROJECT WORK: the folder WORK/source for Sphinx: the documents where they are in the project, and pages made of the
examples, of what doxygen found in the headers (WORK/xml) and of the manual pages."""
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

project, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
source = work / "source"


def write(name, *parts):
    path = source / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n\n".join(parts) + "\n")


def toctree(names, *options):
    return "\n".join(["```{toctree}", *options, "", *names, "```"])


def text_of(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


# Examples.


def lesson(main):
    """The comment at the top of an example says what it teaches."""
    lines = main.read_text().splitlines()[1:]
    end = next(i for i, line in enumerate(lines) if not line.startswith("//"))
    return " ".join(line[2:].strip() for line in lines[:end])


def movie(name, text, link=None):
    still, moving = (f"_static/movies/{name}.{ending}" for ending in ("png", "webp"))
    up = "" if link else "../"
    return (
        f'<picture><source srcset="{up}{still}" media="(prefers-reduced-motion: reduce)">'
        f'<img {"" if link else "class=screen "}src="{up}{moving}" width="240" height="320" '
        f'alt="{text}" loading="lazy"></picture>'
    )


def examples():
    """Folders of the examples, in their order, and of the games."""
    return [main.parent for room in ("examples", "games") for main in sorted(project.glob(f"{room}/*/main.cpp"))]


def title(folder):
    return re.sub(r"^[0-9]+_", "", folder.name).replace("_", " ").capitalize()


def command(folder):
    if folder.parent.name == "examples":
        return f"./run example {folder.name}"
    return "./run game"  # there is one


def sources(folder):
    """main.cpp first, files of the folder itself before those of folders in it."""
    files = [path for ending in ("cpp", "h", "xml") for path in folder.rglob(f"*.{ending}")]
    return sorted(files, key=lambda path: (path.name != "main.cpp", path.parent != folder, path))


def cards():
    rows = [
        f'<a href="examples/{folder.name}.html">{movie(folder.name, "", "card")}'
        f"<strong>{title(folder)}</strong><span>{lesson(folder / 'main.cpp').split(' Next: ')[0]}</span></a>"
        for folder in examples()
    ]
    return "\n".join(['<div class="cards">', *rows, "</div>"])


def block(path, folder):
    language = "xml" if path.suffix == ".xml" else "cpp"
    listing = f"```{{literalinclude}} /{path.relative_to(project)}\n:language: {language}\n```"
    return f"## `{path.relative_to(folder)}`\n\n{listing}"


def example_pages(classes):
    for folder in examples():
        files = sources(folder)
        code = "".join(path.read_text() for path in files if path.suffix in (".cpp", ".h"))
        used = [name for name in classes if re.search(rf"\b{name}\b", code)]
        links = ", ".join(f"[{name}](../reference/{name}.md)" for name in used)
        write(
            f"examples/{folder.name}.md",
            f"# {title(folder)}",
            re.sub(r"\b([0-9]{2}_[a-z]+)\b", r"[\1](\1.md)", lesson(folder / "main.cpp")),
            movie(folder.name, f"The example {folder.name} runs"),
            f"```sh\n{command(folder)}\n```",
            f"It uses {links}.",
            *(block(path, folder) for path in files),
        )
    names = [f"examples/{folder.name}" for folder in examples()]
    support = project / "examples/support/example.h"
    write(
        "examples.md",
        "# Examples",
        "Small programs, each a lesson in four steps: start, per frame, draw, stop. They use exported headers only and check "
        "every result. `./run example NAME` builds and shows one; `--frames N` ends it after N frames, and "
        "`--shot FILE.png` saves the last of them. Their models and pictures are in `examples/assets`.",
        cards(),
        "What they share, their command line and the picture file, is declared so:",
        block(support, support.parent).split("\n\n", 1)[1],
        toctree(names, ":hidden:"),
    )


# The reference.


def compounds(*kinds):
    index = ElementTree.parse(work / "xml/index.xml").getroot()
    for entry in index.iterfind("compound"):
        if entry.get("kind") in kinds:
            tree = ElementTree.parse(work / f"xml/{entry.get('refid')}.xml")
            yield entry.findtext("name"), tree.find("compounddef")


def described_classes():
    """First sentence, header and kind of each exported class; one without a description is an error."""
    found = {}
    for name, definition in compounds("class", "struct"):
        if "::" in name or "<" in name or definition.get("prot") == "private":
            continue
        brief = text_of(definition.find("briefdescription"))
        if not brief:
            place = definition.find("location").get("file")
            if definition.find(".//memberdef") is None:
                continue  # declared only
            sys.exit(f"pages.py: {place}: {name} has no description")
        found[name] = (brief, definition.find("location").get("file"), definition.get("kind"))
    return dict(sorted(found.items()))


def header_page(path):
    return path.removeprefix("keltra/").removesuffix(".h").replace("/", "-")


def header_sections(definition):
    """The kinds of things that a header declares beside classes."""
    kinds = {"enum": "enum", "func": "func", "define": "define", "typedef": "typedef", "var": "var"}
    present = {section.get("kind") for section in definition.iterfind("sectiondef")}
    return [kind for kind in kinds if kind in present]


def reference_pages(classes):
    rows = ["| Class | | Header |", "|---|---|---|"]
    for name, (brief, header, kind) in classes.items():
        write(f"reference/{name}.md", f"# {name}", f"In `<{header}>`.", f"```{{doxygen{kind}}} {name}\n```")
        rows.append(f"| [{name}](reference/{name}.md) | {brief} | [`{header}`](headers/{header_page(header)}.md) |")
    write(
        "reference.md",
        "# Classes",
        "Every exported class. What holds for all of them is in [Conventions](docs/conventions.md).",
        "\n".join(rows),
        toctree([f"reference/{name}" for name in classes], ":hidden:"),
    )


def header_pages(classes):
    rows = ["| Header | Classes | Functions and constants |", "|---|---|---|"]
    names = []
    for name, definition in sorted(compounds("file"), key=lambda entry: entry[1].find("location").get("file")):
        path = definition.find("location").get("file").removeprefix("include/")
        own = [f"[{entry}](reference/{entry}.md)" for entry, (_, header, _) in classes.items() if header == path]
        sections = header_sections(definition)
        up = [link.replace("(", "(../", 1) for link in own]
        page = header_page(path)
        names.append(f"headers/{page}")
        parts = [f"# {path}", f"```cpp\n#include <{path}>\n```"]
        parts += [f"Classes: {', '.join(up)}."] if up else []
        asked = ["briefdescription", "detaileddescription", *sections]
        parts.append(f"```{{doxygenfile}} {path}\n:sections: {' '.join(asked)}\n```")
        write(f"headers/{page}.md", *parts)
        members = [text_of(member) for member in definition.iterfind("sectiondef/memberdef/name")]
        shown = ", ".join(f"`{member}`" for member in members[:6]) + (", ..." if len(members) > 6 else "")
        rows.append(f"| [`{path}`](headers/{page}.md) | {', '.join(own)} | {shown} |")
    write(
        "headers.md",
        "# Headers",
        "`<keltra/keltra.h>` includes all of them. The page of a header has its functions, enumerations, constants and "
        "macros; classes have pages of their own.",
        "\n".join(rows),
        toctree(names, ":hidden:"),
    )


# Manual pages and formats.


def manual_pages():
    names = []
    rows = []
    for page in sorted(project.glob("docs/man/*.[1-8]")):
        name, section = page.name.rsplit(".", 1)
        made = subprocess.run(
            ["mandoc", "-T", "html", "-O", "fragment,man=%N.%S.html", str(page)], capture_output=True, text=True, check=True
        ).stdout
        body = re.sub(r"<(/?)h1\b", r"<\1h2", re.sub(r"<(/?)h2\b", r"<\1h3", made))
        body = re.sub(r'<table class="(head|foot)">.*?</table>', "", body, flags=re.DOTALL)
        # Section 5 is made of pages that are here already.
        body = re.sub(r'href="keltra-([a-z]+)\.5\.html"', r'href="../docs/formats/\1.html"', body)
        # Manual pages of others are not here.
        body = re.sub(r'<a class="Xr" href="(?!keltra-|\.\./)[^"]*">(.*?)</a>', r"\1", body)
        summary = re.search(r"^\.Nd (.+)$", page.read_text(), re.MULTILINE).group(1)
        write(f"manual/{name}.{section}.md", f"# {name}({section})", f"```{{raw}} html\n{body}\n```")
        names.append(f"manual/{name}.{section}")
        rows.append(f"| [{name}({section})](manual/{name}.{section}.md) | {summary} |")
    write(
        "manual.md", "# Manual pages", "\n".join(["| Page | |", "|---|---|", *rows]), toctree(names, ":hidden:")
    )


def document_pages():
    """The documents, whose links to sources of examples and to manual pages lead to the pages of these."""
    (source / "docs").mkdir()
    for path in (project / "docs").iterdir():
        if path.suffix != ".md":
            (source / "docs" / path.name).symlink_to(path)
            continue
        text = re.sub(r"\]\(\.\./examples/(\w+)/main\.cpp\)", r"](../examples/\1.md)", path.read_text())
        write(f"docs/{path.name}", re.sub(r"\]\(man/([a-z-]+\.[1-8])\)", r"](../manual/\1.md)", text).rstrip("\n"))


def format_pages():
    names = [f"docs/formats/{page.stem}" for page in sorted(project.glob("docs/formats/*.md"))]
    write(
        "formats.md",
        "# File formats",
        "What the engine reads, byte by byte, and what it refuses. `keltra-info --check FILE` says of any of them what the "
        "engine would say.",
        toctree(names, ":maxdepth: 1"),
    )


def main():
    shutil.rmtree(source, ignore_errors=True)
    source.mkdir(parents=True)
    for name in ("README.md", "CHANGELOG.md", "SECURITY.md", "CONTRIBUTING.md", "LICENSE", "include"):
        (source / name).symlink_to(project / name)
    document_pages()
    classes = described_classes()
    example_pages(classes)
    (source / "games").symlink_to(project / "games")
    for folder in (project / "examples").iterdir():
        if folder.is_dir() and folder.name != "assets":
            (source / "examples" / folder.name).symlink_to(folder)
    reference_pages(classes)
    header_pages(classes)
    manual_pages()
    format_pages()
    index = (project / "site/index.md").read_text()
    documents = [f"docs/{path.stem}" for path in sorted(project.glob("docs/*.md"))]
    rest = [name for name in documents if not re.search(rf"^{name}$", index, re.MULTILINE)]
    write("index.md", index.replace("CARDS", cards()).replace("REST", "\n".join(rest)))
    print(f"site: {len(examples())} examples, {len(classes)} classes")


main()
