// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/camera_params_xml.h"
#include "lumo/foundation/log.h"

#include <QDomDocument>
#include <QXmlStreamWriter>
#include <gtest/gtest.h>

namespace lumo::io {
namespace {

QDomElement parsed(const QString& text)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(xml::domFromString(text, document, error)) << qPrintable(error);
    return document.documentElement();
}

QDomElement written(const CameraParams& params, XmlOutputType type = XmlOutputType::Full)
{
    QString text;
    QXmlStreamWriter writer(&text);
    writer.writeStartElement(QStringLiteral("e"));
    writeCameraParams(writer, params, type);
    writer.writeEndElement();
    return parsed(text);
}

CameraParams read(const QDomElement& element)
{
    CameraParams params;
    params.velocityNumber = 8.0; // all is replaced, whatever was there
    params.vignetting[280];
    params.lensType = LensType::Spherical;
    readCameraParams(element, params);
    return params;
}

QString tag(const QDomElement& element, const char* name)
{
    return element.firstChildElement(QLatin1String(name)).text();
}

QStringList tagNames(const QDomElement& element)
{
    QStringList names;
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        names.append(e.tagName());
    }
    return names;
}

TEST(CameraParamsXml, AnEmptyElementIsTheDefaults)
{
    const log::Capture log;
    CameraParams expected;
    expected.name = QStringLiteral("kept");
    expected.fisheye = FisheyeParams();
    CameraParams params;
    params.name = expected.name;
    params.imageWidth = 5;
    readCameraParams(parsed(QStringLiteral("<e/>")), params);
    EXPECT_EQ(params, expected);

    const CameraParams fisheye =
        read(parsed(QStringLiteral("<e><lensType>fisheye</lensType></e>")));
    FisheyeParams lens;
    lens.symmetricAffine = false;
    EXPECT_EQ(fisheye.lensType, LensType::Fisheye);
    EXPECT_EQ(fisheye.fisheye, lens);
    EXPECT_TRUE(log.records().empty());
}

struct Shutter
{
    int model;
    double time;
    const char* code; ///< null: no element
    const char* writtenTime;
    int readModel;
};

TEST(CameraParamsXml, ShutterModelsAreStoredAsCodes)
{
    const Shutter shutters[] = {
        {0, 0.0, nullptr, "", 0},
        {0, 0.00005, nullptr, "", 0},
        {0, -0.00005, nullptr, "", 0},
        {0, 0.02, "1", "0.02", 0},
        {0, -0.02, "1", "-0.02", 0},
        {1, 0.0, "2", "", 2},
        {2, 0.0123456789012, "2", "0.0123456789", 2},
        {3, 0.00005, "2", "", 2},
        {4, 0.0, "1", "", 0},
    };
    for (const Shutter& shutter : shutters) {
        SCOPED_TRACE(testing::Message() << shutter.model << ", " << shutter.time);
        CameraParams params;
        params.shutterModel = shutter.model;
        params.lineReadoutTime = shutter.time;
        const QDomElement element = written(params);
        const QDomElement child = element.firstChildElement(QStringLiteral("shutterModel"));
        EXPECT_EQ(child.isNull(), shutter.code == nullptr);
        EXPECT_EQ(child.text(), QLatin1String(shutter.code));
        EXPECT_EQ(
            child.attribute(QStringLiteral("lineReadoutTime")), QLatin1String(shutter.writtenTime));
        EXPECT_EQ(read(element).shutterModel, shutter.readModel);
        EXPECT_EQ(written(read(written(read(element)))).text(), written(read(element)).text());
    }
    const CameraParams velocity = read(parsed(QStringLiteral(
        "<e><shutterModel lineReadoutTime='0.5' velocityNumber='3.5'>4</shutterModel></e>")));
    EXPECT_EQ(velocity.shutterModel, 4);
    EXPECT_EQ(velocity.velocityNumber, 3.5);
    EXPECT_EQ(velocity.lineReadoutTime, 0.5);
    EXPECT_EQ(
        read(parsed(QStringLiteral("<e><shutterModel velocityNumber='3.5'>3</shutterModel></e>")))
            .velocityNumber,
        0.0);
}

TEST(CameraParamsXml, ElementsStandInOrderWithTheDigitsOfTheOutputType)
{
    CameraParams params;
    params.imageWidth = 5472;
    params.pixelSize = 0.00241234567;
    params.perspective.focalLengthMm = 8.123456789;
    params.perspective.radialK1 = -0.01234567890123;
    QDomElement element = written(params);
    EXPECT_EQ(
        tagNames(element).join(QLatin1Char(' ')),
        QStringLiteral("imageWidth imageHeight pixelSize principalPointXmm principalPointYmm "
                       "lensType focalLengthmm distortion radialK1 radialK2 radialK3 "
                       "tangentialT1 tangentialT2 cameraModelSource"));
    EXPECT_EQ(tag(element, "pixelSize"), QStringLiteral("0.00241235"));
    EXPECT_EQ(tag(element, "focalLengthmm"), QStringLiteral("8.123457"));
    EXPECT_EQ(tag(element, "radialK1"), QStringLiteral("-0.0123456789"));
    element = written(params, XmlOutputType::Short);
    EXPECT_EQ(tag(element, "focalLengthmm"), QStringLiteral("8.123"));
    EXPECT_EQ(tag(element, "radialK1"), QStringLiteral("-0.0123457"));

    params.lensType = LensType::Fisheye;
    params.fisheye = {3, {0.1234567891, 1, 0, 0, 0}, false, true, 1234.56789, 7.0, 8.0, 9.0};
    element = written(params);
    EXPECT_EQ(
        tagNames(element).mid(5).join(QLatin1Char(' ')),
        QStringLiteral("lensType npoly poly0 poly1 poly2 poly3 poly4 p0zero symmetricAffine c d e "
                       "f cameraModelSource"));
    EXPECT_EQ(tag(element, "c"), QStringLiteral("1234.56789"));
    EXPECT_EQ(tag(element, "d"), QStringLiteral("0"));
    EXPECT_EQ(tag(element, "e"), QStringLiteral("0"));
    EXPECT_EQ(tag(element, "poly0"), QStringLiteral("0.123456789"));
    EXPECT_EQ(read(element).fisheye.f, 1234.56789);
    element = written(params, XmlOutputType::Short);
    EXPECT_EQ(tag(element, "c"), QStringLiteral("1e+03"));
    EXPECT_EQ(tag(element, "poly0"), QStringLiteral("0.123457"));

    params.lensType = static_cast<LensType>(3);
    EXPECT_EQ(tagNames(written(params)).size(), 6);
    params.lensType = LensType::Spherical;
    EXPECT_EQ(tagNames(written(params)).size(), 7);
    EXPECT_EQ(read(written(params)).lensType, LensType::Spherical);
}

