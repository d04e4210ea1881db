# SPDX-License-Identifier: BSL-1.0
# Reads what `readelf --debug-dump=info` shows of the public headers. Prints each private member function of a class as
# "function SYMBOL", each type that is declared in a private part as "type SCOPE::NAME", and each member function that is
# not private, or is virtual and so called by derived classes, as "open SYMBOL".

function finish(    own, hidden) {
    if (!waiting)
        return
    waiting = 0
    own = virtual ? 1 : access != "" ? access : usual[depth - 1]
    hidden = own == kPrivate || within[depth - 1]
    if (tag ~ /^(class|structure|union)_type$/) {
        usual[depth] = tag == "class_type" ? kPrivate : 1
        within[depth] = hidden
        scope[depth] = scope[depth - 1] name "::"
        if (hidden && name != "")
            print "type", scope[depth - 1] name
        return
    }
    usual[depth] = 1
    within[depth] = within[depth - 1]
    scope[depth] = scope[depth - 1] (tag == "namespace" ? name "::" : "")
    if (tag == "subprogram" && symbol != "")
        print hidden ? "function" : "open", symbol
}

BEGIN { kPrivate = 3; usual[-1] = 1 }
/Abbrev Number:/ {
    finish()
    if ($0 !~ /\(DW_TAG_/)
        next
    depth = substr($1, 2) + 0
    tag = $0
    sub(/.*\(DW_TAG_/, "", tag)
    sub(/\).*/, "", tag)
    waiting = 1
    access = name = symbol = virtual = ""
    next
}
/DW_AT_accessibility/ { access = $0; sub(/.*: */, "", access); access += 0 }
/DW_AT_name/ { name = $0; sub(/.*DW_AT_name *: */, "", name); sub(/^\(indirect[^)]*\): /, "", name); sub(/ +$/, "", name) }
/DW_AT_virtuality/ { virtual = 1 }
/DW_AT_linkage_name/ { symbol = $0; sub(/.*: */, "", symbol); sub(/ +$/, "", symbol) }
END { finish() }
