-- SPDX-License-Identifier: Zlib
-- Pandoc's filter: a document of docs/formats becomes a manual page of section 5. Its first heading is the page's description,
-- the other headings are one level higher, code is bold, and links to other formats name their pages.

local width = 70 -- in characters: what pandoc divides among the columns of a table
local gap = 3 -- between two of them

local function pageOf(target)
  local name = target:match("^([a-z]+)%.md")
  return name and "keltra-" .. name or nil
end

local function link(element)
  local page = pageOf(element.target)
  if not page then return element.content end
  local parts = element.content
  parts:extend({ pandoc.Space(), pandoc.Str("("), pandoc.Strong({ pandoc.Str(page) }), pandoc.Str("(5))") })
  return parts
end

local function code(element) return pandoc.Strong({ pandoc.Str(element.text) }) end

-- Columns as wide as their longest cell; the widest gives way where the page is too narrow.
local function tableWidths(element)
  local longest = {}
  local function measure(row)
    for column, cell in ipairs(row.cells) do
      longest[column] = math.max(longest[column] or 3, utf8.len(pandoc.utils.stringify(cell.contents)))
    end
  end
  for _, row in ipairs(element.head.rows) do measure(row) end
  for _, body in ipairs(element.bodies) do
    for _, row in ipairs(body.body) do measure(row) end
  end
  local sum = gap * (#longest - 1)
  for _, length in ipairs(longest) do sum = sum + length end
  while sum > width do
    local widest = 1
    for column, length in ipairs(longest) do
      if length > longest[widest] then widest = column end
    end
    longest[widest] = longest[widest] - 1
    sum = sum - 1
  end
  for column, spec in ipairs(element.colspecs) do element.colspecs[column] = { spec[1], longest[column] / width } end
  return element
end

function Pandoc(document)
  local blocks = pandoc.List()
  local description = ""
  for _, block in ipairs(document.blocks) do
    if block.t == "Header" and block.level == 1 then
      description = pandoc.utils.stringify(block)
      blocks:extend({
        pandoc.Header(1, "NAME"),
        pandoc.Para({ pandoc.Str("keltra-" .. PANDOC_STATE.input_files[1]:match("([a-z]+)%.md$")), pandoc.Space(),
          pandoc.Str("-"), pandoc.Space(), pandoc.Str(description:sub(1, 1):lower() .. description:sub(2)) }),
        pandoc.Header(1, "DESCRIPTION"),
      })
    elseif block.t == "Header" then
      local title = pandoc.utils.stringify(block)
      if block.level == 2 then title = title:upper() end
      blocks:insert(pandoc.Header(block.level - 1, title))
    else
      blocks:insert(block)
    end
  end
  blocks:insert(pandoc.Header(1, "SEE ALSO"))
  blocks:insert(pandoc.Para({
    pandoc.Strong("keltra-convert"), pandoc.Str("(1),"), pandoc.Space(), pandoc.Strong("keltra-info"), pandoc.Str("(1)"),
  }))
  return pandoc.Pandoc(blocks, document.meta):walk({ Link = link, Code = code, Table = tableWidths })
end