TEST(CameraParamsXml, VignettingMatricesAndPixelValuesComeBack)
{
    CameraParams params;
    Eigen::MatrixXd matrix(2, 3);
    matrix << 1, 2, 3, 4, 5.25, -6e-7;
    params.vignetting[280] = VignettingData(matrix, 0, 0, VignettingType::Polynomial);
    params.vignetting[1143] = VignettingData(matrix.leftCols(1), 0, 0, VignettingType::Polynomial);
    params.pixelValues[DataType::UInt16] = {0.0, 65535.0};
    params.pixelValues[DataType::Unknown] = {0.0, 1.0};
    const QDomElement element = written(params);
    const QDomElement model = element.firstChildElement(QStringLiteral("vignettingPoly"));
    EXPECT_EQ(model.attribute(QStringLiteral("fNumber")), QStringLiteral("2.8"));
    EXPECT_EQ(model.attribute(QStringLiteral("sizeY")), QStringLiteral("2"));
    EXPECT_EQ(model.attribute(QStringLiteral("value")), QStringLiteral("1,4,2,5.25,3,-6e-07"));
    params.pixelValues.erase(DataType::Unknown);
    const CameraParams back = read(element);
    EXPECT_EQ(back.vignetting, params.vignetting);
    EXPECT_EQ(back.pixelValues, params.pixelValues);
}

TEST(CameraParamsXml, BadTablesAreReadAsFarAsTheyGoWithAWarningEach)
{
    struct Case
    {
        const char* xml;
        std::size_t models;
        Eigen::Index rows;
        Eigen::Index columns;
        std::size_t warnings;
    };
    const Case cases[] = {
        {"<vignettingPoly fNumber='2' sizeY='2' value='1,2,3,'/>", 1, 3, 1, 1},
        {"<vignettingPoly fNumber='2' sizeY='0' value='1,2'/>", 1, 2, 1, 1},
        {"<vignettingPoly fNumber='2' sizeY='-1' value='1'/>", 1, 1, 1, 1},
        {"<vignettingPoly fNumber='2' sizeY='two' value='1,2'/>", 1, 2, 1, 1},
        {"<vignettingPoly fNumber='2' value='1,2'/>", 1, 2, 1, 0},
        {"<vignettingPoly fNumber='2' sizeY='1' value='1,x'/>", 1, 1, 2, 1},
        {"<vignettingPoly fNumber='2' sizeY='0' value=''/>", 1, 0, 1, 0},
        {"<vignettingPoly fNumber='1e300' value='1'/>", 0, 0, 0, 1},
        {"<pixelValue pixelType='uint12' min='0' max='1'/>", 0, 0, 0, 1},
        {"<lensType>pinhole</lensType>", 0, 0, 0, 1},
        {"<imageWidth>-3</imageWidth>", 0, 0, 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.xml);
        const log::Capture log;
        const CameraParams params =
            read(parsed(QStringLiteral("<e>\n%1</e>").arg(QLatin1String(c.xml))));
        ASSERT_EQ(params.vignetting.size(), c.models);
        if (c.models == 1) {
            EXPECT_EQ(params.vignetting.at(200).coefficients.rows(), c.rows);
            EXPECT_EQ(params.vignetting.at(200).coefficients.cols(), c.columns);
        }
        ASSERT_EQ(log.records().size(), c.warnings);
        if (c.warnings > 0) {
            EXPECT_TRUE(log.records().front().text.startsWith(QStringLiteral("line 2: element ")));
        }
    }
}

TEST(CameraXml, ACameraComesBack)
{
    CameraData camera;
    camera.params.name = QStringLiteral("Größe 3");
    camera.params.source = CameraSource::Exif;
    camera.bands = {{"NIR", 840, 40, 1}};
    camera.fixedBands = true;
    camera.serialNumber = QStringLiteral(" S1\r\n");
    camera.id = -4;
    for (const LeverArmState state : {LeverArmState::None, LeverArmState::Known}) {
        camera.leverArmState = state;
        if (state == LeverArmState::Known) {
            camera.leverArm = {0.1, -0.2, 0.3};
            camera.leverArmPrecision = {0.01, 0.02, 0.03};
        }
        QString text;
        QXmlStreamWriter writer(&text);
        writeCamera(writer, camera);
        const QDomElement element = parsed(text);
        EXPECT_EQ(element.tagName(), QStringLiteral("camera"));
        EXPECT_EQ(readCamera(element, 19), camera) << qPrintable(text);
    }
}

} // namespace
} // namespace lumo::io
