<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Project, format version 0 to 1: the bands of a camera
  become a band configuration, its other name an element, and how the cameras of a
  rig are detected a text; groups are told by the attribute `name`.
  All else is kept as it is, comments and what is not known included.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
                xmlns:change="urn:lumo:change" exclude-result-prefixes="change">
  <xsl:output method="xml" encoding="UTF-8" indent="yes"/>
  <xsl:strip-space elements="*"/>

  <change:moved what="cameras/camera/band" into="cameras/camera/bandConfig/band"/>
  <change:renamed what="cameras/camera@aliasName" into="cameras/camera/exifID"/>
  <change:rewritten what="rig/cameraDetection@value" into="text of rig/cameraDetection"/>
  <change:renamed what="group@value" into="group@name"/>

  <xsl:template match="/">
    <xsl:if test="not(lumodesk)">
      <xsl:message terminate="yes">not a project</xsl:message>
    </xsl:if>
    <xsl:apply-templates/>
  </xsl:template>

  <xsl:template match="/lumodesk">
    <!-- What is no whole number of 32 bits counts as 0. -->
    <xsl:variable name="version" select="software[1]/kpxVersion[1]"/>
    <xsl:if test="$version &gt; 0 and $version &lt; 2147483648 and not(contains($version, '.'))">
      <xsl:message terminate="yes">not a project of format version 0</xsl:message>
    </xsl:if>
    <xsl:copy>
      <xsl:copy-of select="@*"/>
      <xsl:if test="not(software)">
        <software>
          <kpxVersion>1</kpxVersion>
        </software>
      </xsl:if>
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
    <kpxVersion>1</kpxVersion>
  </xsl:template>

  <!-- Files of version 0 may not tell it. -->
  <xsl:template match="software[not(kpxVersion)]/projectVersion">
    <xsl:copy-of select="."/>
    <kpxVersion>1</kpxVersion>
  </xsl:template>

  <xsl:template match="software[not(kpxVersion or projectVersion)]">
    <xsl:copy>
      <xsl:copy-of select="@* | product"/>
      <kpxVersion>1</kpxVersion>
      <xsl:copy-of select="node()[not(self::product)]"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="image/group[@value] | pclImageGroups/group[@value] |
                       meshGeometryImageGroups/group[@value] |
                       meshTextureImageGroups/group[@value]">
    <xsl:copy>
      <xsl:attribute name="name">
        <xsl:value-of select="@value"/>
      </xsl:attribute>
      <xsl:copy-of select="@*[name() != 'value'] | node()"/>
    </xsl:copy>
  </xsl:template>

  <!-- Most images have nothing that changes. -->
  <xsl:template match="images/image[not(group)]">
    <xsl:copy-of select="."/>
  </xsl:template>

  <!-- The bands of a camera become its only band configuration; what stands behind
       them is put behind it again. -->
  <xsl:template match="cameras/camera">
    <xsl:copy>
      <xsl:copy-of select="@*[name() != 'aliasName' or ../exifID]"/>
      <xsl:copy-of select="node()[not(self::band or self::serialNumber or self::fixedBands or
                           self::id or self::leverarm or self::leverarmPrecision)]"/>
      <xsl:if test="@aliasName and not(exifID)">
        <exifID>
          <xsl:value-of select="@aliasName"/>
        </exifID>
      </xsl:if>
      <xsl:if test="band">
        <bandConfig>
          <xsl:copy-of select="band"/>
        </bandConfig>
      </xsl:if>
      <xsl:copy-of select="serialNumber | fixedBands | id | leverarm | leverarmPrecision"/>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="cameras/rig/cameraDetection[@value]">
    <xsl:copy>
      <xsl:copy-of select="@*[name() != 'value']"/>
      <xsl:value-of select="@value"/>
    </xsl:copy>
  </xsl:template>
</xsl:stylesheet>
