// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/log.h"
#include "random_database.h"
#include "test_cameras.h"
#include "test_seed.h"

#include <QDomDocument>

#include <algorithm>
#include <limits>

namespace lumo::cameradb {
namespace {

QDomDocument parsed(const QString& text)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(xml::domFromString(text, document, error)) << qPrintable(error);
    return document;
}

QString written(const CameraDBData& data, const HeaderPairs& header = {})
{
    QString text;
    QString error;
    EXPECT_TRUE(documentText(header, data, text, error)) << qPrintable(error);
    return text;
}

CameraDBData read(const QString& text, bool userDatabase = false)
{
    CameraDBData data;
    bool modified = false;
    EXPECT_TRUE(getXML(parsed(text), userDatabase, false, false, data, modified));
    EXPECT_EQ(modified, !data.empty());
    return data;
}

/// The rig of a document of this version; the element's content may be shortened
/// to what is under test.
RigModel readRigOf(int version, const QString& rig)
{
    const QString text =
        QStringLiteral("<cameraModelDB><version>%1</version><rigs>%2</rigs><cameras/>"
                       "</cameraModelDB>")
            .arg(version)
            .arg(rig);
    const CameraDBData data = read(text);
    EXPECT_EQ(data.rigs.size(), 1u);
    return data.rigs.empty() ? RigModel() : data.rigs.begin()->second;
}

CameraDBData dataOf(std::initializer_list<CameraModelFromDB> cameras)
{
    CameraDBData data;
    for (const CameraModelFromDB& camera : cameras) {
        data.cameras.emplace(camera.params.name, camera);
    }
    return data;
}

/// Bands compare exactly, so they have to be as reading gives them.
void roundBands(bands_t& bands)
{
    for (band_t& band : bands) {
        for (double* number : {&band.wavelength, &band.width, &band.weight}) {
            *number = QString::number(*number, 'g', 10).toDouble();
        }
    }
}

/// What of the data the form in XML can hold.
void keepStorable(CameraDBData& data)
{
    for (auto& [name, camera] : data.cameras) {
        CameraParams& params = camera.params;
        params.source = CameraSource::InternalDatabase;
        params.shutterModel = params.shutterModel % 2 == 1 ? 2 : 0;
        params.velocityNumber = 0.0;
        params.lineReadoutTime =
            std::abs(params.lineReadoutTime) < 0.001 ? 0.0 : params.lineReadoutTime;
        const auto first = camera.bandConfigs.begin();
        const auto standard = first + static_cast<std::ptrdiff_t>(camera.defaultBandConfig);
        std::rotate(first, standard, standard + 1);
        camera.defaultBandConfig = 0;
        std::for_each(camera.bandConfigs.begin(), camera.bandConfigs.end(), roundBands);
    }
    for (auto& [name, rig] : data.rigs) {
        for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
            rig.attr(i).filter().enabled = true;
            roundBands(rig.bands(i));
            if (rig.cameraDetection == RigCameraDetection::ByCameraOrder) {
                rig.attr(i)[RigKey::DetectionString].clear();
            }
        }
    }
}

TEST(CameraDbXml, WhatIsWrittenReadsBackEqualAndIsWrittenAlike)
{
    RandomData random(testSeed());
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        CameraDBData data = random.next();
        keepStorable(data);
        const QString text = written(data);
        const CameraDBData back = read(text);
        expectEqual(data, back);
        ASSERT_EQ(written(back).toStdString(), text.toStdString());
    }
}

TEST(CameraDbXml, TheShippedDatabaseComesBack)
{
    CameraDBData data;
    QString error;
    ASSERT_TRUE(loadTextDB(shippedTextDBPath(), data, error)) << qPrintable(error);
    const log::Capture log;
    const QString text = written(data);
    const CameraDBData back = read(text);
    expectEqual(data, back);
    EXPECT_EQ(written(back).toStdString(), text.toStdString());
    EXPECT_TRUE(log.records().empty());
}

