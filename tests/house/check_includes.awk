# Three inputs, one after the other: the table of floors.txt, the list of source files, and the
# #include lines of these files as "FILE:LINE:text".

function complain(text)
{
    print text
    ++complaints
}

function begins(text, prefix)
{
    return substr(text, 1, length(prefix)) == prefix
}

# The longest prefix of the table that `path` begins with, "" if there is none.
function entry(path,    prefix, best)
{
    best = ""
    for (prefix in kind)
        if (begins(path, prefix) && length(prefix) > length(best))
            best = prefix
    return best
}

function glob_to_regex(glob)
{
    gsub(/\./, "[.]", glob)
    gsub(/\*/, ".*", glob)
    return "^" glob "$"
}

function foreign_allowed(file, header,    i)
{
    for (i = 1; i <= foreign_count; ++i)
        if ((foreign_prefix[i] == "." || begins(file, foreign_prefix[i])) && header ~ foreign_regex[i])
            return 1
    return 0
}

function exception_allowed(file, target,    i)
{
    for (i = 1; i <= may_count; ++i)
        if (may_file[i] == file && begins(target, may_prefix[i]))
            return 1
    return 0
}

function check_foreign(place, file, header, quoted)
{
    if (quoted)
        complain(place ": \"" header "\" is not in the tree; other people's headers stand in <>")
    else if (header in standard || (header in standard20 && !begins(file, "include/")))
        return
    else if (header in standard20)
        complain(place ": <" header "> came with C++20, a public header is C++17")
    else if (!foreign_allowed(file, header))
        complain(place ": <" header "> is neither ours nor standard, and floors.txt does not allow it here")
}

function check_own(place, file, target,    from, to)
{
    from = entry(file)
    to = entry(target)
    if (begins(file, "include/") && !begins(target, "include/"))
        complain(place ": a public header includes the private " target)
    else if (to == "")
        return # reported once, for the file itself
    else if (kind[from] == "caller")
    {
        if (!begins(target, "include/") && to != from)
            complain(place ": a program includes " target ", which is no public header")
    }
    else if (kind[to] != "floor")
        complain(place ": " target " is no part of the library")
    else if (floor[to] > floor[from] && !exception_allowed(file, target))
        complain(place ": " area[from] " (floor " floor[from] ") reaches up to " target \
                 " of " area[to] " (floor " floor[to] ")")
    else if (floor[to] == floor[from] && area[to] != area[from] && !exception_allowed(file, target))
        complain(place ": " area[from] " reaches sideways to " target " of " area[to])
}

FNR == 1 { ++input }

input == 1 && (/^[ \t]*#/ || NF == 0) { next }
input == 1 && $1 == "floor" && NF == 4 { kind[$4] = "floor"; floor[$4] = $2 + 0; area[$4] = $3; next }
input == 1 && ($1 == "caller" || $1 == "free") && NF == 2 { kind[$2] = $1; next }
input == 1 && $1 == "may" && NF == 3 { ++may_count; may_file[may_count] = $2; may_prefix[may_count] = $3; next }
input == 1 && $1 == "foreign" && NF == 3 {
    ++foreign_count
    foreign_prefix[foreign_count] = $2
    foreign_regex[foreign_count] = glob_to_regex($3)
    next
}
input == 1 && $1 == "standard" { for (i = 2; i <= NF; ++i) standard[$i] = 1; next }
input == 1 && $1 == "standard20" { for (i = 2; i <= NF; ++i) standard20[$i] = 1; next }
input == 1 { complain("floors.txt:" FNR ": not understood: " $0); next }

input == 2 {
    exists[$0] = 1
    if (entry($0) == "")
        complain($0 ": lies on no floor; give its folder a line in floors.txt")
    next
}

NF == 0 { next }
{
    first = index($0, ":")
    file = substr($0, 1, first - 1)
    rest = substr($0, first + 1)
    second = index(rest, ":")
    place = file ":" substr(rest, 1, second - 1)
    text = substr(rest, second + 1)

    if (entry(file) == "" || kind[entry(file)] == "free")
        next
    ++checked
    if (!match(text, /include[ \t]*(<[^>]+>|"[^"]+")/))
    {
        complain(place ": cannot tell what is included: " text)
        next
    }
    header = substr(text, RSTART, RLENGTH)
    sub(/^include[ \t]*/, "", header)
    quoted = substr(header, 1, 1) == "\""
    header = substr(header, 2, length(header) - 2)

    folder = file
    sub(/[^\/]*$/, "", folder)
    if (header ~ /(^|\/)[.][.]?\//)
        complain(place ": \"" header "\" goes by . or ..; name the path from the root")
    else if (("include/" header) in exists)
        check_own(place, file, "include/" header)
    else if (header in exists)
        check_own(place, file, header)
    else if (quoted && (folder header) in exists)
        check_own(place, file, folder header)
    else
        check_foreign(place, file, header, quoted)
}

END {
    if (checked == 0)
        complain("no #include was checked")
    if (complaints > 0)
        exit 1
    print checked " includes, all on their floor"
}
