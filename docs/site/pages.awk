# SPDX-License-Identifier: BSL-1.0
# Gives Doxygen a page of the documentation: headings get anchors that are the same everywhere, and links lead to the
# pages and sources that Doxygen makes, or to copies of other files. The page of the list puts the others below itself.

function anchor(text) {
    text = tolower(text)
    gsub(/[^a-z0-9_ -]/, "", text)
    gsub(/ /, "-", text)
    return text
}

# The name by which Doxygen knows a page, or a heading of it.
function label(file, heading) {
    sub(/.*\//, "", file)
    sub(/\.md$/, "", file)
    return "page_" file (heading == "" ? "" : "_" heading)
}

# The code in a line, which ends for Doxygen at a quote, and in which it sees #links: such code is marked by words.
function marks(text,    parts, count, i, result) {
    count = split(text, parts, "`")
    result = parts[1]
    for (i = 2; i <= count; ++i)
        if (i % 2 == 0 && i < count && parts[i] ~ /#[A-Za-z]|'/) {
            gsub(/[\\@<>#%&]/, "\\\\&", parts[i])
            result = result "<code>" parts[i] "</code>" parts[++i]
        } else {
            result = result "`" parts[i]
        }
    return result
}

function target(link, text,    parts) {
    if (link ~ /^https:/)
        return "[" text "](" link ")"
    split(link, parts, "#")
    if (parts[1] == "")
        return "[" text "](@ref " label(self, parts[2]) ")"
    if (parts[1] ~ /^(\.\.\/|docs\/)?[A-Za-z_-]+\.md$/) {
        if (self == "index")
            return "@subpage " label(parts[1]) " \"" text "\""
        if (text ~ /\.md$/) # its title says more than its name
            return "@ref " label(parts[1], parts[2])
        return "[" text "](@ref " label(parts[1], parts[2]) ")"
    }
    if (parts[1] ~ /\.(svg|png)$/) {
        sub(/.*\//, "", parts[1])
        return "[" text "](" parts[1] ")"
    }
    sub(/^(\.\.\/)+/, "", parts[1])
    return "[" text "](files/" parts[1] ".txt)"
}

BEGIN {
    self = FILENAME
}

FNR == 1 {
    self = FILENAME
    sub(/.*\//, "", self)
    sub(/\.md$/, "", self)
}

/^```/ {
    inside = !inside
    if (inside && $0 !~ /cpp|cmake/)
        $0 = "```{.unparsed}"
    else if (inside && /cpp/)
        $0 = "```{.cpp}"
    print
    next
}

inside {
    print
    next
}

/^#+ / {
    gsub(/`/, "") # shown as marks in headings
    text = $0
    sub(/^#+ /, "", text)
    if (FNR == 1 || self != "CHANGELOG") # where headings come again
        $0 = $0 " {#" (FNR == 1 ? label(self) : label(self, anchor(text))) "}"
    print
    if (FNR == 1 && self != "index")
        print "\n[TOC]"
    next
}

{
    rest = $0
    line = ""
    while (match(rest, /\[[^]]*\]\([^) ]+\)/)) {
        before = substr(rest, 1, RSTART - 1)
        found = substr(rest, RSTART, RLENGTH)
        rest = substr(rest, RSTART + RLENGTH)
        split(substr(found, 2, length(found) - 2), piece, /\]\(/)
        line = line before target(piece[2], piece[1])
    }
    line = marks(line rest)
    gsub(/\*\*\(/, "<b>(", line) # where strong text does not begin for Doxygen
    gsub(/\)\*\*/, ")</b>", line)
    print line
}
