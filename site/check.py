#!/usr/bin/python3
# SPDX-License-Identifier: Zlib
"""check.py SITE AXE [SHOTS]: whether every link and anchor of the pages in SITE resolves, and, in a browser that opens them from
the folder: whether they load without errors and without asking for another machine, fit screens of 360 and 1,280 pixels, pass AXE
(axe.min.js), in light on the narrow screen and in dark on the wide one, and whether the search finds what it should. SHOTS: a
folder for pictures of some of the pages."""
import html.parser
import json
import pathlib
import sys
import time
import urllib.parse

from selenium import webdriver
from selenium.common.exceptions import WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

SEARCHES = {"KTNODE::link": "reference/KTNODE.html", "picking": "docs/picking.html", "--turntable": "manual/keltra-view.1.html"}
WIDTHS = {360: 740, 1280: 800}
SHOWN = (
    "index", "README", "examples", "examples/02_scene", "reference", "reference/KTNODE", "headers/foundation",
    "docs/formats/kte", "manual/keltra-view.1", "docs/oddities", "docs/models", "CHANGELOG",
)  # fmt: skip


class Page(html.parser.HTMLParser):
    """What a page refers to, and the anchors that it has."""

    def __init__(self, path):
        super().__init__()
        self.links, self.anchors = [], set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            elif name in ("href", "src", "srcset", "poster") and value:
                self.links.append(value)


def check_links(site):
    pages = {path: Page(path) for path in sorted(site.rglob("*.html"))}
    faults, checked, outside = [], 0, set()
    for path, page in pages.items():
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                outside.add(link)
                continue
            checked += 1
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
            anchor = urllib.parse.unquote(parts.fragment)
            if not target.is_file():
                faults.append(f"{path.relative_to(site)}: {link}: no such file")
            elif anchor and target in pages and anchor not in pages[target].anchors:
                faults.append(f"{path.relative_to(site)}: {link}: no such anchor")
    print(f"site: {len(pages)} pages, {checked} links and files, {len(outside)} links to elsewhere")
    return list(pages), faults


def open_browser():
    options = webdriver.ChromeOptions()
    # A container's /dev/shm is too small for large pages.
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--allow-file-access-from-files=false", "--host-resolver-rules=MAP * ~NOTFOUND"):  # fmt: skip
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    browser = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    # A large page on a busy machine takes axe minutes.
    browser.set_script_timeout(600)
    browser.set_page_load_timeout(600)
    return browser


def set_width(browser, width):
    browser.execute_cdp_cmd(
        "Emulation.setDeviceMetricsOverride",
        {"width": width, "height": WIDTHS[width], "deviceScaleFactor": 1, "mobile": width < 500},
    )


def set_dark(browser, dark):
    feature = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [feature]})


def errors(browser):
    """What the browser has complained of since it was asked last, and what it has loaded from elsewhere."""
    found = [entry["message"] for entry in browser.get_log("browser") if entry["level"] in ("SEVERE", "WARNING")]
    for entry in browser.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] == "Network.requestWillBeSent":
            url = message["params"]["request"]["url"]
            if not url.startswith(("file:", "data:", "blob:", "about:", "chrome")):
                found.append(f"asks for {url}")
        elif message["method"] == "Network.loadingFailed" and not message["params"].get("canceled"):
            found.append(f"loading failed: {message['params'].get('errorText')}")
    return found


def overflow(browser):
    """By how many pixels the page is wider than the screen, and what sticks out of it furthest; or what is cut at the edge."""
    return browser.execute_script(
        """const wide = document.scrollingElement.scrollWidth - window.innerWidth;
        const cut = [...document.querySelectorAll('article :is(h1, h2, h3, h4, p, dt, li)')].find(
            element => element.scrollWidth > element.clientWidth + 1 && element.clientWidth && !element.closest('.table-wrapper')
                && getComputedStyle(element).overflowX === 'visible' && getComputedStyle(element).display !== 'inline');
        if (wide <= 0) return cut ? 'cut: ' + cut.outerHTML.slice(0, 120) : null;
        let worst = null, edge = 0;
        for (const element of document.body.querySelectorAll('*')) {
            const right = element.getBoundingClientRect().right;
            if (right > edge) { edge = right; worst = element; }
        }
        return wide + ' pixels, ' + worst.outerHTML.slice(0, 120);"""
    )


