# corpus-lib.bash - collects real XML files out of Debian packages; sourced by get-corpus, which names
# the packages.
#
# The sourcing script sets
#   USAGE     its usage message
#   PACKAGES  an array of rows "SET  PACKAGE  MAX  REGEX  NOTE"
#               SET    small or full; 'full' collects the rows of both
#               MAX    keep at most so many files, see corpus_pick; - for all
#               REGEX  keep only the paths that match this extended regular expression; - for all
# and calls corpus_main "$@".
#
# Packages are downloaded with 'apt-get download' and unpacked with 'dpkg -x': nothing is installed,
# and neither root nor a particular Debian release is needed (a package that the release lacks is
# reported and left out). A package that is already there, in the same version and with the same row,
# is not fetched again, so the scripts can be run as often as one likes.

set -euo pipefail
export LC_ALL=C

corpus_here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

corpus_say() { printf '%s\n' "$*" >&2; }
corpus_die() { corpus_say "${0##*/}: $*"; exit 1; }

# corpus_tool NAME: path of the C++ helper NAME, compiled when it is missing or older than its source
corpus_tool() {
    local source=$corpus_here/$1.cc binary=$dir/.tools/$1
    if [[ ! -x $binary || $source -nt $binary ]]; then
        mkdir -p "$dir/.tools"
        "${CXX:-c++}" -O2 -std=c++17 -o "$binary" "$source" || corpus_die "cannot compile ${source##*/}"
    fi
    printf '%s\n' "$binary"
}

# Unpacks what is compressed inside a package; the XML in it is of interest, not the wrapping.
corpus_decompress() {
    local file
    find . -type f \( -name '*.xml.gz' -o -name '*.rng.gz' -o -name '*.kml.gz' -o -name '*.gpx.gz' \
        -o -name '*.osm.gz' -o -name '*.svgz' \) -print |
        while IFS= read -r file; do
            case $file in
                *.svgz) gzip -dc "$file" >"${file%z}" 2>/dev/null || rm -f "${file%z}" ;;
                *) gzip -df "$file" 2>/dev/null || true ;;
            esac
        done
}

# corpus_pick MAX: passes on at most MAX of the file names on stdin, all of them for '-': a tenth of
# MAX are the biggest files, the others are spread evenly over the sorted list
corpus_pick() {
    if [[ $1 == - ]]; then
        cat
        return
    fi
    local all=$dir/.tmp/all big=$dir/.tmp/big biggest=$(($1 / 10))
    sort >"$all"
    xargs -r -d '\n' stat -c '%s %n' <"$all" | sort -k 1,1rn -k 2 | awk -v n="$biggest" 'NR <= n' | cut -d ' ' -f 2- | sort >"$big"
    {
        cat "$big"
        comm -23 "$all" "$big" | awk -v max="$(($1 - biggest))" '{ line[NR] = $0 }
            END { if (NR < max) max = NR
                  for (i = 0; i < max; ++i) print line[1 + int(i * NR / max)] }'
    } | sort
}

# corpus_package PACKAGE MAX REGEX: collects one package into $dir/PACKAGE
corpus_package() {
    local package=$1 max=$2 regex=$3 version=${candidate[$1]:-(none)} stamp deb unpacked count
    if [[ $version == '(none)' ]]; then
        corpus_say "  $package: not in this Debian release (or run 'apt-get update' first), left out"
        missing+=("$package")
        return
    fi
    stamp="$version $max $regex"
    if [[ -f $dir/.done/$package && $(<"$dir/.done/$package") == "$stamp" && -d $dir/$package ]]; then
        return
    fi

    rm -rf "$dir/.tmp" "${dir:?}/$package" "$dir/.done/$package"
    mkdir -p "$dir/.tmp/deb" "$dir/.tmp/root" "$dir/$package" "$dir/.done"
    if ! (cd "$dir/.tmp/deb" && apt-get -qq -o APT::Sandbox::User="$(id -un)" download "$package") 2>"$dir/.tmp/log"; then
        corpus_say "  $package: download failed: $(tail -n 1 "$dir/.tmp/log")"
        missing+=("$package")
        return
    fi
    deb=$(find "$dir/.tmp/deb" -name '*.deb' | head -n 1)
    unpacked=$dir/.tmp/root
    dpkg -x "$deb" "$unpacked"
    downloaded=$((downloaded + $(stat -c %s "$deb")))
    (
        cd "$unpacked"
        corpus_decompress
        find . -type f -print | sort | sed 's,^\./,,' |
            { if [[ $regex == - ]]; then cat; else grep -E -- "$regex" || true; fi } |
            "$xmlstat" --sniff | corpus_pick "$max" >"$dir/.tmp/list"
        tar -cf - --no-recursion -T "$dir/.tmp/list" | tar -xf - -C "$dir/$package"
    )
    count=$(wc -l <"$dir/.tmp/list")
    chmod -R u=rwX,go=rX "$dir/$package"
    printf '%s' "$stamp" >"$dir/.done/$package"
    corpus_say "  $package: $count files"
    rm -rf "$dir/.tmp"
}

corpus_main() {
    local want=${2:-small} row set package max regex version names=()
    [[ $# -ge 1 && $# -le 2 && $1 != -* && ($want == small || $want == full) ]] || { corpus_say "$USAGE"; exit 2; }
    for tool in apt-get apt-cache dpkg gzip tar awk "${CXX:-c++}"; do
        command -v "$tool" >/dev/null || corpus_die "$tool is needed"
    done
    mkdir -p "$1"
    dir=$(cd "$1" && pwd)
    xmlstat=$(corpus_tool xmlstat)
    missing=()
    downloaded=0

    # the version of every package that apt would take, asked for once
    declare -gA candidate=()
    for row in "${PACKAGES[@]}"; do
        read -r _ package _ <<<"$row"
        names+=("$package")
    done
    while read -r package version; do
        candidate[$package]=$version
    done < <(apt-cache policy "${names[@]}" | awk '/^[^ ]/ { sub(/:$/, ""); name = $1 } /Candidate:/ { print name, $2 }')

    corpus_say "Collecting the '$want' set:"
    for row in "${PACKAGES[@]}"; do
        read -r set package max regex _ <<<"$row"
        if [[ $want == full || $set == small ]]; then
            corpus_package "$package" "$max" "$regex"
        fi
    done

    cd "$dir"
    find . -mindepth 2 -type f -not -path './.*' -print | sort | sed 's,^\./,,' >.files
    "$xmlstat" --tsv - <.files >files.tsv
    "$xmlstat" - <.files >SUMMARY.txt
    rm -f .files
    cat SUMMARY.txt
    corpus_say "Downloaded $((downloaded / 1000000)) MB. Figures per file: files.tsv; the summary above: SUMMARY.txt."
    [[ ${#missing[@]} -eq 0 ]] || corpus_say "Left out: ${missing[*]}"
}
