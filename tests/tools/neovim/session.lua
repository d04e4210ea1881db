-- SPDX-License-Identifier: BSL-1.0
-- What a person would do: open a broken document, look at the mistake, mend it, look around. Ends with an error code if
-- anything is not as it should be.

local function say(...)
  io.stdout:write(string.format(...), "\n")
end

local function require_that(condition, what)
  if not condition then
    say("not so: %s", what)
    vim.cmd("cquit 1")
  end
  say("%s", what)
end

local function wait_for(condition, what)
  require_that(vim.wait(10000, condition, 20), what)
end

local client = vim.lsp.start_client({
  name = "sdl",
  cmd = { vim.env.SDL_PROGRAM, "lsp" },
  root_dir = vim.fn.getcwd(),
})
require_that(client ~= nil, "the server starts")
vim.lsp.buf_attach_client(0, client)

wait_for(function() return #vim.diagnostic.get(0) == 1 end, "one mistake is shown")
local mistake = vim.diagnostic.get(0)[1]
say("  line %d, column %d: %s", mistake.lnum + 1, mistake.col + 1, mistake.message:gsub("\n", "; "))
require_that(mistake.lnum == 1 and mistake.col == 14, "it is where the $ stands")

vim.api.nvim_buf_set_text(0, 1, 14, 1, 16, { "" })
wait_for(function() return #vim.diagnostic.get(0) == 0 end, "it goes when the $ is deleted")

local function ask(method, parameters)
  parameters.textDocument = vim.lsp.util.make_text_document_params()
  local answers = vim.lsp.buf_request_sync(0, method, parameters, 10000) or {}
  return answers[client] and answers[client].result
end

local symbols = ask("textDocument/documentSymbol", {})
require_that(symbols[1].name == "scene" and symbols[1].children[1].name == "light", "the outline has both blocks")
local hover = ask("textDocument/hover", { position = { line = 1, character = 15 } })
require_that(hover.contents.value == "float `1.5`", "the value under the cursor is told")

vim.api.nvim_buf_set_lines(0, 1, 2, true, { '{light   "sun" 1.5}' })
if vim.lsp.buf.format then
  vim.lsp.buf.format({ timeout_ms = 10000 })
else -- before Neovim 0.8
  vim.lsp.buf.formatting_sync({}, 10000)
end
require_that(vim.api.nvim_buf_get_lines(0, 1, 2, true)[1] == '\t{light "sun" 1.5}', "the document is formatted")

vim.lsp.stop_client(client)
wait_for(function() return #vim.lsp.get_active_clients() == 0 end, "the server ends")
vim.cmd("qall!")
