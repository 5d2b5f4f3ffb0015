<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Processing template, format version 0 to 1: groups are
  told by the attribute `name`.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>

  <change:renamed what="group@value" into="group@name"/>

  <xsl:template match="/">
    <xsl:if test="not(lumotmpl)">
      <xsl:message terminate="yes">not a processing template</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumotmpl">
    <!-- What is no whole number of 32 bits counts as 0. -->
    <xsl:variable name="version" select="information[1]/kpxVersion[1]"/>
    <xsl:if test="$version &gt; 0 and $version &lt; 2147483648 and not(contains($version, '.'))">
      <xsl:message terminate="yes">not a processing template of format version 0</xsl:message>
    </xsl:if>
    <xsl:copy>
      <xsl:copy-of select="@*"/>
      <xsl:apply-templates/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="node()">
    <xsl:copy>
      <xsl:copy-of select="@*"/>
      <xsl:apply-templates/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="information/kpxVersion">
    <kpxVersion>1</kpxVersion>
  </xsl:template>

  <!-- Files of version 0 may not tell it. -->
  <xsl:template match="information[not(kpxVersion)]/version">
    <xsl:copy-of select="."/>
    <kpxVersion>1</kpxVersion>
  </xsl:template>

  <xsl:template match="pclImageGroups/group[@value] | meshGeometryImageGroups/group[@value] |
                       meshTextureImageGroups/group[@value]">
    <xsl:copy>
      <xsl:attribute name="name">
        <xsl:value-of select="@value"/>
      </xsl:attribute>
      <xsl:copy-of select="@*[name() != 'value'] | node()"/>
    </xsl:copy>
  </xsl:template>
</xsl:stylesheet>
