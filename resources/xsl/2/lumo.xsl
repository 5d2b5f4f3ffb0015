<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Project, format version 2 to 3: time stamps are
  written as ISO 8601 does, and what is known of heights in elements.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>

  <change:rewritten what="image/time" into="yyyy-MM-ddThh:mm:ss"/>
  <change:renamed what="verticalDef" into="vertical"/>
  <change:moved what="verticalDef@model" into="vertical/model"/>
  <change:moved what="verticalDef@geoidHeight" into="vertical/geoidHeight"/>

  <xsl:template match="/">
    <xsl:if test="not(lumodesk)">
      <xsl:message terminate="yes">not a project</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumodesk">
    <xsl:if test="not(translate(software[1]/kpxVersion[1], '+', '') = 2)">
      <xsl:message terminate="yes">not a project of format version 2</xsl:message>
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
    <kpxVersion>3</kpxVersion>
  </xsl:template>

  <xsl:template match="images/image/*">
    <xsl:copy-of select="."/>
  </xsl:template>

  <!-- 2016:05:03 10:11:12 -->
  <xsl:template match="images/image/time[string-length() = 19 and substring(., 11, 1) = ' ']" priority="1">
    <time>
      <xsl:copy-of select="@*"/>
      <xsl:value-of select="translate(substring(., 1, 10), ':', '-')"/>
      <xsl:text>T</xsl:text>
      <xsl:value-of select="substring(., 12)"/>
    </time>
  </xsl:template>

  <xsl:template match="coordinateSystems/*/verticalDef">
    <vertical>
      <xsl:copy-of select="@*[name() != 'model' and name() != 'geoidHeight']"/>
      <xsl:if test="@model">
        <model>
          <xsl:value-of select="@model"/>
        </model>
      </xsl:if>
      <xsl:if test="@geoidHeight">
        <geoidHeight>
          <xsl:value-of select="@geoidHeight"/>
        </geoidHeight>
      </xsl:if>
      <xsl:copy-of select="node()"/>
    </vertical>
  </xsl:template>
</xsl:stylesheet>
