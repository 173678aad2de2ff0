#!/bin/sh
# usage: record_captures.sh DIRECTORY
# Records, in DIRECTORY/NAME, all calls of the mapping for each request, reply and edit below. It wrote tests/host/captures,
# which are recorded again only when the calls of the mapping or their results are meant to change.
to=$1

# record NAME COMMAND...: records the command, rejected or not. Standard input is the command's.
record() {
  name=$1
  shift
  ymap record "$to/$name" -- "$@" >/dev/null 2>&1
}

# request NAME LEAVES [OPERATION]: a read, as JSON, of what is below "ethernet" of one interface.
request() {
  echo '{"openconfig-interfaces:interfaces": {"interface": [{"name": "Eth0",
    "openconfig-if-ethernet:ethernet": {'"$2"'}}]}}' | record "$1" request --operation "${3-get}" -
}

# edit NAME LEAVES [ATTRIBUTES [PARAMETERS]]: of ethernet/config, with attributes.
edit() {
  record "$1" request - <<END
<edit-config xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0">
<target><running/></target>$4<config><interfaces xmlns="http://openconfig.net/yang/interfaces"><interface>
<name>Eth0</name><ethernet xmlns="http://openconfig.net/yang/interfaces/ethernet"><config $3>$2</config></ethernet>
</interface></interfaces></config></edit-config>
END
}

# leaves ATTRIBUTES FLAG DUPLEX SPEED: all leaves of ethernet/config; without values when there is no FLAG.
leaves() {
  echo "<mac-address $1>${2:+02:00:00:00:00:01}</mac-address><auto-negotiate $1>$2</auto-negotiate>
    <duplex-mode $1>$3</duplex-mode><port-speed $1>$4</port-speed><enable-flow-control $1>$2</enable-flow-control>"
}

# reply NAME ETHERNET [OPTION...]: of native configuration, as JSON, of one interface.
reply() {
  name=$1
  below=$2
  shift 2
  echo '{"Zemlo-QUARN-interface-cfg:interface-configurations": {"interface-configuration": [{"interface-name": "Eth0",
    "Zemlo-QUARN-mdrv-lib-cfg:mac-addr": "02:00:00:00:00:01",
    "Zemlo-QUARN-drivers-media-eth-cfg:ethernet": {'"$below"'}}]}}' | record "$name" reply "$@" -
}

# operational NAME DATA: a reply of native operational data, as JSON.
operational() {
  echo '{"Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface": {'"$2"'}}' | record "$1" reply -
}

# Reads.
record get-counters request examples/get-counters.xml
record get-ethernet request --operation get-config examples/get-ethernet.json
echo '{"openconfig-interfaces:interfaces": {}}' | record get-all request --operation get -
echo '{"openconfig-interfaces:interfaces": {}}' | record get-config-all request --operation get-config -
request get-leaves '"state": {"hw-mac-address": null, "port-speed": null, "counters": {"in-crc-errors": null,
  "in-mac-control-frames": null, "out-mac-control-frames": null, "out-8021q-frames": null}}'
request get-counters-all '"state": {"counters": {}}'
request get-state '"state": {}'
request get-effective-speed '"state": {"effective-speed": null}'
request get-config-leaves '"config": {"mac-address": null, "duplex-mode": "FULL", "port-speed": null,
  "openconfig-if-aggregate:aggregate-id": null}' get-config
request get-config-all-leaves '"config": {"auto-negotiate": null, "enable-flow-control": null}' get-config

# Edits, with each operation at the leaves, above them, and for the whole message.
record set-mac request --operation edit examples/set-mac.json
record set-speed request examples/set-speed.xml
edit merge "$(leaves '' false FULL SPEED_10MB)"
edit merge-on "$(leaves '' true HALF SPEED_1GB)"
for operation in replace create; do
  edit $operation "$(leaves "nc:operation='$operation'" true FULL SPEED_100MB)"
  edit $operation-off "$(leaves "nc:operation='$operation'" false FULL SPEED_100MB)"
  edit $operation-above "$(leaves '' true HALF SPEED_1GB)" "nc:operation='$operation'"
  edit $operation-of-some '<duplex-mode>FULL</duplex-mode>' "nc:operation='$operation'"
