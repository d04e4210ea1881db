" SPDX-License-Identifier: BSL-1.0
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:; commentstring=;\ %s
setlocal noexpandtab shiftwidth=0
setlocal smartindent
setlocal foldmethod=syntax foldlevel=99
" :make checks the file.
setlocal makeprg=sdl\ check\ %:S
setlocal errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%f:%l:%c:\ %tote:\ %m,%-G%.%#

let b:undo_ftplugin = 'setlocal comments< commentstring< expandtab< shiftwidth< smartindent< foldmethod< foldlevel< makeprg< errorformat<'