def accessibility(browser, axe, whole):
    """The faults of weight, and the names of the lesser ones. The navigation is the same on all pages."""
    what = "document" if whole else "{include: [['body']], exclude: [['.sidebar-drawer']]}"
    browser.execute_script(axe)
    result = browser.execute_async_script(
        f"const done = arguments[0]; axe.run({what}, {{resultTypes: ['violations'], preload: false}}).then(r => done(r.violations), "
        "e => done([{id: String(e), impact: 'critical', nodes: [{html: e.stack}]}]));"
    )
    serious = [entry for entry in result if entry["impact"] in ("serious", "critical")]
    minor = {entry["id"] for entry in result} - {entry["id"] for entry in serious}
    return [f"{entry['id']}: {[node['html'][:100] for node in entry['nodes'][:3]]}" for entry in serious], minor


def check_page(browser, path, name, width, axe, whole):
    """The faults of a page on a screen, and the names of the rules of less weight that it breaks."""
    dark = width > 500
    set_width(browser, width)
    set_dark(browser, dark)
    browser.get(path.as_uri())
    faults = [f"{name}: {fault}" for fault in errors(browser)]
    wide = overflow(browser)
    if wide:
        faults.append(f"{name}: at {width} too wide: {wide}")
    serious, lesser = accessibility(browser, axe, whole)
    return faults + [f"{name}: at {width}, {'dark' if dark else 'light'}: {fault}" for fault in serious], lesser


def check_pages(site, pages, axe):
    """A browser that ends by itself is replaced, and the page is tried again, once."""
    faults, minor, browser = [], set(), open_browser()
    for path, width in ((path, width) for path in pages for width in WIDTHS):
        name = str(path.relative_to(site))
        for left in (1, 0):
            try:
                found, lesser = check_page(browser, path, name, width, axe, path in pages[:12])
                faults += found
                minor |= lesser
                break
            except WebDriverException as error:
                print(f"site: {name}: at {width}: the browser ends: {error.msg}", flush=True)
                if not left:
                    faults.append(f"{name}: at {width}: the browser ends, twice")
                browser.quit()
                browser = open_browser()
    browser.quit()
    runs = len(pages) * len(WIDTHS)
    print(f"site: {len(pages)} pages loaded at {' and '.join(map(str, WIDTHS))} pixels; axe run {runs} times; "
          f"rules of less weight broken: {', '.join(sorted(minor)) or 'none'}")  # fmt: skip
    return faults


def check_search(browser, site):
    faults = []
    for words, wanted in SEARCHES.items():
        browser.get((site / "search.html").as_uri() + "?" + urllib.parse.urlencode({"q": words}))
        end = time.monotonic() + 20
        found = []
        while time.monotonic() < end and not any(wanted in link for link in found):
            found = [link.get_attribute("href") for link in browser.find_elements(By.CSS_SELECTOR, "#search-results li a")]
            time.sleep(0.2)
        place = next((i for i, link in enumerate(found) if wanted in link), None)
        if place is None or place >= 5:
            faults.append(f"search: {words}: {wanted} is not among the first five of {len(found)}")
        faults += [f"search: {words}: {fault}" for fault in errors(browser)]
        print(f"site: a search for {words} finds {len(found)} places")
    return faults


def take_shots(browser, site, folder):
    folder.mkdir(parents=True, exist_ok=True)
    for number, name in enumerate(SHOWN):
        for width in WIDTHS:
            set_width(browser, width)
            set_dark(browser, number % 2 == 1)
            browser.get((site / f"{name}.html").as_uri())
            time.sleep(0.5)
            browser.save_screenshot(str(folder / f"{name.replace('/', '-')}_{width}.png"))


def main():
    site = pathlib.Path(sys.argv[1]).resolve()
    axe = pathlib.Path(sys.argv[2]).read_text()
    pages, faults = check_links(site)
    faults += check_pages(site, pages, axe)
    browser = open_browser()
    try:
        faults += check_search(browser, site)
        if len(sys.argv) > 3:
            take_shots(browser, site, pathlib.Path(sys.argv[3]))
    finally:
        browser.quit()
    for fault in faults:
        print(f"site: {fault}", file=sys.stderr)
    print(f"site: {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
