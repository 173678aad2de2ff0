#!/bin/sh
# usage: abi.sh check|update COMPILER INCLUDE PLUGIN FRAMEWORK DATA SANITIZED
# The binary interface as built: DATA/abi.txt holds the version, the records with offset and size of each member, the
# constants, and the calls with their signatures; DATA/exported_names.txt the plug-in's names ("T name": strong, "W name": weak). `check`
# fails with the difference when they are not what is built. `update` writes them anew, but only with a new version.
set -eu
mode=$1 compiler=$2 include=$3 plugin=$4 framework=$5 data=$6 sanitized=$7
export LC_ALL=C

if [ "$sanitized" = 1 ]; then
  echo "skipped: the sanitizers' runtime is part of these libraries"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only "$plugin" | awk '{ print $2, $3 }' | sort >"$work/exported_names.txt"
sed 's://.*::' "$include/yfw.h" >"$work/declarations"
# A call begins a line in the header, and its name is the first that is followed by a parenthesis.
sed -n '/^extern "C" {/,/^}  *$/p' "$work/declarations" |
  sed -n 's/^[a-z][a-z0-9_]* .*[ *]*\b\(_*[a-z][a-z0-9_]*\)(.*/&/p' |
  sed 's/(.*//; s/.*[ *]//' >"$work/calls"

# A program that knows each member of each record by name, and leaves it to the compiler where it is.
{
  echo '#include <cstdio>'
  echo '#include <string>'
  for header in "$include"/*.h; do
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
  cat "$work/declarations" "$include/ymap_frame.h" |
    sed -n 's/^#define \(YFW_[A-Z0-9_]*\|YMAP_OK\|YMAP_NOT_MAPPED\|YMAP_ERR_[A-Z_]*[A-Z]\) .*/    CONSTANT(\1);/p' |
    grep -v ABI_VERSION
  echo '    return 0;'
  echo '  }'
  sed 's/.*/  FUNCTION("call", &);/' "$work/calls"
  sed 's/..\(.*\)/  FUNCTION("export", \1);/' "$work/exported_names.txt"
  echo '}'
} >"$work/describe.cpp"
"$compiler" -std=c++20 -w -I "$include" -o "$work/describe" "$work/describe.cpp"

"$work/describe" >"$work/abi.txt"
"$work/describe" functions >"$work/functions"
{
  printf '\nversion that the plug-in states: '
  readelf -p ymap.abi "$plugin" | sed -n 's/^ *\[ *0\] *//p'
  printf '\ncalls from the plug-in into the framework\n'
  awk -F'\t' '$1 == "call" { printf "  %-52s %s\n", $3, $2 }' "$work/functions"
  printf '\nC functions of the framework'"'"'s library\n'
  nm -D --defined-only "$framework" | awk '$2 == "T" && $3 !~ /^(_Z|_init$|_fini$)/ { print "  " $3 }' | sort
  # Most exported functions have one signature; those of the others are named.
  most=$(awk -F'\t' '$1 == "export" { print $2 }' "$work/functions" | sort | uniq -c | sort -rn | sed -n '1s/^ *[0-9]* //p')
  printf '\nexported by the plug-in, all but those below: %s\n' "$most"
  sort -t "$(printf '\t')" -k 2,2 -k 3,3 "$work/functions" | awk -F'\t' -v most="$most" '
    $1 == "export" && $2 != most {
      if ($2 != last) print "\nexported: " $2
      last = $2
      print "  " $3
    }'
} >>"$work/abi.txt"

changed=0
for file in abi.txt exported_names.txt; do
  if ! diff "$data/$file" "$work/$file" >"$work/difference"; then
    echo "$file (< committed, > built):"
    cat "$work/difference"
    changed=1
  fi
done
[ $changed = 1 ] || exit 0

if [ "$(head -n 1 "$data/abi.txt")" = "$(head -n 1 "$work/abi.txt")" ]; then
  echo "the binary interface has changed, but YFW_ABI_VERSION in yfw.h has not: take the change back or raise it"
  exit 1
fi
if [ "$mode" = update ]; then
  cp "$work/abi.txt" "$work/exported_names.txt" "$data"
  echo "written for another version of the interface: review the difference above and commit it"
  exit 0
fi
echo "YFW_ABI_VERSION is another one: write the new description by building the target update_abi"
exit 1
