// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/camera_db_converter.h"
#include "lumo/core/xml/db_conversion_16_17.h"
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/core/xml/xslt_converter.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "source_dir.h"
#include "xml_test_tools.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>

namespace lumo {
namespace {

using testing::EndsWith;
using testing::StartsWith;

QString samplePath(const QString& name)
{
    return sourcePath("samples/camdb/camdb_%1.xml").arg(name);
}

bool validates(const QByteArray& document, const char* schema)
{
    xml::XmlValidator validator;
    QBuffer device;
    device.setData(document);
    return validator.loadXsd(sourcePath("resources/xsd/") + schema) &&
           device.open(QIODevice::ReadOnly) && validator.validateXml(device);
}

QByteArray run(IXmlConversion& step, const QByteArray& document)
{
    QBuffer input;
    input.setData(document);
    EXPECT_TRUE(input.open(QIODevice::ReadOnly));
    return step.convert(&input);
}

QByteArray to17(const QByteArray& document)
{
    DbConversion16_17 step;
    return run(step, document);
}

QByteArray transformed(const char* stylesheet, const QByteArray& document)
{
    XsltConverter step;
    step.setXslFile(sourcePath("resources/xsl/") + stylesheet);
    return run(step, document);
}

QByteArray to18(const QByteArray& document)
{
    return transformed("camdb_17_18.xsl", document);
}

QByteArray to19(const QByteArray& document)
{
    return transformed("camdb_18_19.xsl", document);
}

cameradb::CameraDBData tables(const QByteArray& document)
{
    QDomDocument dom;
    QString error;
    EXPECT_TRUE(xml::domFromBytes(document, dom, error)) << qPrintable(error);
    cameradb::CameraDBData data;
    bool modified = false;
    EXPECT_TRUE(cameradb::getXML(dom, true, false, false, data, modified));
    return data;
}

class CameraDbConverter_ : public testing::Test
{
protected:
    void SetUp() override
    {
        registerXmlConverters();
        system::setApplicationDirectory(sourcePath());
    }
    void TearDown() override { system::setApplicationDirectory(QString()); }

    QString file(const char* name, const QByteArray& content)
    {
        return test::writeFile(m_folder.filePath(QLatin1String(name)), content);
    }

