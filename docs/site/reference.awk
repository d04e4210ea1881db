# SPDX-License-Identifier: BSL-1.0
# Gives Doxygen the comments of a header: what stands above a declaration, or behind it on its line, belongs to it, and
# is plain text but for `code`, tables and lists. The first comment with an empty line after it is about the file.

# The text without what Doxygen would take for commands, marks or links.
function plain(text,    parts, count, i, result) {
    count = split(text, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1)
            gsub(/[\\@<>#%&"]/, "\\\\&", parts[i])
        else if (parts[i] ~ /'/) { # where code ends for Doxygen
            gsub(/[\\@<>#%&]/, "\\\\&", parts[i])
            result = result "<code>" parts[i] "</code>" parts[++i]
            continue
        }
        result = result (i > 1 ? "`" : "") parts[i]
    }
    return result
}

function doc(text, mark) {
    if (text ~ /^     / || text ~ /^ \|/) # code; tables have no marks
        return mark (text ~ /^     / ? text : plain(text))
    return mark plain(text)
}

function flush(mark,    i) {
    for (i = 1; i <= held; ++i) {
        if (mark == "///" && i == 1 && isFile)
            print "/// \\file"
        print (mark == "" ? "" : indent[i] doc(comment[i], mark))
    }
    held = 0
    isFile = 0
}

{ sub(/\r$/, "") }

# A line that is a comment: held until it is known what follows.
/^[ \t]*\/\// {
    match($0, /\/\//)
    text = substr($0, RSTART + 2)
    if (trailing && RSTART > 24) {
        print substr($0, 1, RSTART - 1) doc(text, "///<")
        next
    }
    trailing = 0
    if (text ~ /SPDX-|NOLINT|clang-format|^ ---/ || section) {
        section = text ~ /^ ---/ || section
        if (text ~ /---$/)
            section = 0
        print ""
        next
    }
    ++held
    comment[held] = text
    indent[held] = substr($0, 1, RSTART - 1)
    next
}

/^[ \t]*$/ {
    if (held && !fileDone) {
        isFile = 1
        fileDone = 1
        flush("///")
    } else {
        flush("")
    }
    section = 0
    trailing = 0
    print
    next
}

{
    if (held && $0 ~ /^(namespace|#)/)
        flush("")
    if (held)
        fileDone = 1
    flush("///")
    section = 0
    trailing = 0
    if ($0 !~ /^[ \t]*}/ && match($0, /[^ {] +\/\/ /) && $0 !~ /".*\/\/ .*"/) {
        print substr($0, 1, RSTART) doc(" " substr($0, RSTART + RLENGTH), " ///<")
        trailing = 1
        next
    }
    print
}

END { flush("") }
