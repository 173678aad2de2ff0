<?xml version="1.0"?>
<!-- The counters that the plug-in makes of a statistics reply, as a stylesheet: what an engineer would write by hand. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0" xmlns:o="urn:zemlo:yang:Zemlo-QUARN-drivers-media-eth-oper"
    exclude-result-prefixes="o nc">
  <xsl:output method="xml" indent="yes" omit-xml-declaration="yes"/>
  <xsl:strip-space elements="*"/>

  <xsl:template match="/">
    <data xmlns="urn:ietf:params:xml:ns:netconf:base:1.0">
      <interfaces xmlns="http://openconfig.net/yang/interfaces">
        <xsl:apply-templates select="nc:rpc-reply/nc:data/o:ethernet-interface/o:statistics/o:statistic"/>
      </interfaces>
    </data>
  </xsl:template>

  <xsl:template match="o:statistic">
    <interface xmlns="http://openconfig.net/yang/interfaces">
      <name><xsl:value-of select="o:interface-name"/></name>
      <ethernet xmlns="http://openconfig.net/yang/interfaces/ethernet">
        <state>
          <counters>
            <xsl:apply-templates select="*"/>
          </counters>
        </state>
      </ethernet>
    </interface>
  </xsl:template>

  <xsl:template match="o:statistic/*" priority="-1"/>
  <xsl:template match="o:received8021q-frames">
    <in-8021q-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-8021q-frames>
  </xsl:template>
  <xsl:template match="o:received-pause-frames">
    <in-mac-pause-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-mac-pause-frames>
  </xsl:template>
  <xsl:template match="o:dropped-giant-packets-greaterthan-mru">
    <in-oversize-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-oversize-frames>
  </xsl:template>
  <xsl:template match="o:dropped-jabbers-packets-greaterthan-mru">
    <in-jabber-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-jabber-frames>
  </xsl:template>
  <xsl:template match="o:dropped-ether-stats-fragments">
    <in-fragment-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-fragment-frames>
  </xsl:template>
  <xsl:template match="o:dropped-packets-with-crc-align-errors">
    <in-crc-errors xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></in-crc-errors>
  </xsl:template>
  <xsl:template match="o:transmitted8021q-frames">
    <out-8021q-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></out-8021q-frames>
  </xsl:template>
  <xsl:template match="o:transmitted-total-pause-frames">
    <out-mac-pause-frames xmlns="http://openconfig.net/yang/interfaces/ethernet"><xsl:value-of select="."/></out-mac-pause-frames>
  </xsl:template>
</xsl:stylesheet>
