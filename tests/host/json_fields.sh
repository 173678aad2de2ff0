#!/bin/sh
# Prints the members of the JSON reports that docs/json.md does not describe, and those in it that no report has.
report() {
  ymap "$@" --format json 2>/dev/null
}

reports() {
  case $1 in
    coverage) report coverage ;;
    plan)
      report plan examples/set-speed.xml
      sed 's/SPEED_100MB/SPEED_10GB/; s/<config>/<config nc:operation="replace" xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0">/' \
        examples/set-speed.xml | report plan - ;;
    explain)
      report explain /interfaces/interface/ethernet/config/enable-flow-control
      report explain /interfaces/interface/ethernet/config/port-speed
      report explain /interfaces/interface/ethernet/state/effective-speed
      report explain /interface-configurations/interface-configuration/ethernet/auto-negotiation
      report explain /interface-configurations/interface-configuration/ethernet/flow-control
      sh tests/host/sky/ymap-sky.sh explain --value 13 /masts/mast-entry/period --format json ;;
    roundtrip)
      report roundtrip --accepted /dev/null
      { cat mapping/ethernet/accepted-differences; echo "delete-get /a FULL no longer"; } | report roundtrip --accepted - ;;
    check) report check "$(dirname "$(command -v ymap)")/../lib/ymap/libymap_misspelt.so" ;;
  esac
}

# Members of objects whose names are data become '*', and what stands for another one that name.
members() {
  jq -r '(paths(type != "object"), (paths | select(last == "tree"))) | select((index("tree") // length) >= length - 1)
    | reduce .[] as $step (""; . + if ($step | type) == "number" then "[]" else "." + $step end)' |
    sed 's/^\.//; s/\[\]$//; s/^\(summary\.\|\)native\(\.\|\[\|$\)/\1client\2/; s/^accepted\(\[\|$\)/unexpected\1/
      s/\(operations\|properties\|summary\.client\)\.[a-z-]*/\1.*/'
}

documented() {
  awk -v head="## $1" '/^## / { on = $0 == head } on' docs/json.md | sed -n 's/^| `\([^`]*\)`.*/\1/p'
}

command -v jq >/dev/null || { echo "the program 'jq' is not installed"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for command in coverage plan explain roundtrip check; do
  documented "$command" | sort -u >"$work/documented"
  reports "$command" | members | sort -u >"$work/written"
  [ -s "$work/written" ] || echo "$command writes nothing"
  comm -13 "$work/documented" "$work/written" | sed "s/^/$command writes, and docs\/json.md does not describe: /"
  comm -23 "$work/documented" "$work/written" | sed "s/^/docs\/json.md has, and $command does not write: /"
done
