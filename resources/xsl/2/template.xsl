<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Processing template, format version 2 to 3: only the
  number, since projects change.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>


  <xsl:template match="/">
    <xsl:if test="not(lumotmpl)">
      <xsl:message terminate="yes">not a processing template</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumotmpl">
    <xsl:if test="not(translate(information[1]/kpxVersion[1], '+', '') = 2)">
      <xsl:message terminate="yes">not a processing template of format version 2</xsl:message>
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
    <kpxVersion>3</kpxVersion>
  </xsl:template>
</xsl:stylesheet>
