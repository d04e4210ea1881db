" SPDX-License-Identifier: BSL-1.0
" Vim itself takes *.sdl for another language. A document of ours begins with a block, a comment, a text or a number.
function! s:Detect() abort
  let l:line = getline(nextnonblank(1))
  if l:line =~# '^\%uFEFF\=\s*[{;("0-9]' || line('$') == 1 && empty(l:line)
    set filetype=qzlsdl
  endif
endfunction

autocmd BufRead,BufNewFile *.sdl call s:Detect()
autocmd BufRead,BufNewFile *.sdls set filetype=qzlsdl
