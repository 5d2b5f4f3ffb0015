<?xml version="1.0" encoding="UTF-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!--
  Camera database, format version 17 to 18.

  Elements are brought into the order of version 18; those that no reader knows,
  of either version, are left out, and so are entries without a name.
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
    <!-- A document without version is one of an unknown, older version. -->
    <xsl:variable name="version" select="(version/@value | version[not(@value)]/text())[1]"/>
    <xsl:if test="$version and number($version) != 17">
      <xsl:message terminate="yes">not a camera database of version 17</xsl:message>
    </xsl:if>
    <cameraModelDB>
      <version value="18"/>
      <xsl:copy-of select="*[not(self::version or self::rigs or self::cameras or self::mappings)]"/>
      <xsl:apply-templates select="rigs[1]"/>
      <xsl:apply-templates select="cameras[1]"/>
      <xsl:apply-templates select="mappings[1]"/>
    </cameraModelDB>
  </xsl:template>

  <xsl:template match="rigs">
    <rigs>
      <xsl:apply-templates select="rig[@name != '']"/>
    </rigs>
  </xsl:template>

  <xsl:template match="cameras">
    <cameras>
      <xsl:apply-templates select="camera[@name != '']"/>
    </cameras>
  </xsl:template>

  <xsl:template match="mappings">
    <mappings>
      <xsl:copy-of select="mapping[@exif and @camera]"/>
    </mappings>
  </xsl:template>

  <xsl:template match="cameras/camera">
    <camera>
      <xsl:copy-of select="@name | @serialNumber"/>
      <xsl:copy-of select="shutterModel[1]"/>
      <xsl:copy-of select="imageWidth[1]"/>
      <xsl:copy-of select="imageHeight[1]"/>
      <xsl:copy-of select="pixelSize[1]"/>
      <xsl:copy-of select="principalPointXmm[1]"/>
      <xsl:copy-of select="principalPointYmm[1]"/>
      <xsl:copy-of select="lensType[1]"/>
      <xsl:choose>
        <xsl:when test="lensType = 'fisheye'">
          <xsl:call-template name="fisheye"/>
        </xsl:when>
        <xsl:when test="lensType = 'spherical'"/>
        <xsl:otherwise>
          <xsl:call-template name="perspective"/>
        </xsl:otherwise>
      </xsl:choose>
      <xsl:copy-of select="pixelValue"/>
      <xsl:copy-of select="vignettingPoly"/>
      <xsl:copy-of select="cameraModelSource[1]"/>
      <xsl:call-template name="exifID"/>
      <xsl:copy-of select="band"/>
    </camera>
  </xsl:template>

  <xsl:template name="perspective">
    <xsl:copy-of select="focalLengthmm[1]"/>
    <xsl:copy-of select="distortion[1]"/>
    <xsl:copy-of select="radialK1[1]"/>
    <xsl:copy-of select="radialK2[1]"/>
    <xsl:copy-of select="radialK3[1]"/>
    <xsl:copy-of select="tangentialT1[1]"/>
    <xsl:copy-of select="tangentialT2[1]"/>
  </xsl:template>

  <xsl:template name="fisheye">
    <xsl:copy-of select="npoly[1]"/>
    <xsl:copy-of select="poly0[1]"/>
    <xsl:copy-of select="poly1[1]"/>
    <xsl:copy-of select="poly2[1]"/>
    <xsl:copy-of select="poly3[1]"/>
    <xsl:copy-of select="poly4[1]"/>
    <xsl:copy-of select="p0zero[1]"/>
    <xsl:copy-of select="symmetricAffine[1]"/>
    <xsl:copy-of select="c[1]"/>
    <xsl:copy-of select="d[1]"/>
    <xsl:copy-of select="e[1]"/>
    <xsl:copy-of select="f[1]"/>
  </xsl:template>

  <!-- The identifier was the attribute aliasName. -->
  <xsl:template name="exifID">
    <xsl:choose>
      <xsl:when test="exifID">
        <xsl:copy-of select="exifID[1]"/>
      </xsl:when>
      <xsl:when test="@aliasName != ''">
        <exifID>
          <xsl:value-of select="@aliasName"/>
        </exifID>
      </xsl:when>
    </xsl:choose>
  </xsl:template>

  <xsl:template match="rigs/rig">
    <xsl:variable name="detection">
      <xsl:call-template name="cameraDetection"/>
    </xsl:variable>
    <rig>
      <xsl:copy-of select="@name | @exifString | @serialNumber"/>
      <xsl:apply-templates select="processing[1]"/>
      <cameraDetection>
        <xsl:value-of select="$detection"/>
      </cameraDetection>
      <xsl:apply-templates select="referenceCamera[1]">
        <xsl:with-param name="detection" select="$detection"/>
      </xsl:apply-templates>
      <xsl:apply-templates select="camera">
        <xsl:with-param name="detection" select="$detection"/>
      </xsl:apply-templates>
    </rig>
  </xsl:template>

  <!-- Rigs older than the element have folders in defDir. -->
  <xsl:template name="cameraDetection">
    <xsl:variable name="old" select="(cameraDetection/@value | cameraDetection[not(@value)]/text())[1]"/>
    <xsl:choose>
      <xsl:when test="$old = 'detectionString'">detectionString</xsl:when>
      <xsl:when test="normalize-space($old) = '' and referenceCamera[1]/@defDir != ''">detectionString</xsl:when>
      <xsl:otherwise>cameraOrder</xsl:otherwise>
    </xsl:choose>
  </xsl:template>

  <!-- Before version 13 adjustRefCamera was a child element. -->
  <xsl:template match="rig/processing">
    <processing>
      <xsl:if test="@mode">
        <xsl:attribute name="mode">
          <xsl:choose>
            <xsl:when test="@mode = 'calibrate' or @mode = 'independCalRel' or @mode = 'optRels' or @mode = 'optAllRel'">
              <xsl:value-of select="@mode"/>
            </xsl:when>
            <!-- optRotRel itself, optRot, optRotRelStatic, and what readers take for it -->
            <xsl:otherwise>optRotRel</xsl:otherwise>
          </xsl:choose>
        </xsl:attribute>
      </xsl:if>
      <xsl:choose>
        <xsl:when test="@adjustRefCamera">
          <xsl:copy-of select="@adjustRefCamera"/>
        </xsl:when>
        <xsl:when test="adjustRefCamera">
          <xsl:attribute name="adjustRefCamera">
            <xsl:value-of select="normalize-space(adjustRefCamera[1])"/>
          </xsl:attribute>
        </xsl:when>
      </xsl:choose>
    </processing>
  </xsl:template>

  <xsl:template match="rig/referenceCamera | rig/camera">
    <xsl:param name="detection"/>
    <xsl:copy>
      <xsl:copy-of select="self::referenceCamera/@index"/>
      <xsl:copy-of select="self::camera/@*[starts-with(name(), 'rot') or starts-with(name(), 'transl') or starts-with(name(), 'tol')]"/>
      <xsl:copy-of select="@exifString | @serialNumber | @name | @detectionString"/>
      <xsl:if test="$detection = 'detectionString' and not(@detectionString != '') and @defDir != ''">
        <xsl:attribute name="detectionString">
          <xsl:value-of select="@defDir"/>
        </xsl:attribute>
      </xsl:if>
      <xsl:copy-of select="band"/>
    </xsl:copy>
  </xsl:template>
</xsl:stylesheet>