TEST(CameraDbXml, TheDocumentHasThisForm)
{
    CameraModelFromDB camera = testModel(QStringLiteral("A"), QStringLiteral("S1"));
    camera.params.lensType = LensType::Spherical;
    camera.exifId = QStringLiteral("A_5.0");
    camera.bandConfigs = {{{"x", 1, 2, 3}}, {{"y", 0.5, 0, 1}}};
    camera.defaultBandConfig = 1;
    CameraDBData data = dataOf({camera, CameraModelFromDB()}); // one is not valid
    RigModel rig(QStringLiteral("R"), RigCameraDetection::ByDetectionString);
    rig.refCamera =
        RigModelCameraAttr(QStringLiteral("one"), {{"x", 1, 2, 3}}, QStringLiteral("M"));
    rig.refCamera[RigKey::DetectionString] = QStringLiteral("_1");
    rig.secondaries = {{RigModelCameraAttr(QStringLiteral("two"), {}, QStringLiteral("M")), {}}};
    rig.secondaries[0].attributes[RigKey::SerialNumber] = QStringLiteral("S2");
    rig.secondaries[0].relatives.rotX = 1.0 / 3.0;
    data.rigs.emplace(rig.name, rig);
    data.mappings = {{QStringLiteral("A&B"), QStringLiteral("A")}};
    const QString expected = QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<cameraModelDB>
	<version>19</version>
	<program value="lumo &quot;1&quot;"/>
	<rigs>
		<rig name="R" exifString="M">
			<processing mode="optRotRel" adjustRefCamera="true"/>
			<cameraDetection>detectionString</cameraDetection>
			<referenceCamera index="0" name="one" detectionString="_1">
				<band name="x" wavelength="1" width="2" weight="3"/>
			</referenceCamera>
			<camera rotX="0.3333333333" rotY="0" rotZ="0" translX="0" translY="0" translZ="0" tolRotX="5" tolRotY="5" tolRotZ="5" tolTranslX="5" tolTranslY="5" tolTranslZ="5" serialNumber="S2" name="two" detectionString=""/>
		</rig>
	</rigs>
	<cameras>
		<camera name="A" serialNumber="S1">
			<imageWidth>4000</imageWidth>
			<imageHeight>3000</imageHeight>
			<pixelSize>0.0015</pixelSize>
			<principalPointXmm>3</principalPointXmm>
			<principalPointYmm>2.25</principalPointYmm>
			<lensType>spherical</lensType>
			<cameraModelSource>internal</cameraModelSource>
			<exifID>A_5.0</exifID>
			<bandConfig>
				<band name="y" wavelength="0.5" width="0" weight="1"/>
			</bandConfig>
			<bandConfig>
				<band name="x" wavelength="1" width="2" weight="3"/>
			</bandConfig>
		</camera>
	</cameras>
	<mappings>
		<mapping exif="A&amp;B" camera="A"/>
	</mappings>
</cameraModelDB>
)");
    EXPECT_EQ(written(data, {{"program", "lumo \"1\""}}).toStdString(), expected.toStdString());
}