    QTemporaryDir m_folder;
};

class OlderCameraDb : public CameraDbConverter_, public testing::WithParamInterface<int>
{};

TEST_P(OlderCameraDb, BecomesTheSameCurrentDatabase)
{
    const QString output = m_folder.filePath("ucmdb.xml");
    CameraDbConverter converter(samplePath(QString::number(GetParam())));
    ASSERT_TRUE(converter.needsConvertion());
    const log::Capture log;
    ASSERT_TRUE(converter.convert(output));
    EXPECT_FALSE(converter.needsConvertion());
    EXPECT_EQ(log.contains(log::Level::Important, "old versions (<= 16) -> 17"), GetParam() < 17);

    const QByteArray result = test::readFile(output);
    EXPECT_EQ(test::outline(result), test::outline(test::readFile(samplePath("19_from_older"))));
    EXPECT_TRUE(validates(result, "camDB_2_2.xsd"));
    const cameradb::CameraDBData data = tables(result);
    EXPECT_EQ(data.cameras.size(), 5u);
    EXPECT_EQ(data.rigs.size(), 2u);
    EXPECT_EQ(data.mappings.size(), 2u);
    const RigModel& rig = data.rigs.at(QString::fromUtf8("Vierer Größe M"));
    EXPECT_EQ(rig.cameraDetection, RigCameraDetection::ByDetectionString);
    EXPECT_EQ(rig.attr(1)[RigKey::DetectionString], "GRE_");
}

INSTANTIATE_TEST_SUITE_P(Versions, OlderCameraDb, testing::Values(11, 12, 16, 17, 18));

TEST_F(CameraDbConverter_, EachStepGivesTheNextVersion)
{
    const auto sample = [](int version) {
        return test::readFile(samplePath(QString::number(version)));
    };
    EXPECT_EQ(test::outline(to17(sample(16))), test::outline(sample(17)));
    const QByteArray version18 = to18(sample(17));
    EXPECT_EQ(test::outline(version18), test::outline(sample(18)));
    EXPECT_TRUE(validates(version18, "camDB_2_1.xsd"));
    for (const auto step : {&to18, &to19}) {
        EXPECT_THROW(static_cast<void>(step(sample(16))), std::runtime_error);
        EXPECT_THROW(static_cast<void>(step(sample(19))), std::runtime_error);
        EXPECT_THROW(static_cast<void>(step("<other/>")), std::runtime_error);
    }
}

TEST_F(CameraDbConverter_, AStylesheetDoesTheSameInBothEngines)
{
    const QByteArray one = "<xsl:stylesheet version=\"1.0\"";
    const QByteArray two = "<xsl:stylesheet version=\"2.0\"";
    QByteArray text = test::readFile(sourcePath("resources/xsl/camdb_18_19.xsl"));
    ASSERT_TRUE(text.contains(one));
    XsltConverter step;
    step.setXslFile(file("two.xsl", text.replace(one, two)));
    const QByteArray document = test::readFile(samplePath("18"));
    EXPECT_EQ(test::outline(run(step, document)), test::outline(to19(document)));
}

TEST_F(CameraDbConverter_, WhatTheProgramWritesValidates)
{
    cameradb::CameraDBData data;
    QString error;
    ASSERT_TRUE(cameradb::loadTextDB(cameradb::shippedTextDBPath(), data, error))
        << qPrintable(error);
    for (const auto& written : {data, tables(test::readFile(samplePath("19")))}) {
        QString text;
        ASSERT_TRUE(cameradb::documentText(
            {{"interCameraDBDate", "2020 & \"later\""}}, written, text, error));
        EXPECT_TRUE(validates(text.toUtf8(), "camDB_2_2.xsd"));
        EXPECT_EQ(tables(text.toUtf8()).cameras.size(), written.cameras.size());
    }
}

struct Rewrite
{
    const char* fact;
    const char* before; ///< inside of the root
    const char* after;  ///< likewise
};

TEST_F(CameraDbConverter_, RewritesTheNamesOfVersion16)
{
    const Rewrite cases[] = {
        {"sections are always there", "<vendorId value='1'>x</vendorId><productId/>",
         "<rigs/><cameras/><mappings/>"},
        {"a version that is not known",
         "<rig name='Airinov'><refCamera index='1'/><camera/><camera/><camera/></rig>",
         "<rigs><rig name='Airinov'><referenceCamera index='1'/><camera/><camera/><camera/></rig>"
         "</rigs><cameras/><mappings/>"},
        {"names of a camera",
         "<camera cameraId='n' aliasId='a' id='3' serialNumber='s' pixelType='p'>"
         "<cameraType>fisheye</cameraType><source>user</source><poly5>1<a/></poly5>"
         "<symmetricAffine3>true</symmetricAffine3></camera>",
         "<rigs/><cameras><camera name='n' aliasName='a' serialNumber='s' pixelType='p'>"
         "<lensType>fisheye</lensType><cameraModelSource>user</cameraModelSource>"
         "<symmetricAffine>true</symmetricAffine></camera></cameras><mappings/>"},
        {"names of a rig",
         "<rig name='r'><cameraDetection a='1' b='2'/><cameraDetection>t</cameraDetection>"
         "<source/><poly5/><refCamera id='1' cameraId='c'/><camera id='2' cameraId='c'>"
         "<source/></camera><processing mode='optRotRelStatic'/><processing mode='optRot'/></rig>",
         "<rigs><rig name='r'><cameraDetection value='1'/><cameraDetection>t</cameraDetection>"
         "<source/><poly5/><referenceCamera id='1' cameraId='c'/><camera name='c'>"
         "<cameraModelSource/></camera><processing mode='optRotRel'/><processing mode='optRot'/>"
         "</rig></rigs><cameras/><mappings/>"},
        {"what is dropped anywhere",
         "<mapping exif='e' camera='c'><serialNumber>1<b>2</b></serialNumber>"
         "<calibReliability/><x id='1'>t &lt; <![CDATA[ ]]>u</x></mapping>",
         "<rigs/><cameras/><mappings><mapping exif='e' camera='c'><x id='1'>t &lt;  u</x>"
         "</mapping></mappings>"},
        {"white space in values", "<camera name='a&#10;b&#9;&quot;&amp;&lt;'/>",
         "<rigs/><cameras><camera name='a&#10;b&#9;&quot;&amp;&lt;'/></cameras><mappings/>"},
        {"any older version", "<version value='5'/>",
         "<version>17</version><rigs/><cameras/><mappings/>"},
        {"raw EXIF strings", "<rig exifString='a/b_1.0_2x1'/><version value='11'/>",
         "<version>17</version><rigs><rig exifString='a-b_1.0_2x1'/></rigs><cameras/><mappings/>"},
        {"a reference camera without number",
         "<version> 4 </version><rig name='Airinov'><refCamera/><camera/><camera/><camera/></rig>"
         "<rig name='Airinov'><refCamera/><camera/></rig><rig name='r'><refCamera/></rig>",
         "<version>17</version><rigs><rig name='Airinov'><referenceCamera index='3'/><camera/>"
         "<camera/><camera/></rig><rig name='Airinov'><referenceCamera/><camera/></rig>"
         "<rig name='r'><referenceCamera/></rig></rigs><cameras/><mappings/>"},
    };
    const auto document = [](const char* content) {
        return QByteArray("<cameraModelDB>") + content + "</cameraModelDB>";
    };
    for (const Rewrite& rewrite : cases) {
        std::string result = test::outline(to17(document(rewrite.before)));
        // Adjacent texts may come as one or as several.
        for (std::size_t at; (at = result.find("\" \"")) != std::string::npos;) {
            result.erase(at, 3);
        }
        EXPECT_EQ(result, test::outline(document(rewrite.after))) << rewrite.fact;
    }
}

TEST_F(CameraDbConverter_, StylesheetsBringOldFormsUpToDate)
{
    const Rewrite cases[] = {
        {"other version, named value", "<version value='17'/><note value='n'/><cameras/>",
         "<version value='18'/><note value='n'/><cameras/>"},
        {"no version", "<mappings><mapping exif='e' camera='c'/><mapping exif='f'/></mappings>",
         "<version value='18'/><mappings><mapping exif='e' camera='c'/></mappings>"},
        {"order, unknown elements, names",
         "<cameras><camera name='n' other='o' aliasName='x'><band name='b'/><focalLengthmm>1"
         "</focalLengthmm><poly0>2</poly0><unknown/><imageWidth>3</imageWidth></camera>"
         "<camera serialNumber='1'/></cameras>",
         "<version value='18'/><cameras><camera name='n'><imageWidth>3</imageWidth>"
         "<focalLengthmm>1</focalLengthmm><exifID>x</exifID><band name='b'/></camera></cameras>"},
        {"own identifier first",
         "<cameras><camera name='n' aliasName='x'><exifID>y</exifID></camera></cameras>",
         "<version value='18'/><cameras><camera name='n'><exifID>y</exifID></camera></cameras>"},
        {"folders of a rig without detection",
         "<rigs><rig name='r'><processing mode='optRot'><adjustRefCamera> false </adjustRefCamera>"
         "</processing><referenceCamera defDir='d'/><camera defDir='e' detectionString='f'/>"
         "<camera defDir='g' detectionString=''/></rig></rigs>",
         "<version value='18'/><rigs><rig name='r'><processing mode='optRotRel' "
         "adjustRefCamera='false'/><cameraDetection>detectionString</cameraDetection>"
         "<referenceCamera detectionString='d'/><camera detectionString='f'/>"
         "<camera detectionString='g'/></rig></rigs>"},
        {"folders that are of no use",
         "<rigs><rig name='r'><processing mode='optAllRel' adjustRefCamera='true'/>"
         "<cameraDetection value='cameraOrder'/><referenceCamera index='2' "
         "defDir='d'/></rig></rigs>",
         "<version value='18'/><rigs><rig name='r'><processing mode='optAllRel' "
         "adjustRefCamera='true'/><cameraDetection>cameraOrder</cameraDetection>"
         "<referenceCamera index='2'/></rig></rigs>"},
    };
    for (const Rewrite& rewrite : cases) {
        const QByteArray root = "cameraModelDB>";
        const QByteArray result = to18("<" + root + rewrite.before + "</" + root);
        EXPECT_EQ(test::outline(result), test::outline("<" + root + rewrite.after + "</" + root))
            << rewrite.fact;
        EXPECT_TRUE(validates(result, "camDB_2_1.xsd")) << rewrite.fact;
        EXPECT_TRUE(validates(to19(result), "camDB_2_2.xsd")) << rewrite.fact;
    }
}

TEST_F(CameraDbConverter_, NothingIsDoneToCurrentAndNewerDatabases)
{
    for (const char* version :
         {"<version value='19'/>", "<version value='20'>5</version>", "<version>19</version>",
          "<version>5000000000</version>"}) {
        const QString input =
            file("in.xml", QByteArray("<cameraModelDB>") + version + "</cameraModelDB>");
        CameraDbConverter converter(input);
        EXPECT_FALSE(converter.needsConvertion()) << version;
        QString error;
        EXPECT_FALSE(converter.convert(m_folder.filePath("out.xml"), error)) << version;
        EXPECT_EQ(error, "is of the current version or newer");
        EXPECT_FALSE(converter.convert(m_folder.filePath("out.xml"))) << version;
        EXPECT_FALSE(QFile::exists(m_folder.filePath("out.xml"))) << version;
    }
}

TEST_F(CameraDbConverter_, RefusesWhatIsNoCameraDatabase)
{
    const auto errorOf = [](const QString& path) -> std::string {
        try {
            const CameraDbConverter converter(path);
            return {};
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    const char* unreadable = "CameraDbConverter - Could not read XML from input file";
    EXPECT_EQ(errorOf(m_folder.filePath("missing.xml")), unreadable);
    EXPECT_EQ(
        errorOf(file("a.xml", "<other/>")), "CameraDbConverter - Invalid first line in XML file");
    for (const auto& [name, document] : test::hostileDocuments()) {
        EXPECT_EQ(errorOf(file("a.xml", document)), unreadable) << name;
        EXPECT_THROW(static_cast<void>(to17(document)), std::runtime_error) << name;
    }
}

TEST_F(CameraDbConverter_, AFailedStepTouchesNoFileAndMayBeRepeated)
{
    const QString input =
        file("in.xml", "<cameraModelDB><version>16</version><lens/></cameraModelDB>");
    const QString output = file("out.xml", "as before");
    CameraDbConverter converter(input);
    {
        const log::Capture log;
        EXPECT_FALSE(converter.convert(output));
        const log::Record record = log.records().back();
        EXPECT_EQ(record.level, log::Level::Important);
        EXPECT_EQ(record.source, "camera_db_converter");
        EXPECT_THAT(
            record.text.toStdString(),
            StartsWith(
                "Failure converting kpx file [" + input.toStdString() + "] to [" +
                output.toStdString() + "]. Error converting user camera database file "));
        EXPECT_THAT(
            record.text.toStdString(),
            EndsWith("Unexpected tag during cameraDB XML conversion: lens"));
    }
    EXPECT_EQ(test::readFile(output), "as before");

    test::writeFile(input, test::readFile(samplePath("16")));
    system::setApplicationDirectory(m_folder.path());
    const log::Capture log;
    EXPECT_FALSE(converter.convert(output));
    EXPECT_THAT(
        log.records().back().text.toStdString(), EndsWith("]. Cannot transform XML using XSLT"));
    EXPECT_EQ(test::readFile(output), "as before");

    system::setApplicationDirectory(sourcePath());
    EXPECT_FALSE(converter.convert(m_folder.filePath("no folder/out.xml")));
    EXPECT_TRUE(converter.convert(input)) << "the input may be the output";
    EXPECT_FALSE(CameraDbConverter(input).needsConvertion());
}

TEST_F(CameraDbConverter_, FirstStepValidatesWhenItHasASchema)
{
    DbConversion16_17 step;
    const QString schema = m_folder.filePath("missing.xsd");
    step.setXsdFile(schema);
    try {
        static_cast<void>(run(step, "<cameraModelDB/>"));
        FAIL() << "not validated";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "XSD validation failed" + schema.toStdString());
    }
}

} // namespace
} // namespace lumo
