# What the programs and libraries in a bundle load, read with otool; for script/package-mac. Expects
# the path of Brimlet.app/Contents in $contents.
# shellcheck shell=bash
# shellcheck disable=SC2154 # $contents

# mach_files: the bundle's programs and libraries, one path per line.
mach_files() {
  local file
  find "$contents" -type f | while read -r file; do
    case $(file -b "$file") in *Mach-O*) printf '%s\n' "$file" ;; esac
  done
}

# load_commands FILE: "library NAME" for each it loads, "rpath FOLDER" for each place where these are
# searched for, "minos VERSION" for the oldest macOS that it is for.
load_commands() {
  otool -l "$1" | awk '$1 == "cmd" { command = $2 }
    $1 == "name" && command ~ /_DYLIB$/ && command != "LC_ID_DYLIB" { print "library", $2 }
    $1 == "path" && command == "LC_RPATH" { print "rpath", $2 }
    $1 == "minos" { print "minos", $2 }'
}

# outside FILE: those of its load commands that lead neither into the bundle nor to the system.
outside() {
  local kind name
  load_commands "$1" | while read -r kind name; do
    case "$kind $name" in
      minos* | "rpath @"* | "library /usr/lib/"* | "library /System/"*) continue ;;
      "library @rpath/"*) [ ! -e "$contents/Frameworks/${name#@rpath/}" ] || continue ;;
      "library @executable_path/"*) [ ! -e "$contents/MacOS/${name#@executable_path/}" ] || continue ;;
      "library @loader_path/"*) [ ! -e "$(dirname "$1")/${name#@loader_path/}" ] || continue ;;
    esac
    echo "$kind $name"
  done
}

# bring_missing HOMEBREW: copies the libraries that are searched for at run time (@rpath, @loader_path)
# and missing from the bundle out of Homebrew. Prints the names of those it copied.
bring_missing() {
  local file name library
  mach_files | while read -r file; do outside "$file"; done |
    sed -nE 's#^library @(rpath|loader_path)/(.*/)?([^/]*\.dylib)$#\3#p' | sort -u |
    while read -r name; do
      [ ! -e "$contents/Frameworks/$name" ] || continue
      for library in "$1/lib/$name" "$1"/opt/*/lib/"$name"; do
        [ -e "$library" ] || continue
        cp "$library" "$contents/Frameworks/$name"
        chmod u+w "$contents/Frameworks/$name"
        echo "$name"
        break
      done
    done
}

# outer_references: what keeps the bundle from working alone, one "FILE needs NAME" per line.
outer_references() {
  local file
  mach_files | while read -r file; do
    outside "$file" | sed "s|^[a-z]*|${file#"$contents"/} needs|"
  done
}

# newest_system VERSION: the newest of VERSION and what the bundle's files need.
newest_system() {
  local file
  { echo "$1"; mach_files | while read -r file; do load_commands "$file"; done | sed -n 's/^minos //p'; } |
    sort -t . -k 1,1n -k 2,2n | tail -n 1
}
