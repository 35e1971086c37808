# Prints the full name of each declaration that headers mark with CORV_API, with its kind:
# "class CStimulus", "name corv::Version". Relies on the layout that clang-format gives: namespaces
# and classes open and close at the start of a line, members are indented.

function report(text, kind, name) {
    if (text ~ /^(class|struct) CORV_API /) {
        kind = "class"
        split(text, words, /[ :;{<]+/)
        name = words[3]
    } else {
        kind = "name"
        sub(/[ ]*[(;={[].*/, "", text)
        name = text
        sub(/.*[ *&]/, "", name)
    }
    print kind, space (member ? owner "::" : "") name
}
FNR == 1 { space = owner = pending = "" }
{ sub(/[ ]*\/\/.*/, "") }
/^namespace [A-Za-z0-9_:]+ \{$/ { space = $2 "::" }
/^\}$/ { space = "" }
/^(class|struct) [A-Za-z0-9_]+.*\{$/ { owner = $2 }
/^\};$/ { owner = "" }
/CORV_API/ {
    member = /^ /
    sub(/^ +/, "")
    pending = $0
    if (pending !~ /[(;={]/) next
}
pending != "" {
    if (!/CORV_API/) pending = pending " " $0
    if (pending ~ /[(;={]/) { report(pending); pending = "" }
}
