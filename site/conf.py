# SPDX-License-Identifier: Zlib
# Settings of Sphinx; site/build.sh runs it on the folder that site/pages.py fills.
import pathlib
import re

from pygments.lexers.configs import IniLexer
from pygments.lexers.special import TextLexer

here = pathlib.Path(__file__).resolve().parent

project = "Keltra"
author = "the Keltra developers"
copyright = "2026 the Keltra developers"
release = re.search(
    r'KELTRA_VERSION_STRING "(.+)"', (here.parent / "include/keltra/version.h").read_text()
).group(1)
version = release

extensions = ["myst_parser", "breathe"]
primary_domain = "cpp"
highlight_language = "cpp"
# Those of Pygments in which every colour can be told from the ground.
pygments_style = "xcode"
pygments_dark_style = "github-dark"
myst_heading_anchors = 4
breathe_projects = {"keltra": str(here.parent / "build/site-work/xml")}
breathe_default_project = "keltra"
breathe_show_include = False
# A class's page lists what callers may use; the order is that of the header.
breathe_default_members = ("members", "protected-members", "undoc-members")

html_theme = "furo"
html_title = f"Keltra {release}"
html_static_path = ["static"]
html_css_files = ["keltra.css"]
html_favicon = str(here.parent / "packaging/keltra-demo.svg")
html_use_index = False
html_copy_source = False
html_show_sphinx = False
# Summaries are fetched, which a browser refuses for pages that are opened from a folder.
html_show_search_summary = False
html_theme_options = {
    "light_css_variables": {"color-brand-primary": "#3b5b9a", "color-brand-content": "#2f5597"},
    "dark_css_variables": {"color-brand-primary": "#9db8ee", "color-brand-content": "#a9c1f2"},
}


def make_accessible(app, page, template, context, doctree):
    """Headings of the navigation need a level; what scrolls sideways has to be reached with keys."""
    tree = context.get("furo_navigation_tree", "")
    context["furo_navigation_tree"] = tree.replace('role="heading"', 'role="heading" aria-level="2"')
    body = context.get("body", "").replace("<pre>", '<pre tabindex="0">')
    context["body"] = body.replace('<div class="table-wrapper', '<div tabindex="0" class="table-wrapper')


def setup(app):
    app.connect("html-page-context", make_accessible, priority=900)
    app.add_lexer("settings", IniLexer)
    app.add_lexer("kerning", TextLexer)
