#!/bin/sh
# usage: abi.sh check|update COMPILER ABI FRAME PLUGIN FRAMEWORK DATA SANITIZED
# The binary interface as built, in two descriptions with a version each:
#   DATA/abi.txt             records with offset and size of each member, constants, calls with their signatures
#   DATA/exports.txt         the plug-in's signatures; its names are in DATA/exported_names.txt ("T name": strong, "W
#                            name": weak)
# `check` fails with the difference when they are not what is built. `update` writes them anew, but only with a new
# version.
set -eu
mode=$1 compiler=$2 abi=$3 frame=$4 plugin=$5 framework=$6 data=$7 sanitized=$8
export LC_ALL=C

if [ "$sanitized" = 1 ]; then
  echo "skipped: the sanitizers' runtime is part of these libraries"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only "$plugin" | awk '{ print $2, $3 }' | sort >"$work/exported_names.txt"
sed 's://.*::' "$abi/yfw.h" >"$work/declarations"
# A call begins a line in the header, and its name is the first that is followed by a parenthesis.
sed -n '/^extern "C" {/,/^}  *$/p' "$work/declarations" |
  sed -n 's/^[a-z][a-z0-9_]* .*[ *]*\b\(_*[a-z][a-z0-9_]*\)(.*/&/p' |
  sed 's/(.*//; s/.*[ *]//' >"$work/calls"

# A program that knows each member of each record by name, and leaves it to the compiler where it is.
{
  echo '#include <cstdio>'
  echo '#include <string>'
  for header in "$abi"/*.h "$frame"/*.h; do
    echo "#include \"$(basename "$header")\""
  done
  cat <<'END'
template <typename Type> std::string name_of() {
  const std::string text = __PRETTY_FUNCTION__;
  const size_t from = text.find("Type = ") + 7;
  return text.substr(from, text.find(';', from) - from);
}
#define RECORD(type) std::printf("\nrecord %s, %zu bytes, aligned to %zu\n", #type, sizeof(type), alignof(type))
#define MEMBER(type, member) std::printf("  %4zu  %4zu  %-24s %s\n", offsetof(type, member), sizeof(type::member), \
    #member, name_of<decltype(type::member)>().c_str())
#define CONSTANT(name) std::printf("  %-28s 0x%x\n", #name, static_cast<unsigned>(name))
#define FUNCTION(kind, function) std::printf("%s\t%s\t%s\n", kind, name_of<decltype(function)>().c_str(), #function)
#define EXPORTS_VERSION() std::printf("version\t\t%d\n", ETH_EXPORTS_VERSION)
int main(int argc, char **) {
  if (argc == 1) {
    std::printf("version %d\n", YFW_ABI_VERSION);
END
  awk '
    /^struct [a-z_]+ \{/ { record = $2; print "    RECORD(" record ");"; next }
    /^\};/ { record = "" }
    record != "" && NF {
      if ($0 !~ /^  [A-Za-z0-9_() ]+[ *][a-z_0-9]+(\[[0-9]+\])?; *$/) { print "#error not one member: " $0; next }
      sub(/(\[[0-9]+\])?; *$/, ""); sub(/.*[ *]/, "")
      print "    MEMBER(" record ", " $0 ");"
    }' "$work/declarations"
  echo '    std::puts("");'
  echo '    std::puts("constants");'
  cat "$work/declarations" "$abi/ymap_status.h" |
    sed -n 's/^#define \(YFW_[A-Z0-9_]*\|YMAP_OK\|YMAP_NOT_MAPPED\|YMAP_ERR_[A-Z_]*[A-Z]\) .*/    CONSTANT(\1);/p' |
    grep -v ABI_VERSION
  echo '    return 0;'
  echo '  }'
  echo '  EXPORTS_VERSION();'
  sed 's/.*/  FUNCTION("call", &);/' "$work/calls"
  sed 's/..\(.*\)/  FUNCTION("export", \1);/' "$work/exported_names.txt"
  echo '}'
} >"$work/describe.cpp"
"$compiler" -std=c++20 -w -I "$abi" -I "$frame" -o "$work/describe" "$work/describe.cpp"

"$work/describe" >"$work/abi.txt"
"$work/describe" functions >"$work/functions"
{
  printf '\nversion that the plug-in states: '
  readelf -p ymap.abi "$plugin" | sed -n 's/^ *\[ *0\] *//p'
  printf '\ncalls from the plug-in into the framework\n'
  awk -F'\t' '$1 == "call" { printf "  %-52s %s\n", $3, $2 }' "$work/functions"
  printf '\nC functions of the framework'"'"'s library\n'
  nm -D --defined-only "$framework" | awk '$2 == "T" && $3 !~ /^(_Z|_init$|_fini$)/ { print "  " $3 }' | sort
} >>"$work/abi.txt"

# Most exported functions have one signature; those of the others are named.
most=$(awk -F'\t' '$1 == "export" { print $2 }' "$work/functions" | sort | uniq -c | sort -rn | sed -n '1s/^ *[0-9]* //p')
{
  awk -F'\t' '$1 == "version" { print "version " $3 }' "$work/functions"
  printf '\nexported, all but those below: %s\n' "$most"
  sort -t "$(printf '\t')" -k 2,2 -k 3,3 "$work/functions" | awk -F'\t' -v most="$most" '
    $1 == "export" && $2 != most {
      if ($2 != last) print "\nexported: " $2
      last = $2
      print "  " $3
    }'
} >"$work/exports.txt"

# compare VERSION FILE...: the first file begins with the version.
is_same=1
compare() {
  version=$1
  described=$2
  shift
  changed=0
  for file in "$@"; do
    if ! diff "$data/$file" "$work/$file" >"$work/difference"; then
      echo "$file (< committed, > built):"
      cat "$work/difference"
      changed=1
    fi
  done
  [ $changed = 1 ] || return 0
  is_same=0
  if [ "$(head -n 1 "$data/$described")" = "$(head -n 1 "$work/$described")" ]; then
    echo "this has changed, but $version has not: take the change back or raise it"
    exit 1
  fi
  [ "$mode" = update ] || echo "$version is another one: write the new description by building the target update_abi"
}

compare 'YFW_ABI_VERSION in yfw.h' abi.txt
compare 'ETH_EXPORTS_VERSION in eth_manual_mappings.h' exports.txt exported_names.txt

[ $is_same = 0 ] || exit 0
[ "$mode" = update ] || exit 1
cp "$work/abi.txt" "$work/exports.txt" "$work/exported_names.txt" "$data"
echo "written for another version: review the difference above and commit it"
