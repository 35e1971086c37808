# Usage: awk -f compare.awk MARKED EXPORTED
#
# Compares the output of marked.awk with lines "type symbol readable name" of exported symbols;
# prints what is in one alone and ends with 1 when there is anything.

# The name alone of "vtable for A", "void A::f<int>(int)::x", "A::f[abi:cxx11]() const".
function bare(text) {
    sub(/^.* for /, "", text)
    sub(/^.* thunk to /, "", text)
    gsub(/\[abi:[a-z0-9]+\]/, "", text)
    sub(/operator.*/, "operator", text)
    while (text ~ /<[^<>]*>/) sub(/<[^<>]*>/, "", text)
    sub(/\(.*/, "", text)
    sub(/.* /, "", text)
    return text
}
NR == FNR { kinds[$2] = $1; next }
{
    readable = $0
    sub(/^[^ ]+ [^ ]+ /, "", readable)
    name = bare(readable)
    known = 0
    count = split(name, parts, "::")
    path = ""
    for (i = 1; i <= count && !known; ++i) {
        path = path (i > 1 ? "::" : "") parts[i]
        if (path in kinds) { known = 1; seen[path] = 1 }
    }
    if (!known) { print "exported, but not marked CORV_API: " readable " [" $2 "]"; bad = 1 }
}
END {
    for (name in kinds)
        if (kinds[name] == "name" && !(name in seen)) {
            print "marked CORV_API, but not exported: " name
            bad = 1
        }
    exit bad
}
