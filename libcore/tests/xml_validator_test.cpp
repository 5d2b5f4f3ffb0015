// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/core/xml/xsd_type_element_index.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "source_dir.h"
#include "xml_test_tools.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>
#include <QUrl>
#include <gmock/gmock.h>

namespace lumo {
namespace {

using testing::StartsWith;

bool validates(xml::XmlValidator& validator, const QByteArray& document)
{
    QBuffer device;
    device.setData(document);
    return device.open(QIODevice::ReadOnly) && validator.validateXml(device);
}

/// A schema of one element of a simple type.
QByteArray schema(const QByteArray& type)
{
    return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='a' type='" +
           type + "'/></xs:schema>";
}

class XmlValidator : public testing::Test
{
protected:
    QString file(const char* name, const QByteArray& content)
    {
        return test::writeFile(m_folder.filePath(QLatin1String(name)), content);
    }

    QTemporaryDir m_folder;
    xml::XmlValidator m_validator;
};

TEST_F(XmlValidator, WithoutSchemaNothingIsValidAndNothingIsSaid)
{
    const log::Capture log;
    EXPECT_FALSE(validates(m_validator, "<a/>"));
    EXPECT_FALSE(m_validator.validateXml(file("a.xml", "<a/>")));
    EXPECT_FALSE(m_validator.isXsdLoaded());
    EXPECT_TRUE(log.records().empty());
}

TEST_F(XmlValidator, AFailedLoadSaysWhyAndKeepsTheEarlierSchema)
{
    ASSERT_TRUE(m_validator.loadXsd(file("int.xsd", schema("xs:int"))));
    const std::pair<QString, const char*> cases[] = {
        {m_folder.filePath("missing.xsd"), "Failed loading the schema"},
        {file("cut.xsd", "<xs:schema"), "Failed loading the schema"},
        {file("wrong.xsd", schema("xs:nonsense")), "No valid schema"},
        {file("other.xsd", "<a/>"), "No valid schema"}};
    for (const auto& [path, text] : cases) {
        const log::Capture log;
        QString error;
        EXPECT_FALSE(m_validator.loadXsd(path, error)) << qPrintable(path);
        EXPECT_FALSE(error.isEmpty()) << qPrintable(path);
        EXPECT_TRUE(log.contains(log::Level::Important, text)) << qPrintable(path);
        EXPECT_EQ(log.records().back().source, "lumo_xml_validator");
        EXPECT_FALSE(m_validator.isXsdLoaded()) << qPrintable(path);
        EXPECT_TRUE(validates(m_validator, "<a>5</a>")) << qPrintable(path);
        EXPECT_FALSE(validates(m_validator, "<a>x</a>")) << qPrintable(path);
    }
    ASSERT_TRUE(m_validator.loadXsd(file("bool.xsd", schema("xs:boolean"))));
    EXPECT_TRUE(m_validator.isXsdLoaded());
    EXPECT_FALSE(validates(m_validator, "<a>5</a>"));
}

TEST_F(XmlValidator, WhatIsWrongGoesToTheDebugLog)
{
    ASSERT_TRUE(m_validator.loadXsd(file("int.xsd", schema("xs:int"))));
    const QString bad = file("bad.xml", "<?xml version='1.0'?>\n<a>x</a>");
    {
        const log::Capture log;
        EXPECT_FALSE(m_validator.validateXml(bad));
        ASSERT_EQ(log.records().size(), 1u);
        const std::string text = log.records()[0].text.toStdString();
        EXPECT_THAT(text, StartsWith("XSD Validation - description: "));
        EXPECT_THAT(
            text, testing::ContainsRegex("\ntype: 3\nlocation: file:.*bad.xml line: 2 column: "));
        EXPECT_EQ(log.records()[0].level, log::Level::Debug);
    }
    const log::Capture log;
    EXPECT_FALSE(validates(m_validator, "<a>x</a>"));
    EXPECT_TRUE(log.contains(log::Level::Debug, "XML buffer validation failed with current XSD"));
}

TEST_F(XmlValidator, RefusesHostileDocuments)
{
    ASSERT_TRUE(m_validator.loadXsd(file("any.xsd", schema("xs:anyType"))));
    EXPECT_TRUE(validates(m_validator, "<a><b c='d'/></a>"));
    for (const auto& [name, document] : test::hostileDocuments()) {
        EXPECT_FALSE(validates(m_validator, document)) << name;
        QString error;
        EXPECT_FALSE(m_validator.validateXml(file("hostile.xml", document), error)) << name;
        EXPECT_FALSE(error.isEmpty()) << name;
        EXPECT_FALSE(xml::XmlValidator().loadXsd(file("hostile.xsd", document))) << name;
    }
}

TEST_F(XmlValidator, LoadsNoSchemaThatTheDocumentNames)
{
    const QString other = file(
        "other.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
                     "targetNamespace='urn:o'><xs:element name='o' type='xs:int'/></xs:schema>");
    ASSERT_TRUE(m_validator.loadXsd(file("int.xsd", schema("xs:int"))));
    const QByteArray hint = " xmlns:o='urn:o' "
                            "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                            "xsi:schemaLocation='urn:o " +
                            QUrl::fromLocalFile(other).toEncoded() + "'>5</";
    EXPECT_TRUE(validates(m_validator, "<a" + hint + "a>"));
    EXPECT_FALSE(validates(m_validator, "<o:o" + hint + "o:o>"));
}

/// Restores the application directory.
class ApplicationFolder : public testing::Test
{
protected:
    void SetUp() override { system::setApplicationDirectory(m_folder.path()); }
    void TearDown() override { system::setApplicationDirectory(QString()); }

