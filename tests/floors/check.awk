# Input: the page with the table of floors, then every source, by paths from the project's folder.
#
# A row of the table is a unit: | floor | unit | its files | what it is for |. Its files stand in backticks as an include
# names them: `<qzl_io/file_name.h>` is public, `sdl/lexer.h` private; one that ends in "/" is a folder with everything
# below that no longer name lists. A file may include those of its own and of lower floors.

BEGIN {
    page = ARGV[1]
    for (i = 2; i < ARGC; i++)
        exists[ARGV[i]] = 1
}

FILENAME == page {
    if (/^## /)
        inside = /^## Floors$/
    if (inside && /^\| *[0-9]/)
        ReadRow()
    next
}

FNR == 1 {
    includer = RowOf(FILENAME)
    if (!includer)
        Fail(FILENAME ":1: is in no row of the table of floors")
}

/^[ \t]*#[ \t]*include[ \t]*[<"]/ { includes++; ReadInclude() }

END {
    for (entry in entries)
        if (!used[entry] && !IsGenerated(entry))
            Fail(page ":" line[entries[entry]] ": nothing is at " entry)
    for (i = 2; i < ARGC; i++)
        Visit("file", ARGV[i], 0)
    for (i = 1; i <= rows; i++)
        Visit("unit", unit[i], 0)
    if (rows == 0)
        Fail(page ": has no table of floors")
    if (!failures)
        printf "%d includes in %d files keep to the %d rows of the table\n", includes, ARGC - 2, rows
    exit failures > 0
}

function Fail(message) {
    print message
    failures++
}

function ReadRow(    cells, names, count, i) {
    split($0, cells, "|")
    floor[++rows] = Trimmed(cells[2])
    unit[rows] = Trimmed(cells[3])
    line[rows] = FNR
    count = split(cells[4], names, "`")
    for (i = 2; i <= count; i += 2)
        AddEntry(PathOf(names[i]))
}

function AddEntry(path) {
    if (path in entries)
        Fail(page ":" FNR ": " path " is listed twice")
    entries[path] = rows
}

function Trimmed(text) {
    gsub(/^ +| +$/, "", text)
    return text
}

function PathOf(name) {
    if (name ~ /^<qzl_io\//)
        return "include/" substr(name, 2, length(name) - 2)
    if (name ~ /^<qzl_base\//)
        return "internal/include/" substr(name, 2, length(name) - 2)
    return "internal/src/bios/" (name ~ /^qzl_base\// ? "" : "qzl_io/") name
}

# The number of the row with the longest name for the path; 0 for none.
function RowOf(path) {
    while (path != "" && !(path in entries)) {
        sub(/\/$/, "", path)
        if (!sub(/[^\/]*$/, "", path))
            return 0
    }
    if (path == "")
        return 0
    used[path] = 1
    return entries[path]
}

# By the build, beside the public headers.
function IsGenerated(path) { return path ~ /\/export\.h$/ }

function Height(number,    parts) {
    split(number, parts, ".")
    return parts[1] * 1000 + parts[2]
}

function ReadInclude(    name, path, row, place) {
    name = $0
    sub(/^[^<"]*/, "", name)
    path = Included(substr(name, 1, 1), substr(name, 2, match(substr(name, 2), /[>"]/) - 1))
    place = FILENAME ":" FNR ": "
    if (path == "" || !includer)
        return
    if ((path in exists) || IsGenerated(path))
        row = RowOf(path)
    else
        return Fail(place "includes " path ", which is not there")
    if (!row)
        return Fail(place "includes " path ", which is in no row of the table of floors")
    if (IsPublic(FILENAME) && !IsPublic(path))
        return Fail(place "a public header includes the private " path)
    if (System(path) != "" && System(path) != System(FILENAME))
        return Fail(place "includes " path ", which is for sources of " System(path) " alone")
    if (Height(floor[row]) > Height(floor[includer]))
        return Fail(place Floor(includer) " includes " path " of " Floor(row))
    Connect("file", FILENAME, path, place)
    if (row != includer && floor[row] == floor[includer])
        Connect("unit", unit[includer], unit[row], place)
}

function Floor(row) { return "floor " floor[row] " (" unit[row] ")" }

function IsPublic(path) { return path !~ /^internal\/src\// }

# The folder of one system that the path lies in, or nothing.
function System(path) { return match(path, /platform\/(posix|windows)\//) ? substr(path, RSTART, RLENGTH) : "" }

# The path of what is included, as a compiler finds it; empty for what is not ours, the name alone where nothing is.
function Included(bracket, name,    beside, library, sources) {
    sources = "internal/src/bios/"
    if (bracket == "<") {
        if (name ~ /^qzl_io\//)
            return "include/" name
        return name ~ /^qzl_base\// ? "internal/include/" name : ""
    }
    beside = FILENAME
    sub(/[^\/]*$/, "", beside)
    beside = beside name
    while (sub(/[^\/]+\/\.\.\//, "", beside))
        ;
    library = sources (FILENAME ~ /\/qzl_base\// ? "qzl_base/" : "qzl_io/") name
    if (beside in exists)
        return beside
    if (library in exists)
        return library
    return (sources name) in exists ? sources name : name
}

function Connect(graph, from, to, place,    number) {
    number = ++count[graph, from]
    target[graph, from, number] = to
    origin[graph, from, number] = place
}

# Follows what leads on from a node; a way that comes back to where it passed is a circle.
function Visit(graph, node, depth,    i, to) {
    if (state[graph, node] == "done")
        return
    state[graph, node] = "open"
    way[depth] = node
    for (i = 1; i <= count[graph, node]; i++) {
        to = target[graph, node, i]
        if (state[graph, to] == "open")
            Fail(origin[graph, node, i] "closes a circle of " graph "s: " Way(to, depth))
        else
            Visit(graph, to, depth + 1)
    }
    state[graph, node] = "done"
}

function Way(first, depth,    i, text) {
    for (i = depth; way[i] != first; i--)
        text = " -> " way[i] text
    return first text " -> " first
}
