-- SPDX-License-Identifier: BSL-1.0
-- What Neovim makes of SDL files with the folder editors/vim among its own: file types, colours, folds, :make.

local failures = 0

local function expect(what, actual, expected)
  if actual ~= expected then
    failures = failures + 1
    print(string.format("%s is %s instead of %s", what, vim.inspect(actual), vim.inspect(expected)))
  end
end

local function open(name, text)
  local file = vim.fn.tempname() .. "-" .. name
  vim.fn.writefile(vim.split(text, "\n"), file)
  vim.cmd("edit " .. vim.fn.fnameescape(file))
  return file
end

local types = {
  { "a.sdl", "{scene}", "qzlsdl" },
  { "b.sdl", "\n; a comment\n{scene}", "qzlsdl" },
  { "c.sdl", "\239\187\191{scene}", "qzlsdl" },
  { "d.sdl", "", "qzlsdl" },
  { "e.sdl", "system Phone;\nendsystem;", "sdl" },
  { "f.sdls", "{schema}", "qzlsdl" },
}
for _, row in ipairs(types) do
  open(row[1], row[2])
  expect("the type of " .. vim.inspect(row[2]), vim.bo.filetype, row[3])
end

-- The colour of the first character of a part: the group that syntax gives it.
local function group(line, part)
  local column = vim.fn.getline(line):find(part, 1, true)
  return vim.fn.synIDattr(vim.fn.synID(line, column, 0), "name")
end

open("g.sdl", table.concat({
  '{scene size = 12 -1.5 0x1F "a \\n b" ; end',
  '{#night light $}',
  '{##draft light {1} 2} 3',
  '("remark" (1) 2) 4',
  '(+ 1 2) (Include "b.sdl") %key',
  '"broken',
  'word}',
}, "\n"))
local colours = {
  { 1, "{", "qzlsdlBrace" }, { 1, "scene", "qzlsdlName" }, { 1, "size", "qzlsdlWord" },
  { 1, "12", "qzlsdlInteger" }, { 1, "-1.5", "qzlsdlFloat" }, { 1, "0x1F", "qzlsdlInteger" },
  { 1, '"', "qzlsdlString" }, { 1, "\\n", "qzlsdlEscape" }, { 1, ";", "qzlsdlComment" },
  { 2, "#night", "qzlsdlMark" }, { 2, "light", "qzlsdlName" }, { 2, "$", "qzlsdlIllegal" },
  { 3, "{##", "qzlsdlHidden" }, { 3, "{1}", "qzlsdlHiddenBlock" }, { 3, " 2", "qzlsdlHidden" },
  { 3, "3", "qzlsdlInteger" },
  { 4, "(", "qzlsdlRemark" }, { 4, "(1", "qzlsdlInRemark" }, { 4, "4", "qzlsdlInteger" },
  { 5, "+", "qzlsdlOperator" }, { 5, "Include", "qzlsdlControl" }, { 5, "%key", "qzlsdlParameter" },
  { 6, '"broken', "qzlsdlString" }, { 7, "word", "qzlsdlWord" }, { 7, "}", "qzlsdlBrace" },
}
for _, row in ipairs(colours) do
  expect(row[2] .. " in line " .. row[1], group(row[1], row[2]), row[3])
end
expect("the fold at line 2", vim.fn.foldlevel(2) > 0, true)
expect("the comment", vim.bo.commentstring, "; %s")

-- :make lists what sdl check prints.
local file = open("h.sdl", '{scene\n\t{light "sun}\n}')
vim.bo.makeprg = vim.fn.shellescape(vim.env.SDL_PROGRAM) .. " check %:S"
vim.cmd("silent make!")
local list = vim.fn.getqflist()
expect("the line of the first mistake", list[1] and list[1].lnum, 2)
expect("its column", list[1] and list[1].col, 9)
expect("its message", list[1] and list[1].text, "The string is broken by the end of the line!")
expect("its file", list[1] and vim.fn.bufname(list[1].bufnr), vim.fn.bufname(file))

print(string.format("%d files, %d colours, %d failures\n", #types + 2, #colours, failures))
vim.cmd(failures == 0 and "qall!" or "cquit!")
