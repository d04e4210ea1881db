" SPDX-License-Identifier: BSL-1.0
if exists('b:current_syntax')
  finish
endif
syntax case match

syntax match qzlsdlIllegal /[^[:space:]={}()";+*\/-]/
syntax match qzlsdlWord /[A-Za-z_%][A-Za-z0-9_]*/
syntax match qzlsdlParameter /%[A-Za-z0-9_]*/
syntax match qzlsdlInteger /[+-]\=\d\+/
syntax match qzlsdlInteger /0x\x\+/
syntax match qzlsdlFloat /[+-]\=\d\+\%(\.\d*\%([eE][+-]\=\d\+\)\=\|[eE][+-]\=\d\+\)/

syntax region qzlsdlString start=/"/ skip=/\\\\\|\\"\|\\$/ end=/"/ end=/$/ contains=qzlsdlEscape
syntax match qzlsdlEscape /\\\%(["\\nrt]\|x\x\x\)/ contained

syntax cluster qzlsdlItems contains=qzlsdlIllegal,qzlsdlWord,qzlsdlParameter,qzlsdlInteger,qzlsdlFloat,qzlsdlString,
      \qzlsdlBlock,qzlsdlHidden,qzlsdlRemark,qzlsdlComment,qzlsdlOperator,qzlsdlControl

syntax region qzlsdlBlock matchgroup=qzlsdlBrace start=/{/ end=/}/ transparent fold
      \ contains=@qzlsdlItems,qzlsdlHead
syntax match qzlsdlHead /\%({\)\@1<=\%(#[A-Za-z0-9_+-]*\)\=[[:space:]=]*\%([A-Za-z_%][A-Za-z0-9_]*\)\=/ contained
      \ contains=qzlsdlMark,qzlsdlName
syntax match qzlsdlName /[A-Za-z_%][A-Za-z0-9_]*/ contained
syntax match qzlsdlMark /#[A-Za-z0-9_+-]*/ contained

" What readers pass: hidden blocks and comments.
syntax region qzlsdlHidden matchgroup=qzlsdlHidden start=/{#[A-Za-z0-9_+-]*#/ end=/}/ fold
      \ contains=qzlsdlHiddenBlock,qzlsdlHiddenString,qzlsdlComment
syntax region qzlsdlHiddenBlock matchgroup=qzlsdlHiddenBlock start=/{/ end=/}/ contained
      \ contains=qzlsdlHiddenBlock,qzlsdlHiddenString,qzlsdlComment
syntax region qzlsdlHiddenString start=/"/ skip=/\\\\\|\\"\|\\$/ end=/"/ end=/$/ contained
syntax region qzlsdlRemark matchgroup=qzlsdlRemark start=/([[:space:]=]*\ze"/ end=/)/
      \ contains=qzlsdlHiddenString,qzlsdlInRemark
syntax region qzlsdlInRemark matchgroup=qzlsdlInRemark start=/(/ end=/)/ contained
      \ contains=qzlsdlHiddenString,qzlsdlInRemark
syntax match qzlsdlComment /;.*/ contains=@Spell

syntax match qzlsdlOperator /\%(([[:space:]=]*\)\@<=[+*\/-]\d\@!/
syntax match qzlsdlControl /\c\%(([[:space:]=]*\)\@<=\%(include\|define\|mod\)\>/

syntax sync minlines=200

highlight default link qzlsdlIllegal Error
highlight default link qzlsdlWord Identifier
highlight default link qzlsdlParameter PreProc
highlight default link qzlsdlInteger Number
highlight default link qzlsdlFloat Float
highlight default link qzlsdlString String
highlight default link qzlsdlEscape SpecialChar
highlight default link qzlsdlBrace Delimiter
highlight default link qzlsdlName Statement
highlight default link qzlsdlMark StorageClass
highlight default link qzlsdlHidden Comment
highlight default link qzlsdlHiddenBlock Comment
highlight default link qzlsdlHiddenString Comment
highlight default link qzlsdlRemark Comment
highlight default link qzlsdlInRemark Comment
highlight default link qzlsdlComment Comment
highlight default link qzlsdlOperator Operator
highlight default link qzlsdlControl Keyword

let b:current_syntax = 'qzlsdl'
