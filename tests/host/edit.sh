#!/bin/sh
# Translates an edit-config of ethernet/config with the given leaves and, before `config`, parameters.
exec ymap request --to paths - <<END
<rpc xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0">
<edit-config><target><running/></target>$2
<config><interfaces xmlns="http://openconfig.net/yang/interfaces"><interface><name>Eth0</name>
<ethernet xmlns="http://openconfig.net/yang/interfaces/ethernet"><config>
$1
</config></ethernet></interface></interfaces></config></edit-config></rpc>
END
