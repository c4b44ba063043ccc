<?xml version="1.0" encoding="UTF-8"?>
<!--
  Turns the paragraph markup of object texts into a piece of HTML.

  The source is a "text" element with "p" (paragraph), "h" (heading) and "list"/"item" children; inside them "b" and "i"
  set bold and italic, "br" breaks the line, "mark" names the number of a mark on a view.

  Elements that are not known give their content, so that text is never lost.
-->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8" indent="no"/>
  <xsl:strip-space elements="text list"/>

  <xsl:template match="text">
    <div class="text"><xsl:apply-templates/></div>
  </xsl:template>

  <xsl:template match="p">
    <p><xsl:apply-templates/></p>
  </xsl:template>

  <xsl:template match="h">
    <h2><xsl:apply-templates/></h2>
  </xsl:template>

  <xsl:template match="list">
    <ul><xsl:apply-templates/></ul>
  </xsl:template>

  <xsl:template match="item">
    <li><xsl:apply-templates/></li>
  </xsl:template>

  <xsl:template match="b">
    <b><xsl:apply-templates/></b>
  </xsl:template>

  <xsl:template match="i">
    <i><xsl:apply-templates/></i>
  </xsl:template>

  <xsl:template match="br">
    <br/>
  </xsl:template>

  <xsl:template match="mark">
    <span class="mark"><xsl:apply-templates/></span>
  </xsl:template>
</xsl:stylesheet>
