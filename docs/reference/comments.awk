# Shows the public headers to Doxygen as they are meant. In them
#   - a comment belongs to every declaration that follows it up to the next empty line, except to
#     those that have their own at the end of the line;
#   - the first one is about the header, one that an empty line follows about its section;
#   - a ruler, "// ---- Title ----", begins a section;
#   - indented lines of a comment are laid out as they are to be read.

# Text for Doxygen, in which only backquotes mean something.
function plain(text,    out, i, c, code) {
    for (i = 1; i <= length(text); ++i) {
        c = substr(text, i, 1)
        if (c == "`") code = !code
        out = out (!code && index("\\@<>&#*%$", c) ? "\\" : "") c
    }
    return out
}

# The buffered comment as a Doxygen block that begins with `command`.
function rendered(command,    out, i, text, laid_out, was_laid_out) {
    out = "/** " command "\n"
    for (i = 1; i <= comment_lines; ++i) {
        text = comment[i]
        laid_out = text ~ /^ / || (was_laid_out && text == "" && comment[i + 1] ~ /^ /)
        if (laid_out && !was_laid_out) out = out "@verbatim\n"
        if (!laid_out && was_laid_out) out = out "@endverbatim\n"
        if (laid_out) gsub(/`/, "", text)
        out = out (laid_out ? text : plain(text)) "\n"
        was_laid_out = laid_out
    }
    return out (was_laid_out ? "@endverbatim\n" : "") "*/\n"
}

function end_section() {
    if (section != "") print "/// @}"
    section = ""
}

FNR == 1 {
    header = FILENAME
    sub(/.*\//, "", header)
}

/^\/\/ ---- / {
    end_section()
    title = $0
    gsub(/^\/\/ -+ *| *-+$/, "", title)
    section = header "_" title
    gsub(/[^A-Za-z0-9]+/, "_", section)
    print "/// @defgroup " section " " title "\n/// @{"
    next
}

/^ *\/\// {
    sub(/^ *\/\/ ?/, "")
    comment[++comment_lines] = $0
    next
}

comment_lines > 0 {
    if (!about_header) {
        printf "%s", rendered("@file")
        about_header = 1
    } else if ($0 == "")
        printf "/// @}\n%s/// @{\n\n", rendered("@addtogroup " section)
    else
        declared = rendered("")
    comment_lines = 0
    begins = 1
}

/^$/ { declared = "" }
/^#pragma GCC visibility pop/ { end_section() }
# What stands in these is declared on the level around them, and nothing deleted is offered.
/^extern "C" \{|^}  \/\/ extern|= delete;/ { next }

{
    own = !/^[}#]/ && match($0, /  +\/\/ /)
    if (own)
        $0 = substr($0, 1, RSTART - 1) "  ///< " plain(substr($0, RSTART + RLENGTH))
    else if (begins || ended)
        printf "%s", declared
    begins = 0
    ended = /;|^$/
    if (/\{$/) declared = ""
    print
}
