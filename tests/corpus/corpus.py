#!/usr/bin/python3
# SPDX-License-Identifier: Zlib
"""corpus.py BIN FOLDER PAGE [--update]: fetches packages with models into FOLDER, converts all models with the tools in BIN, checks
what is written, draws contact sheets into FOLDER/sheets, and compares the table of outcomes with the one in PAGE, or writes it
there. Nothing is installed. A package that cannot be fetched is left out and makes the comparison fail."""
import collections
import concurrent.futures
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tarfile
import zipfile

from PIL import Image, ImageDraw

DEBIAN = ("crrcsim-data", "cube2-data", "dart-doc", "minetest-data", "openarena-data", "opencity-data")
NPM = ("@webxr-input-profiles/assets@1.0.20",)
MODELS = {"3ds", "ac", "ase", "b3d", "blend", "bvh", "dae", "fbx", "glb", "gltf", "iqm", "lwo", "md2", "md3", "md5mesh", "mdl", "obj",
          "off", "ply", "smd", "stl", "wrl", "x"}
ARCHIVES = {".pk3", ".zip"}
BEGIN, END = "<!-- Written by ./run corpus --update. -->\n", "<!-- End of the table of ./run corpus. -->\n"
WORKERS = max(1, min(os.cpu_count() or 1, 8))
SECONDS = 60
TILE, COLUMNS, ROWS, LABEL = (144, 118), 8, 6, 24
SCENE = (0, 26, 236, 219)  # of the viewer's picture, without its panel


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, errors="replace", check=False, **options)


def unpack_archives(folder):
    for path in sorted(folder.rglob("*")):
        if path.suffix.lower() not in ARCHIVES or path.is_symlink() or not path.is_file():
            continue
        with zipfile.ZipFile(path) as archive:  # its names cannot lead out of the folder
            archive.extractall(path.parent)
        path.unlink()


def fetch(folder):
    """Unpacks each package into a folder of its own; those that are there already are not fetched again."""
    packages, unpacked = folder / "packages", folder / "unpacked"
    packages.mkdir(parents=True, exist_ok=True)
    unpacked.mkdir(exist_ok=True)
    names = []
    for name in DEBIAN:
        target = unpacked / name
        if not target.exists():
            if not list(packages.glob(name + "_*.deb")):
                run("apt-get", "download", name, cwd=packages)
            archives = list(packages.glob(name + "_*.deb"))
            if not archives or run("dpkg", "-x", archives[0], target).returncode != 0:
                print(f"corpus: {name} cannot be fetched")
                continue
            unpack_archives(target)
        names.append(name)
    for package in NPM:
        name = package[1:].rsplit("@", 1)[0].replace("/", "-")
        target = unpacked / name
        if not target.exists():
            if shutil.which("npm") and not list(packages.glob(name + "-*.tgz")):
                run("npm", "pack", package, cwd=packages)
            archives = list(packages.glob(name + "-*.tgz"))
            if not archives:
                print(f"corpus: {name} cannot be fetched")
                continue
            with tarfile.open(archives[0]) as archive:
                target.mkdir(parents=True)
                archive.extractall(target, filter="data") if hasattr(tarfile, "data_filter") else archive.extractall(target)
        names.append(name)
    return names


def models_in(folder):
    found = []
    for path in sorted(folder.rglob("*")):
        if path.suffix.lower()[1:] in MODELS and path.is_file() and not path.is_symlink():
            found.append(path)
    return found


class Model:
    def __init__(self, package, root, path, index, output):
        self.package, self.root, self.path = package, root, path
        self.format = path.suffix.lower()[1:]
        self.output = output / package / f"{index:04}"
        self.report, self.fault = {}, ""

    def convert(self, tools):
        shutil.rmtree(self.output, ignore_errors=True)
        result = run("nice", tools / "keltra-convert", self.path, "-o", self.output, "--name", "model", "--textures", self.root, "--json",
                     "--timeout", SECONDS)
        try:
            self.report = json.loads(result.stdout)
        except json.JSONDecodeError:
            self.fault = f"no report, status {result.returncode}: {result.stderr.strip()}"
            return
        if self.report["converted"]:
            check = run(tools / "keltra-info", "--check", *sorted(self.output.iterdir()))
            if check.returncode != 0:
                self.fault = "keltra-info --check: " + (check.stdout + check.stderr).strip().splitlines()[-1]

    @property
    def converted(self):
        return bool(self.report.get("converted"))

    @property
    def label(self):
        return str(self.path.relative_to(self.root))


def draw(tools, screen, models, worker):
    """Pictures of every WORKERSth model, on one screen."""
    script = models[0].output.parent.parent / f"draw{worker}.sh"
    lines = []
    for model in models[worker::WORKERS]:
        scene = model.output / "model.kte"
        lines.append(f"timeout {SECONDS} '{tools}/keltra-view' --frames 8 --shot '{model.output}/view.png' '{scene}'\n")
    script.write_text("".join(lines))
    run("nice", screen, 16, "sh", script)


