# Makes of a public header what Doxygen reads: line by line, so that places stay what they are.
#
# A comment that stands by itself, before what it is about, becomes that of the file. A backslash in a comment is
# one, since commands begin with "@" and a small letter. Specialisations of the standard library's templates are left out.

function is_alone(line) { return line ~ /^\/\/ / || line == "//" }

{ lines[NR] = $0 }

END {
    for (i = 1; i <= NR; ++i) {
        line = lines[i]
        if (line ~ /^template <> struct std::/)
            leaving_out = 1
        if (leaving_out) {
            leaving_out = line !~ /^};/
            lines[i] = ""
            continue
        }
        if (FILENAME ~ /\.md$/)
            continue
        if (line == "" && is_alone(lines[i + 1])) {
            end = i + 1
            while (is_alone(lines[end]))
                ++end
            if (lines[end] == "") {
                lines[i] = "/// @file"
                while (++i < end)
                    sub(/^\/\//, "///", lines[i])
                line = lines[--i]
            }
        }
        if (line ~ /^ *\/\/\//) {
            gsub(/\\/, "\\\\\\\\", lines[i])
            gsub(/@[A-Z]/, "\\\\&", lines[i])
        }
    }
    for (i = 1; i <= NR; ++i)
        print lines[i]
}