    QTemporaryDir m_folder;
};

TEST_F(ApplicationFolder, TheNewestProjectSchemaHasTheLargestNumber)
{
    EXPECT_EQ(getCurrentXsdPath(), "");
    const QDir root(m_folder.path());
    ASSERT_TRUE(root.mkpath("resources/xsd"));
    EXPECT_EQ(getCurrentXsdPath(), "");
    test::writeFile(root.filePath("resources/xsd/99"), "a file, not a folder");
    ASSERT_TRUE(root.mkpath("resources/xsd/abc"));
    EXPECT_EQ(getCurrentXsdPath(), root.filePath("resources/xsd/0"));
    for (const char* name : {"2", "9", "10"}) {
        ASSERT_TRUE(root.mkpath(QStringLiteral("resources/xsd/") + name));
    }
    EXPECT_EQ(getCurrentXsdPath(), root.filePath("resources/xsd/10"));
}

TEST_F(ApplicationFolder, ElementIndexListsTheOptionsOfEachType)
{
    const QString path = test::writeFile(m_folder.filePath("project.xsd"), R"(<?xml version="1.0"?>
<!-- a comment --><xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"><!-- another -->
  <xs:element name="project"><xs:complexType name="imageType"><xs:sequence>
    <xs:element name="notAnImage"/></xs:sequence></xs:complexType></xs:element>
  <xs:complexType name="imageType"><!-- in a type -->
    <xs:sequence><xs:element name="a"/><xs:element type="xs:int" name="b"/><xs:element name="c">
      <xs:simpleType><xs:restriction base="xs:int"/></xs:simpleType></xs:element>
      <xs:choice><xs:element name="d"/><xs:element name="a"/><xs:element/></xs:choice>
    </xs:sequence></xs:complexType><xs:complexType name="cameraType"><xs:element name="shallow"/>
    <xs:all><xs:element name="id"/></xs:all></xs:complexType>
  <xs:complexType name="denseOptionsType" mixed="true"><xs:all><xs:element name="no"/></xs:all>
  </xs:complexType><xs:complexType name="otherType"><xs:all><xs:element name="no"/></xs:all>
  </xs:complexType></xs:schema>)");
    const XsdTypeElementIndex index(path);
    using Positions = XsdTypeElementIndex::Positions;
    EXPECT_EQ(index.imageElements(), (Positions{{"a", 4}, {"xs:int", 1}, {"c", 2}, {"d", 3}}));
    EXPECT_EQ(index.cameraElements(), (Positions{{"id", 0}}));
    EXPECT_TRUE(index.denseOptionsElements().empty());
    EXPECT_TRUE(index.initialOptionsElements().empty());
}

TEST_F(ApplicationFolder, ElementIndexRefusesWhatIsNoXml)
{
    const std::pair<QByteArray, const char*> cases[] = {
        {"", "Error parsing XSD. Start of document not found"},
        {"<a><b></a>", "Error parsing XSD. line 1: "}};
    EXPECT_THROW(XsdTypeElementIndex(m_folder.filePath("missing")), std::runtime_error);
    for (const auto& [content, start] : cases) {
        try {
            const XsdTypeElementIndex index(test::writeFile(m_folder.filePath("x"), content));
            ADD_FAILURE() << content.data() << " was taken";
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), StartsWith(start));
        }
    }
}