done
for operation in delete remove; do
  edit $operation "$(leaves "nc:operation='$operation'")"
  edit $operation-above '' "nc:operation='$operation'"
done
edit merge-empty ''
edit none "$(leaves "nc:operation='merge'" true FULL SPEED_100MB)" '' '<default-operation>none</default-operation>'
edit none-of-some '<duplex-mode>FULL</duplex-mode><port-speed nc:operation="delete"/>' '' \
  '<default-operation>none</default-operation>'
edit refused-speed '<port-speed>SPEED_10GB</port-speed>'
edit refused-leaf '<aggregate-id xmlns="http://openconfig.net/yang/interfaces/aggregate">Ae1</aggregate-id>'
echo '{"openconfig-interfaces:interfaces": {"interface": [
  {"@": {"ietf-netconf:operation": "create"}, "name": "Eth0"},
  {"@": {"ietf-netconf:operation": "create"}, "name": "Eth1",
   "openconfig-if-ethernet:ethernet": {"config": {"auto-negotiate": true, "duplex-mode": "FULL"}}},
  {"name": "Eth2", "openconfig-if-ethernet:ethernet": {"@": {"ietf-netconf:operation": "replace"},
   "config": {"port-speed": "SPEED_1GB"}}}]}}' | record create-interfaces request --operation edit -

# Replies.
record reply-example reply examples/reply.xml
record reply-example-json reply examples/reply.json
record reply-one-interface reply --entry GigabitEthernet0/0/0/1 examples/device.xml
record reply-config reply --content config examples/reply.xml
record reply-nonconfig reply --content nonconfig examples/reply.xml
for speed in 10 100 1000 40; do
  reply reply-speed-$speed "\"speed\": \"$speed\", \"duplex\": \"half\""
done
for flow in bidirectional ingress egress; do
  reply reply-flow-$flow "\"flow-control\": \"$flow\""
done
reply reply-auto-negotiation '"auto-negotiation": "override"'
reply reply-refused '"auto-negotiation": "true", "duplex": "both", "speed": "x", "flow-control": "y", "sped": "1"'
reply reply-empty '' --content config
operational reply-counters '"statistics": {"statistic": [{"interface-name": "Eth0", "received8021q-frames": "1",
  "received-pause-frames": "2", "dropped-giant-packets-greaterthan-mru": "3",
  "dropped-jabbers-packets-greaterthan-mru": "4", "dropped-ether-stats-fragments": "5",
  "dropped-packets-with-crc-align-errors": "6", "transmitted8021q-frames": "007",
  "transmitted-total-pause-frames": "many", "symbol-errors": "9"}]}'
operational reply-speeds "\"interfaces\": {\"interface\": [$(
  for speed in ten-mbps hundred-mbps one-gbps ten-gbps twenty-five-gbps forty-gbps fifty-gbps hundred-gbps nine-gbps; do
    echo "{\"interface-name\": \"$speed\", \"layer1-info\": {\"speed\": \"$speed\"}},"
  done
)"'{"interface-name": "Eth0", "mac-info": {"burned-in-mac-address": "02:00:00:00:00:01", "mtu": 1514}}]}'

# Reads of a device, and an edit that does not depend on its data.
device=--device=examples/device.xml
config="/interfaces/interface[name='GigabitEthernet0/0/0/1']/ethernet/config"
record device-get get $device "/interfaces/interface[name='GigabitEthernet0/0/0/2']/ethernet"
record device-filter get $device --filter examples/get-counters.xml
record device-get-config get $device --operation get-config "//port-speed"
record device-set set $device --dry-run "$config/port-speed" SPEED_1GB
