<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Camera database, format version 18 to 19: a camera's bands become its only
  band configuration, and the version becomes text.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>

  <xsl:template match="/">
    <xsl:if test="not(cameraModelDB)">
      <xsl:message terminate="yes">not a camera database</xsl:message>
    </xsl:if>
    <xsl:apply-templates select="cameraModelDB"/>
  </xsl:template>

  <xsl:template match="cameraModelDB">
    <xsl:variable name="version" select="(version/@value | version[not(@value)]/text())[1]"/>
    <xsl:if test="not(number($version) = 18)">
      <xsl:message terminate="yes">not a camera database of version 18</xsl:message>
    </xsl:if>
    <cameraModelDB>
      <version>19</version>
      <xsl:copy-of select="*[not(self::version or self::cameras or self::mappings)]"/>
      <xsl:apply-templates select="cameras"/>
      <xsl:copy-of select="mappings"/>
    </cameraModelDB>
  </xsl:template>

  <xsl:template match="cameras">
    <cameras>
      <xsl:apply-templates select="camera"/>
    </cameras>
  </xsl:template>

  <xsl:template match="camera">
    <camera>
      <xsl:copy-of select="@*"/>
      <xsl:copy-of select="*[not(self::band or self::bandConfig)]"/>
      <xsl:if test="band">
        <bandConfig>
          <xsl:copy-of select="band"/>
        </bandConfig>
      </xsl:if>
      <xsl:copy-of select="bandConfig"/>
    </camera>
  </xsl:template>
</xsl:stylesheet>