QString schemaPath(int version)
{
    return sourcePath("resources/xsd/%1.xsd").arg(version == 18 ? "camDB_2_1" : "camDB_2_2");
}

QByteArray sample(int version)
{
    return test::readFile(sourcePath("samples/camdb/camdb_%1.xml").arg(version));
}

TEST(CameraDbSchemas, LoadInSilenceAndTakeTheirVersionOnly)
{
    for (const int version : {18, 19}) {
        const log::Capture log;
        xml::XmlValidator validator;
        EXPECT_TRUE(validator.loadXsd(schemaPath(version)));
        EXPECT_TRUE(validates(validator, sample(version)));
        EXPECT_TRUE(log.records().empty()) << qPrintable(log.records().front().text);
        for (const int other : {11, 12, 16, 17, 37 - version}) {
            EXPECT_FALSE(validates(validator, sample(other))) << other;
        }
    }
}

TEST(CameraDbSchemas, RefuseWhatAReaderCouldNotRead)
{
    xml::XmlValidator validator;
    ASSERT_TRUE(validator.loadXsd(schemaPath(19)));
    const std::pair<const char*, const char*> changes[] = {
        {"<version>19</version>", ""},
        {"<version>19</version>", "<version/>"},
        {"<version>19</version>", "<version>20</version>"},
        {"cameraModelDB>", "cameraModel>"},
        {"<imageWidth>5472", "<imageWidth>5472.5"},
        {"<imageWidth>5472", "<imageWidth>-5472"},
        {"<pixelSize>0.002", "<pixelSize>0,002"},
        {"<pixelSize>0.00241228", "<pixelSize>NaN"},
        {"<pixelSize>0.00241228", "<pixelSize>INF"},
        {"<pixelSize>0.00241228", "<pixelSize>"},
        {"<lensType>fisheye", "<lensType>pinhole"},
        {"<lensType>fisheye</lensType>", "<lensType>fisheye</lensType><unknown/>"},
        {"<p0zero>true", "<p0zero>yes"},
        {"fNumber=\"2.8\"", ""},
        {"sizeY=\"3\"", "sizeY=\"-3\""},
        {"pixelType=\"uint8\"", "pixelType=\"uint9\""},
        {"lineReadoutTime=\"0.0298\"", "lineReadoutTime=\"fast\""},
        {"wavelength=\"790\"", "wavelength=\"790 nm\""},
        {"<band name=\"Red\"", "<band"},
        {"name=\"Kugel 360", "label=\"Kugel 360"},
        {"name=\"Mono NIR\"", "name=\"\""},
        {"mode=\"optRels\"", "mode=\"optRot\""},
        {"adjustRefCamera=\"true\"", "adjustRefCamera=\"ja\""},
        {"<cameraDetection>cameraOrder", "<cameraDetection>colour"},
        {"index=\"1\"", "index=\"-1\""},
        {"rotZ=\"89.9\"", "rotZ=\"a right angle\""},
        {"<mapping exif=", "<mapping id="},
    };
    for (const auto& [from, to] : changes) {
        const QByteArray document = sample(19);
        ASSERT_TRUE(document.contains(from)) << from;
        EXPECT_FALSE(validates(validator, QByteArray(document).replace(from, to)))
            << from << " -> " << to;
    }
}

// The validator compares each key with all others: 12 s for 4,000 cameras.
TEST(CameraDbSchemas, LeaveUniquenessToTheReader)
{
    for (const int version : {18, 19}) {
        QFile schema(schemaPath(version));
        ASSERT_TRUE(schema.open(QIODevice::ReadOnly));
        const QByteArray text = schema.readAll();
        EXPECT_TRUE(text.contains("<xs:schema"));
        EXPECT_FALSE(text.contains("<xs:key") || text.contains("<xs:unique"));
    }
}

} // namespace
} // namespace lumo
