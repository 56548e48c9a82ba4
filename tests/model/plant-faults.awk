# SPDX-License-Identifier: MIT
# Plants the faults of a list into a source file; the variable `plantedFault` activates one by its number. Usage:
#     awk -v file=Step.cpp -f plant-faults.awk faults.txt Step.cpp > copy
# Fails if a function does not contain the text of its fault.
function fail(message) {
    print "plant-faults: " message > "/dev/stderr"
    failed = 1
    exit 1
}

# replace FUNCTION ORIGINAL COPY: within the first function of that name.
function replace(name, original, copy,    start, rest, end, at) {
    start = match(text, "\n[^\n ][^\n;]*[: ]" name "\\(")
    if (!start) fail("no function " name " in " file)
    rest = substr(text, start)
    end = index(rest, "\n}\n")
    at = index(rest, original)
    if (!at || at > end) fail(name " of " file " has no " original)
    text = substr(text, 1, start + at - 2) copy substr(rest, at + length(original))
}

function plant(number,    words, statement, sides) {
    split(faults[number], words, " +")
    if (words[2] != file) return
    statement = faults[number]
    sub(/^[^ ]+ +[^ ]+ +[^ ]+ +[^ ]+ +/, "", statement)
    if (words[4] == "drop") {
        replace(words[3], statement, "{ if (plantedFault != " number ") { " statement " } }")
    } else if (split(statement, sides, " => ") == 2) {
        replace(words[3], sides[1], "(plantedFault == " number " ? (" sides[2] ") : (" sides[1] "))")
    } else {
        fail("no fault: " faults[number])
    }
}

FNR == 1 { part++ }
part == 1 && /^[A-Z]/ { faults[++count] = $0 }
part == 2 { text = text $0 "\n" }

END {
    if (failed) exit 1
    for (i = 1; i <= count; ++i) plant(i)
    if (failed) exit 1
    printf "extern int plantedFault;\n%s", text
}