TEST(CameraDbXml, TheVersionIsTheAttributeOrElseTheText)
{
    struct Case
    {
        const char* xml;
        std::size_t version;
    };
    const Case cases[] = {
        {"<cameraModelDB><version>19</version></cameraModelDB>", 19},
        {"<cameraModelDB><version value='18'>19</version></cameraModelDB>", 18},
        {"<cameraModelDB><version> 16\n</version></cameraModelDB>", 16},
        {"<cameraModelDB><version/></cameraModelDB>", 0},
        {"<cameraModelDB><version>-1</version></cameraModelDB>", 0},
        {"<cameraModelDB/>", 0},
        {"<other><version>19</version></other>", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(documentVersion(parsed(QString::fromLatin1(c.xml))), c.version) << c.xml;
    }
}

TEST(CameraDbXml, VersionsAreRefusedWithTheReasonInTheLog)
{
    struct Case
    {
        std::size_t version;
        bool userDatabase;
        bool allowHigher;
        bool supported;
        const char* text; ///< null: nothing is logged
    };
    const Case cases[] = {
        {0, true, true, false, "Camera database version is unknown"},
        {0, false, true, false, "Camera database version is unknown"},
        {std::numeric_limits<std::size_t>::max(), true, true, false,
         "Camera database version is unknown"},
        {20, true, true, true, "User camera database version 20 is higher than the current one 19"},
        {20, true, false, false,
         "User camera database version 20 is higher than the current one 19"},
        {19, true, false, true, nullptr},
        {1, true, false, true, nullptr},
        {19, false, false, true, nullptr},
        {18, false, true, false, "Internal camera database version 18 is not the current one 19."},
        {20, false, true, false, "Internal camera database version 20 is not the current one 19."},
    };
    for (const Case& c : cases) {
        const log::Capture log;
        EXPECT_EQ(versionSupported(c.version, c.userDatabase, c.allowHigher), c.supported);
        ASSERT_EQ(log.records().size(), c.text == nullptr ? 0u : 1u);
        if (c.text != nullptr) {
            EXPECT_EQ(log.records()[0].text, QLatin1String(c.text));
            EXPECT_EQ(log.records()[0].source, QStringLiteral("lumo_camera_db_xml"));
        }
    }
}

TEST(CameraDbXml, ADocumentWithoutDatabaseOrCamerasIsRefused)
{
    struct Case
    {
        const char* xml;
        const char* text;
    };
    const Case cases[] = {
        {"<other><cameras/></other>", "cameraModelDB tag was not found in the XML"},
        {"<cameraModelDB><version>19</version><rigs/></cameraModelDB>",
         "camera database does not contain cameras."},
    };
    for (const Case& c : cases) {
        const log::Capture log;
        CameraDBData data = dataOf({testModel(QStringLiteral("A"))});
        bool modified = false;
        EXPECT_FALSE(getXML(parsed(QString::fromLatin1(c.xml)), true, true, true, data, modified));
        EXPECT_FALSE(modified);
        EXPECT_EQ(data.cameras.size(), 1u) << "merging leaves the tables";
        EXPECT_TRUE(log.contains(log::Level::Important, QLatin1String(c.text)));
        EXPECT_FALSE(getXML(parsed(QString::fromLatin1(c.xml)), false, true, true, data, modified));
        EXPECT_TRUE(modified);
        EXPECT_TRUE(data.empty());
    }
    CameraDBData data;
    bool modified = true;
    EXPECT_TRUE(getXML(
        parsed(QStringLiteral("<cameraModelDB><rigs/><cameras/></cameraModelDB>")), true, false,
        false, data, modified));
    EXPECT_FALSE(modified);
}

TEST(CameraDbXml, RecordsThatAreNotTakenAreToldAndCommentsAreLeftOut)
{
    const auto camera = [](const char* name, int width = 4) {
        return QStringLiteral(
                   "<camera name='%1'><imageWidth>%2</imageWidth><imageHeight>3</imageHeight>"
                   "<pixelSize>0.1</pixelSize><lensType>spherical</lensType><exifID>%1</exifID>"
                   "</camera>\n")
            .arg(QLatin1String(name))
            .arg(width);
    };
    const QString rig = QStringLiteral("<rig name='%1'><referenceCamera index='%2'/>%3</rig>\n");
    const QString text =
        QStringLiteral("<cameraModelDB><rigs>\n") + rig.arg("R", "0", "<camera/>") +
        rig.arg("R", "0", "<camera/>") + rig.arg("", "0", "<camera/>") + rig.arg("S", "0", "") +
        rig.arg("S", "2", "<camera/>") + QStringLiteral("</rigs><cameras>\n") + camera("A") +
        QStringLiteral("<!-- c --><camera name='B'/>\n") +
        camera("C")
            .replace(QStringLiteral("camera "), QStringLiteral("other "))
            .replace(QStringLiteral("/camera"), QStringLiteral("/other")) +
        camera("A", 5) + camera("a/b") +
        camera("D").replace(
            QStringLiteral("<exifID"),
            QStringLiteral("<bandConfig><band name='x' wavelength='-1'/></bandConfig><exifID")) +
        QStringLiteral("</cameras><mappings><mapping exif='a' camera='A'/><!-- c -->"
                       "<mapping exif='a' camera='C'/></mappings></cameraModelDB>");
    const log::Capture log;
    const CameraDBData data = read(text);
    EXPECT_EQ(
        data.skipped.join('\n').toStdString(),
        "line 3: rig \"R\": takes the place of an earlier one of this name\n"
        "line 4: rig \"\": The rig has no name\n"
        "line 5: rig \"S\": The rig has one camera only\n"
        "line 6: rig \"S\": The index of the reference camera is that of none\n"
        "line 9: camera \"B\": The image size is 0\n"
        "line 11: camera \"A\": takes the place of an earlier one of this name and serial number\n"
        "line 12: camera \"a/b\": The camera name is not allowed\n"
        "line 13: camera \"D\": Band 'x' has an invalid wavelength, width or weight\n"
        "line 14: mapping \"a\": takes the place of an earlier one of this identifier");
    EXPECT_EQ(data.rigs.size(), 1u);
    ASSERT_EQ(data.cameras.size(), 2u); // an element behind counts, whatever its name
    const CameraModelFromDB& last = data.cameras.begin()->second;
    EXPECT_EQ(last.params.imageWidth, 5u);
    EXPECT_EQ(last.bandConfigs, std::vector{band::makeRGBBands()});
    EXPECT_EQ(last.exifId, QString()) << "it equals the name";
    EXPECT_EQ(data.cameras.count(QStringLiteral("C")), 1u);
    EXPECT_EQ(
        data.mappings, (std::map<QString, QString>{{QStringLiteral("a"), QStringLiteral("C")}}));
    QStringList logged;
    for (const auto& record : log.records()) {
        logged.append(record.text);
    }
    EXPECT_EQ(logged, data.skipped);
}

TEST(CameraDbXml, TheSourceFollowsFromTheDatabase)
{
    const CameraSource sources[] = {
        CameraSource::InternalDatabase, CameraSource::EditedDatabase, CameraSource::UserDatabase,
        CameraSource::Exif, CameraSource::Custom};
    for (const CameraSource source : sources) {
        CameraModelFromDB camera = testModel(QStringLiteral("A"));
        camera.params.source = source;
        const QString text = written(dataOf({camera}));
        const bool kept = source == CameraSource::EditedDatabase || source == CameraSource::Exif;
        EXPECT_EQ(
            read(text, true).cameras.begin()->second.params.source,
            kept ? source : CameraSource::UserDatabase);
        EXPECT_EQ(
            read(text, false).cameras.begin()->second.params.source,
            CameraSource::InternalDatabase);
    }
}

TEST(CameraDbXml, MergingAddsNewNamesAndReplacesOnlyIfTold)
{
    CameraModelFromDB changed = testModel(QStringLiteral("A"));
    changed.params.imageWidth = 4001;
    CameraDBData added = dataOf(
        {changed, testModel(QStringLiteral("A"), QStringLiteral("S2")),
         testModel(QStringLiteral("B"), QStringLiteral("S1")),
         testModel(QStringLiteral("B"), QStringLiteral("S2"))});
    added.mappings = {{QStringLiteral("e"), QStringLiteral("B")}};
    RigModel rig(QStringLiteral("R"));
    rig.refCamera[RigKey::ExifString] = QStringLiteral("x");
    rig.secondaries = {{rig.refCamera, {}}};
    added.rigs = {{QStringLiteral("R"), rig}, {QStringLiteral("S"), rig}};
    added.rigs.at(QStringLiteral("S")).name = QStringLiteral("S");
    const QDomDocument document = parsed(written(added));
    CameraDBData before = dataOf({testModel(QStringLiteral("A"))});
    before.mappings = {{QStringLiteral("e"), QStringLiteral("A")}};
    rig.adjustRefCamera = 0;
    before.rigs = {{QStringLiteral("R"), rig}};

    CameraDBData data = before;
    bool modified = false;
    ASSERT_TRUE(getXML(document, true, true, false, data, modified));
    EXPECT_TRUE(modified);
    EXPECT_EQ(data.cameras.count(QStringLiteral("A")), 1u);
    EXPECT_EQ(data.cameras.count(QStringLiteral("B")), 2u);
    EXPECT_EQ(data.cameras.begin()->second.params.imageWidth, 4000u);
    EXPECT_EQ(data.mappings, before.mappings);
    EXPECT_EQ(data.rigs.size(), 2u);
    EXPECT_EQ(data.rigs.at(QStringLiteral("R")), rig);
    ASSERT_TRUE(getXML(document, true, true, false, data, modified));
    EXPECT_FALSE(modified) << "all names are there";

    ASSERT_TRUE(getXML(document, true, true, true, data, modified));
    EXPECT_TRUE(modified);
    EXPECT_EQ(data.cameras.size(), 4u);
    EXPECT_EQ(data.mappings, added.mappings);
    EXPECT_EQ(data.rigs, added.rigs);
    EXPECT_TRUE(std::any_of(data.cameras.begin(), data.cameras.end(), [](const auto& entry) {
        return entry.second.params.imageWidth == 4001u;
    }));
}

TEST(CameraDbXml, RigsOfOldVersionsAreReadByTheirRules)
{
    const QString rig = QStringLiteral(
        "<rig name='Airinov' exifString='M/1_2.0' serialNumber='S'>"
        "<processing mode='%1' adjustRefCamera='false'><adjustRefCamera>%2</adjustRefCamera>"
        "</processing><referenceCamera defDir='d0'/><camera serialNumber='S1' defDir='d1'/>"
        "<camera exifString='N' detectionString='x' defDir='d2'/><camera tolRotX='1'/></rig>");
    const auto readOld = [&](int version, const char* mode, const char* adjust) {
        return readRigOf(version, rig.arg(QLatin1String(mode), QLatin1String(adjust)));
    };
    RigModel read = readOld(4, "optRotRelStatic", "true");
    EXPECT_EQ(read.refCameraIndex, 3u);
    EXPECT_EQ(read.processingMode, RigSecondaryProcType::OptRotRel);
    EXPECT_EQ(read.adjustRefCamera, 1u);
    EXPECT_EQ(read.cameraDetection, RigCameraDetection::ByDetectionString);
    EXPECT_EQ(read.refCamera[RigKey::SerialNumber], QStringLiteral("S"));
    EXPECT_EQ(read.refCamera[RigKey::ExifString], QStringLiteral("M/1_2.0"));
    EXPECT_EQ(read.refCamera[RigKey::DetectionString], QStringLiteral("d0"));
    EXPECT_EQ(read.secondaries[0].attributes[RigKey::SerialNumber], QStringLiteral("S1"));
    EXPECT_EQ(read.secondaries[1].attributes[RigKey::ExifString], QStringLiteral("N"));
    EXPECT_EQ(read.secondaries[1].attributes[RigKey::DetectionString], QStringLiteral("x"));
    EXPECT_EQ(read.secondaries[2].relatives.tolRotX, 1.0);
    EXPECT_EQ(read.secondaries[2].relatives.tolTransl.z(), rig_relatives_t::kDefaultTolerance);

    EXPECT_EQ(readOld(5, "optRot", "true").refCameraIndex, 0u);
    EXPECT_EQ(
        readOld(11, "calibrate", "true").refCamera[RigKey::ExifString], QStringLiteral("M-1_2.0"));
    EXPECT_EQ(readOld(12, "calibrate", "false").adjustRefCamera, 0u);
    EXPECT_EQ(readOld(12, "optRotRelStatic", "true").adjustRefCamera, 1u);
    EXPECT_EQ(readOld(13, "calibrate", "true").adjustRefCamera, 0u);
    EXPECT_EQ(readOld(13, "calibrate", "true").processingMode, RigSecondaryProcType::Calibrate);
    EXPECT_EQ(
        readOld(12, "calibrate", "true").refCamera[RigKey::ExifString], QStringLiteral("M/1_2.0"));
    const log::Capture log;
    EXPECT_EQ(
        readOld(13, "optRotRelStatic", "true").processingMode, RigSecondaryProcType::OptRotRel);
    EXPECT_EQ(log.records().size(), 1u) << "an old text in a new version";
}

TEST(CameraDbXml, ARigWithoutValuesHasTheDefaults)
{
    const RigModel rig = readRigOf(
        19, QStringLiteral("<rig name='R'><cameraDetection>cameraOrder</cameraDetection>"
                           "<referenceCamera defDir='d'/><camera detectionString='x'/></rig>"));
    EXPECT_EQ(rig.cameraDetection, RigCameraDetection::ByCameraOrder);
    EXPECT_EQ(rig.processingMode, RigSecondaryProcType::OptRotRel);
    EXPECT_EQ(rig.adjustRefCamera, 1u);
    EXPECT_EQ(rig.refCamera[RigKey::ExifString], rig_camera_filter_t::unknownExifString());
    EXPECT_EQ(rig.refCamera[RigKey::DetectionString], QString());
    EXPECT_EQ(rig.secondaries[0].attributes[RigKey::DetectionString], QString());
    EXPECT_EQ(rig.source, CameraSource::Custom);
    EXPECT_EQ(
        written(read(written({{}, {{rig.name, rig}}, {}}))), written({{}, {{rig.name, rig}}, {}}));
}

TEST(CameraDbXml, WhatWouldNotReadBackIsNotWrittenAndTheRecordNamed)
{
    const QString bad = QStringLiteral("a\u0001");
    CameraModelFromDB camera = testModel(QStringLiteral("A"), bad);
    CameraModelFromDB band = testModel(QStringLiteral("A"));
    band.bandConfigs[0][1].name = bad;
    RigModel rig(QStringLiteral("R"));
    rig.secondaries.resize(1);
    RigModel pose = rig;
    RigModel index = rig;
    index.refCameraIndex = std::size_t{1} << 32U;
    CameraModelFromDB size = testModel(QStringLiteral("A"));
    size.params.imageHeight = std::size_t{1} << 32U;
    rig.secondaries[0].attributes[RigKey::ExifString] = bad;
    pose.secondaries[0].relatives.transl.y() = std::numeric_limits<double>::quiet_NaN();
    struct Case
    {
        HeaderPairs header;
        CameraDBData data;
        const char* error;
    };
    const Case cases[] = {
        {{},
         dataOf({camera}),
         "camera \"A\": serial number has character U+0001, which XML forbids"},
        {{}, dataOf({band}), "camera \"A\": band name has character U+0001, which XML forbids"},
        {{},
         {{}, {{"R", rig}}, {}},
         "rig \"R\": EXIF string has character U+0001, which XML forbids"},
        {{}, {{}, {{"R", pose}}, {}}, "rig \"R\": pose has a number that is not finite"},
        {{}, dataOf({size}), "camera \"A\": image size is more than 4294967295"},
        {{},
         {{}, {{"R", index}}, {}},
         "rig \"R\": reference camera's index is more than 4294967295"},
        {{},
         {{}, {}, {{"e", bad}}},
         "mapping \"e\": camera has character U+0001, which XML forbids"},
        {{{"h", bad}}, {}, "header pair \"h\": value has character U+0001, which XML forbids"},
        {{{"a b", ""}}, {}, "header pair \"a b\": name is not the name of an element"},
        {{{"cameras", ""}},
         {},
         "header pair \"cameras\": name is one of the database's own elements"},
        {{{"cameraModelDB", ""}},
         {},
         "header pair \"cameraModelDB\": name is one of the database's own elements"},
    };
    for (const Case& c : cases) {
        QString text = QStringLiteral("untouched");
        QString error;
        EXPECT_FALSE(documentText(c.header, c.data, text, error));
        EXPECT_EQ(error.toStdString(), c.error);
        EXPECT_EQ(text, QStringLiteral("untouched"));
    }
}

TEST(CameraDbXml, ADocumentThatIsCutOffIsRefused)
{
    CameraDBData data = dataOf({testModel(QStringLiteral("Größe"), QStringLiteral("S"))});
    data.mappings = {{QStringLiteral("e"), QStringLiteral("Größe")}};
    const QByteArray bytes = written(data).trimmed().toUtf8();
    for (int length = 0; length < bytes.size(); ++length) {
        QDomDocument document;
        QString error;
        ASSERT_FALSE(xml::domFromBytes(bytes.left(length), document, error)) << length;
        ASSERT_FALSE(error.isEmpty());
        ASSERT_TRUE(document.isNull());
    }
}

} // namespace
} // namespace lumo::cameradb
