// The published namespaces of the modules that the hand-written mappings name.
#pragma once

#define ETH_NS_OC_INTERFACES "http://openconfig.net/yang/interfaces"
#define ETH_NS_OC_ETHERNET "http://openconfig.net/yang/interfaces/ethernet"
#define ETH_NS_OC_AGGREGATE "http://openconfig.net/yang/interfaces/aggregate"
#define ETH_NS_NATIVE_OPER "urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-oper"
#define ETH_NS_NATIVE_CFG "urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-cfg"