def contact_sheets(models, folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for package in sorted({model.package for model in models}):
        shown = [model for model in models if model.package == package and model.converted]
        for first in range(0, len(shown), COLUMNS * ROWS):
            part = shown[first:first + COLUMNS * ROWS]
            sheet = Image.new("RGB", (COLUMNS * TILE[0], ROWS * (TILE[1] + LABEL)), "white")
            pen = ImageDraw.Draw(sheet)
            for place, model in enumerate(part):
                x, y = place % COLUMNS * TILE[0], place // COLUMNS * (TILE[1] + LABEL)
                picture = model.output / "view.png"
                if picture.exists():
                    sheet.paste(Image.open(picture).convert("RGB").crop(SCENE).resize(TILE), (x, y))
                name = model.path.parent.name + "/" + model.path.name
                pen.text((x + 2, y + TILE[1]), name[:23], fill="black")
                pen.text((x + 2, y + TILE[1] + 11), name[23:46], fill="black")
            sheet.save(folder / f"{package}-{first // (COLUMNS * ROWS) + 1}.png")


def table(models):
    rows = collections.defaultdict(list)
    for model in models:
        rows[model.package, model.format].append(model)
    text = ("| Package | Format | Files | Converted | With clips | With skins | Checkers | With losses | Over the budget |\n"
            "|---|---|---|---|---|---|---|---|---|\n")
    for (package, kind), group in sorted(rows.items()):
        good = [model.report for model in group if model.converted]
        counts = (len(group), len(good), sum(bool(r["clips"]) for r in good), sum(r["scene"]["skins"] > 0 for r in good),
                  sum(t["missing"] for r in good for t in r["textures"]), sum(r["total"]["dropped"] + r["total"]["missing"] > 0 for r in good),
                  sum(bool(r["over"]) for r in good))
        text += f"| {package} | {kind} | " + " | ".join(str(count) if count else "-" for count in counts) + " |\n"
    good = sum(model.converted for model in models)
    return f"Of {len(models)} models {good} are converted.\n\n" + text


def reasons(models):
    counts = collections.Counter((model.format, model.report.get("reason", model.fault)) for model in models if not model.converted)
    for (kind, reason), count in counts.most_common():
        print(f"corpus: {count} {kind} refused: {reason}")
    lost = collections.Counter()
    for model in models:
        for entry in model.report.get("dropped", []) + model.report.get("changed", []):
            lost[entry["what"]] += 1
        for warning in model.report.get("warnings", []):
            lost["warning: " + warning.split(" ")[0] + " ..."] += 1
    for what, count in lost.most_common(30):
        print(f"corpus: {count} models: {what}")


def compare(page, text, update):
    old = page.read_text()
    begin, end = old.find(BEGIN), old.find(END)
    if begin < 0 or end < begin:
        sys.exit(f"corpus: {page} has no place for the table")
    begin += len(BEGIN)
    if update:
        page.write_text(old[:begin] + "\n" + text + "\n" + old[end:])
        return True
    known = old[begin:end].strip().splitlines()
    now = text.strip().splitlines()
    for line in [line for line in known if line not in now]:
        print("corpus: before: " + line)
    for line in [line for line in now if line not in known]:
        print("corpus: now:    " + line)
    return known == now


def main():
    tools, folder, page = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
    screen = pathlib.Path(__file__).resolve().parent.parent / "support" / "with_screen.sh"
    models = []
    for package in fetch(folder):
        root = folder / "unpacked" / package
        models += [Model(package, root, path, index, folder / "out") for index, path in enumerate(models_in(root))]
    print(f"corpus: converting {len(models)} models")
    with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
        list(pool.map(lambda model: model.convert(tools), models))
    drawn = [model for model in models if model.converted]
    print(f"corpus: drawing {len(drawn)} models")
    if drawn:
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            list(pool.map(lambda worker: draw(tools, screen, drawn, worker), range(WORKERS)))
    contact_sheets(models, folder / "sheets")
    outcomes = [{"model": f"{model.package}/{model.label}", "fault": model.fault, **{k: v for k, v in model.report.items() if k != "model"}}
                for model in models]
    (folder / "outcomes.json").write_text(json.dumps(outcomes, indent=1))
    reasons(models)
    text = table(models)
    print("\n" + text)
    faults = [model for model in models if model.fault]
    for model in faults:
        print(f"corpus: {model.label}: {model.fault}")
    same = compare(page, text, "--update" in sys.argv)
    print(f"corpus: sheets are in {folder}/sheets; the table is {'that' if same else 'not that'} of {page.name}")
    sys.exit(0 if same and not faults else 1)


if __name__ == "__main__":
    main()
