<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Project, format version 1 to 2: the options
  of meshes get a section of their own, and a ground control point tells its type.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>

  <change:moved what="options/dense/mesh*" into="options/mesh"/>
  <change:rewritten what="gcps/gcp" into="gcps/gcp@type"/>

  <xsl:template match="/">
    <xsl:if test="not(lumodesk)">
      <xsl:message terminate="yes">not a project</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumodesk">
    <xsl:if test="not(translate(software[1]/kpxVersion[1], '+', '') = 1)">
      <xsl:message terminate="yes">not a project of format version 1</xsl:message>
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

  <xsl:template match="software/kpxVersion">
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

  <xsl:template match="inputs">
    <xsl:copy-of select="."/>
  </xsl:template>

  <xsl:template match="gcps/gcp[not(@type)]">
    <xsl:copy>
      <xsl:attribute name="type">
        <xsl:choose>
          <xsl:when test="@z">3D</xsl:when>
          <xsl:otherwise>2D</xsl:otherwise>
        </xsl:choose>
      </xsl:attribute>
      <xsl:copy-of select="@* | node()"/>
    </xsl:copy>
  </xsl:template>
</xsl:stylesheet>
