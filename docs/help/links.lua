-- Pandoc filter: links lead from page to page of the help. One that leads elsewhere in the tree becomes plain words.
-- A link that shows a page's file name shows its title. The page itself and the list of all pages, each with its title,
-- come as the metadata "page" and "pages".

local page, pages = "", {}

local function read_metadata(metadata)
  page = pandoc.utils.stringify(metadata.page)
  for line in io.lines(pandoc.utils.stringify(metadata.pages)) do
    local name, title = line:match("^(%S+) (.*)$")
    pages[name] = title
  end
end

-- The place in the tree to which a path leads from this page.
local function place_of(path)
  local parts = {}
  for part in (page:match("^(.*/)") or ""):gmatch("[^/]+") do table.insert(parts, part) end
  for part in path:gmatch("[^/]+") do
    if part == ".." then
      table.remove(parts)
    elseif part ~= "." then
      table.insert(parts, part)
    end
  end
  return table.concat(parts, "/")
end

local function follow(link)
  if link.target:match("^%a[%w+.-]*:") or link.target:match("^#") then return nil end
  local path, anchor = link.target:match("^([^#]*)(.*)$")
  local title = pages[place_of(path)]
  if not title then return link.content end
  if pandoc.utils.stringify(link.content):match("^%S+%.md$") then link.content = pandoc.Str(title) end
  link.target = path:gsub("%.md$", ".html") .. anchor
  return link
end

return { { Meta = read_metadata }, { Link = follow } }
