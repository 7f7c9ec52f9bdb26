-- Driven by tst_lcdcfg_lsp: Debian's neovim with its built-in LSP client
-- against `lcdcfg lsp`. Opens a shipped file, makes it faulty without saving,
-- waits for the diagnostic, asks for a hover and a definition. Prints one
-- line per answer ("diagnostic LINE CODE", "hover TEXT", "definition URI")
-- into the file named by LCD_NVIM_OUT, then quits.
local root = os.getenv('LCD_NVIM_ROOT')
local out = io.open(os.getenv('LCD_NVIM_OUT'), 'w')
local function done(code)
  out:close()
  vim.cmd(code == 0 and 'qall!' or 'cquit! ' .. code)
end

vim.cmd('edit ' .. root .. '/device/29974/29974_slot.xml')
local buf = vim.api.nvim_get_current_buf()
local client = vim.lsp.start_client({
  name = 'lcdcfg',
  cmd = { os.getenv('LCD_TOOL'), 'lsp' },
  root_dir = root,
})
vim.lsp.buf_attach_client(buf, client)
if not vim.wait(30000, function() return vim.lsp.buf_is_attached(buf, client) and
                                        vim.lsp.get_client_by_id(client).initialized end, 50) then
  out:write('no client\n'); return done(2)
end

-- line 33 holds <Slot Index="6"/>: make the index a word, unsaved
local line = vim.api.nvim_buf_get_lines(buf, 32, 33, true)[1]
vim.api.nvim_buf_set_lines(buf, 32, 33, true, { (line:gsub('Index="6"', 'Index="six"')) })
local found = nil
vim.wait(30000, function()
  for _, d in ipairs(vim.diagnostic.get(buf)) do
    local code = d.code or (d.user_data and d.user_data.lsp and d.user_data.lsp.code)
    if code == 'number-invalid' then found = d; return true end
  end
  return false
end, 50)
if not found then out:write('no diagnostic\n'); return done(3) end
out:write(string.format('diagnostic %d number-invalid\n', found.lnum + 1))

local function ask(method, row, col)
  local params = { textDocument = { uri = vim.uri_from_bufnr(buf) }, position = { line = row, character = col } }
  local replies = vim.lsp.buf_request_sync(buf, method, params, 30000) or {}
  for _, r in pairs(replies) do if r.result then return r.result end end
  return nil
end
-- the hover of the faulty attribute and the definition of a card model id
local hover = ask('textDocument/hover', 32, 16)
out:write('hover ' .. ((hover and hover.contents.value or 'none'):gsub('\n', ' ')) .. '\n')
local def = ask('textDocument/definition', 17, 30)
out:write('definition ' .. ((def and def[1]) and def[1].uri or 'none') .. '\n')
done(0)
