# What Doxygen reads of a page or a public header in place of it. The lines keep their numbers.
#
# The comment at the top of a header is that of the file. In the tables of pages \n and %s are the texts of errors and
# no commands; between backticks and quotes Doxygen knows that by itself. It does not know links to headings of the same
# page: their text is left.
function escaped(text,    result) {
  while (match(text, /`[^`]*`|"[^"]*"|\\n|%/)) {
    result = result substr(text, 1, RSTART - 1) (substr(text, RSTART, 1) ~ /[\\%]/ ? "\\" : "") substr(text, RSTART, RLENGTH)
    text = substr(text, RSTART + RLENGTH)
  }
  return result text
}

function without_links(text,    link) {
  while (match(text, /\[[^]]*\]\(#[^)]*\)/)) {
    link = substr(text, RSTART + 1, RLENGTH - 2)
    sub(/\]\(#.*/, "", link)
    text = substr(text, 1, RSTART - 1) link substr(text, RSTART + RLENGTH)
  }
  return text
}

FILENAME ~ /\.h$/ { sub(/^#pragma once$/, "/// @file") }
FILENAME ~ /\.md$/ {
  if (/^```/)
    fenced = !fenced
  if (/^\|/)
    $0 = escaped($0)
  if (!fenced)
    $0 = without_links($0)
}
{ print }
