<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Processing template, format version 1 to 2: the options
  of meshes get a section of their own.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>

  <change:moved what="options/dense/mesh*" into="options/mesh"/>

  <xsl:template match="/">
    <xsl:if test="not(lumotmpl)">
      <xsl:message terminate="yes">not a processing template</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumotmpl">
    <xsl:if test="not(translate(information[1]/kpxVersion[1], '+', '') = 1)">
      <xsl:message terminate="yes">not a processing template of format version 1</xsl:message>
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
    <kpxVersion>2</kpxVersion>
  </xsl:template>

  <xsl:template match="options/dense">
    <xsl:copy>
      <xsl:copy-of select="@* | node()[not(self::*) or not(starts-with(name(), 'mesh'))]"/>
    </xsl:copy>
    <xsl:if test="*[starts-with(name(), 'mesh')]">
      <mesh>
        <xsl:copy-of select="*[starts-with(name(), 'mesh')]"/>
      </mesh>
    </xsl:if>
  </xsl:template>
</xsl:stylesheet>
