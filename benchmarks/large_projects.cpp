// SPDX-License-Identifier: Apache-2.0
#include "large_projects.h"

#include <QString>

namespace lumo::benchmarks {
namespace {

const char* const kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// A camera but for its start tag, and the name of its lens.
const char* const kCamera = R"(
    <imageWidth>5472</imageWidth>
    <imageHeight>3648</imageHeight>
    <pixelSize>0.00241228</pixelSize>
    <principalPointXmm>6.6</principalPointXmm>
    <principalPointYmm>4.4</principalPointYmm>
    <%1>perspective</%1>
    <focalLengthmm>8.8</focalLengthmm>
    <distortion>6</distortion>
    <radialK1>-0.008132</radialK1>
    <band name="Red" wavelength="660" width="0" weight="1"/>
  </camera>
)";

/// Of the parts of an image that both versions write alike: a flight over a grid of
/// 500 images a line.
QByteArray position(int image)
{
    const double x = 7.4 + 0.0002 * (image % 500);
    const double y = 46.7 + 0.0003 * (image / 500);
    return QStringLiteral("      <position x=\"%1\" y=\"%2\" z=\"712.25\" accuracyXY=\"5\" "
                          "accuracyZ=\"10\"/>\n"
                          "      <orientation omega=\"0.5\" phi=\"-1.25\" kappa=\"%3\"/>\n")
        .arg(x, 0, 'f', 7)
        .arg(y, 0, 'f', 7)
        .arg(image % 360)
        .toLatin1();
}

QByteArray path(int image)
{
    return QStringLiteral("/data/flights/2016/05/DJI_%1.JPG")
        .arg(image, 6, 10, QLatin1Char('0'))
        .toLatin1();
}

QByteArray time(int image)
{
    return QStringLiteral("2016:05:03 %1:%2:%3")
        .arg(image / 3600 % 24, 2, 10, QLatin1Char('0'))
        .arg(image / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(image % 60, 2, 10, QLatin1Char('0'))
        .toLatin1();
}

} // namespace

QByteArray projectOfVersion20(int images)
{
    QByteArray text = QByteArray(kDeclaration) +
                      "<lumoair>\n  <id value=\"lumo\"/>\n  <projectVersion value=\"2.0\"/>\n"
                      "  <projectType value=\"aerial\"/>\n  <denseOutputLAS value=\"true\"/>\n"
                      "  <camera cameraId=\"FC6310_8.8_5472x3648\">" +
                      QString(kCamera).arg("cameraType").toLatin1();
    for (int i = 0; i < images; ++i) {
        text += "  <image path=\"" + path(i) + "\" enabled=\"true\">\n" +
                "      <camera cameraId=\"FC6310_8.8_5472x3648\"/>\n" + position(i) +
                "      <time value=\"" + time(i) + ":250\"/>\n" +
                "      <group value=\"Group 1\"/>\n" +
                "      <exifId value=\"FC6310_8.8_5472x3648\"/>\n  </image>\n";
    }
    return text + "</lumoair>\n";
}

QByteArray projectOfFormat0(int images)
{
    QByteArray text =
        QByteArray(kDeclaration) +
        "<lumodesk>\n  <software>\n    <projectVersion>2.1.43</projectVersion>\n  </software>\n"
        "  <options>\n    <dense>\n      <pclExportLAS value=\"true\"/>\n"
        "      <meshResolution value=\"high\"/>\n    </dense>\n  </options>\n  <inputs>\n"
        "  <images>\n";
    for (int i = 0; i < images; ++i) {
        text += "    <image path=\"" + path(i) + "\" enabled=\"true\">\n" +
                "      <camera name=\"FC6310_8.8_5472x3648\"/>\n" + position(i) + "      <time>" +
                time(i) + "</time>\n      <group value=\"Group 1\"/>\n" +
                "      <exifID value=\"FC6310_8.8_5472x3648\"/>\n    </image>\n";
    }
    return text + "  </images>\n  <cameras>\n  <camera name=\"FC6310_8.8_5472x3648\">" +
           QString(kCamera).arg("lensType").toLatin1() + "  </cameras>\n  </inputs>\n</lumodesk>\n";
}

} // namespace lumo::benchmarks
