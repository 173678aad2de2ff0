# The counters that the plug-in makes of a statistics reply, as a jq program: what an engineer would write by hand.
{
  "openconfig-interfaces:interfaces": {
    interface: [
      .["Zemlo-QUARN-drivers-media-eth-oper:ethernet-interface"].statistics.statistic[]
      | {
          name: .["interface-name"],
          "openconfig-if-ethernet:ethernet": {
            state: {
              counters: {
                "in-8021q-frames": .["received8021q-frames"],
                "in-mac-pause-frames": .["received-pause-frames"],
                "in-oversize-frames": .["dropped-giant-packets-greaterthan-mru"],
                "in-jabber-frames": .["dropped-jabbers-packets-greaterthan-mru"],
                "in-fragment-frames": .["dropped-ether-stats-fragments"],
                "in-crc-errors": .["dropped-packets-with-crc-align-errors"],
                "out-8021q-frames": .["transmitted8021q-frames"],
                "out-mac-pause-frames": .["transmitted-total-pause-frames"]
              }
            }
          }
        }
    ]
  }
}
