// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/kpx_conversion_20_21.h"
#include "lumo/core/xml/xsd_type_element_index.h"
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

using testing::HasSubstr;
using testing::StartsWith;
using Mode = KpxConversion20_21::Mode;

QByteArray run(KpxConversion20_21& step, const QByteArray& document)
{
    QBuffer input;
    input.setData(document);
    EXPECT_TRUE(input.open(QIODevice::ReadOnly));
    return step.convert(&input);
}

/// The new document of a project with this content.
QByteArray converted(const QByteArray& content)
{
    KpxConversion20_21 step(Mode::Project);
    return run(step, "<lumoair>" + content + "</lumoair>");
}

/// A part of the new document, by the names from the root to it.
std::string part(const QByteArray& result, const QString& path)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(xml::domFromBytes(result, document, error)) << qPrintable(error);
    QDomElement element = document.documentElement();
    for (const QString& name : path.split('/')) {
        element = element.firstChildElement(name);
    }
    QString text;
    if (!element.isNull()) {
        test::appendElement(element, QString(), text);
    }
    return text.toStdString();
}

std::string errorOf(Mode mode, const QByteArray& document)
{
    KpxConversion20_21 step(mode);
    try {
        static_cast<void>(run(step, document));
        return {};
    } catch (const std::runtime_error& error) {
        EXPECT_TRUE(step.changes().empty());
        return error.what();
    }
}

class KpxConversion : public testing::Test
{
protected:
    void SetUp() override { system::setApplicationDirectory(sourcePath()); }
    void TearDown() override { system::setApplicationDirectory(QString()); }
};

TEST_F(KpxConversion, TheSchemaListsTheOptionsOfEverySection)
{
    const XsdTypeElementIndex index(sourcePath("resources/xsd/0/lumo.xsd"));
    EXPECT_EQ(index.imageElements().size(), 6u);
    EXPECT_EQ(index.cameraElements().size(), 35u);
    EXPECT_EQ(index.initialOptionsElements().size(), 20u);
    EXPECT_EQ(index.denseOptionsElements().size(), 35u);
    EXPECT_EQ(index.orthoOptionsElements().size(), 23u);
    EXPECT_EQ(index.indexOptionsElements().size(), 10u);
}

struct Part
{
    const char* fact;
    const char* before; ///< below the root
    const char* path;   ///< of what is compared
    const char* after;
};

TEST_F(KpxConversion, RewritesWhatIsMoreThanAName)
{
    const Part cases[] = {
        {"options are in the schema's order, renamed once",
         "<indexRange value='1'/><indexRangeResolution value='2'/><indexClassResolution value='3'/>"
         "<reflectance value='4'/>",
         "options/index",
         "<index><indexReflectance value='4'/><indexRangeResolution value='3'/>"
         "<indexExportPolygonSHP value='1'/><indexExportPolygonSHPGridSize value='2'/></index>"},
        {"the first of two holds, text is kept",
         "<pdf3d value='1' a='x'>t</pdf3d><meshOutputPDF3D value='2'/>", "options/dense",
         "<dense><meshExportPDF3D value='1' a='x'>t</meshExportPDF3D></dense>"},
        {"internals", "<updateInternals value='prior'/><optimizeInternals value='None'/>",
         "options/initial", "<initial><internalParamOptimization value='AllPrior'/></initial>"},
        {"a kind of project that means another calibration", "<projectType value='planar'/>",
         "options/initial",
         "<initial><matchStrategy value='AutoAerial'/><calibrationMethod value='alternative'/>"
         "</initial>"},
        {"unless the file says otherwise, even later",
         "<projectType value='vegetation'/><processingMethod value='standard'/>", "options/initial",
         "<initial><matchStrategy value='AutoAerial'/><calibrationMethod value='standard'/>"
         "</initial>"},
        {"but not if it is dropped", "<matchStrategy value='Custom'/><projectType value='planar'/>",
         "options/initial", "<initial><matchStrategy value='Custom'/></initial>"},
        {"area", "<area name='orthoRoi'><vertex x='1' y='2'/></area>", "options/ortho",
         "<ortho><processingArea name='orthoRoi'><vertex x='1' y='2'/></processingArea></ortho>"},
        {"heights of the geoid",
         "<outputCS><verticalDef value='1' geoidHeight='2' x='3'/><wkt>w</wkt></outputCS>"
         "<imageCS><verticalDef geoidHeight='2'/></imageCS><gcpCS><verticalDef/></gcpCS>",
         "inputs/coordinateSystems",
         "<coordinateSystems><image><verticalDef model='constShift' geoidHeight='2'/></image><gcp/>"
         "<output><wkt>w</wkt><verticalDef model='constShift' geoidHeight='1'/></output>"
         "</coordinateSystems>"},
        {"control points",
         "<gcp name='a' toleranceXY='1' toleranceZ='2'><mark image='i' x='1' y='2'/>"
         "<mark image='j'/></gcp>",
         "gcps",
         "<gcps><gcp name='a' accuracyXY='1' accuracyZ='2'><mark image='i' x='1' y='2'/>"
         "<mark image='j'/></gcp></gcps>"},
        {"of two attributes for one the first holds",
         "<gcp name='a' toleranceXY='0.1' accuracyXY='0.2'/>"
         "<gcp name='b' accuracyZ='0.3' toleranceZ='0.4'/>",
         "gcps", "<gcps><gcp name='a' accuracyXY='0.1'/><gcp name='b' accuracyZ='0.3'/></gcps>"},
        {"accuracies may have been elements",
         "<gcp name='a'><toleranceXY value='0.1'/><toleranceZ> 0.2 </toleranceZ><mark/></gcp>"
         "<gcp name='b' toleranceXY='0.3'><toleranceXY value='0.4'/></gcp>",
         "gcps",
         "<gcps><gcp name='a' accuracyXY='0.1' accuracyZ='0.2'><mark/></gcp>"
         "<gcp name='b' accuracyXY='0.3'/></gcps>"},
        {"in images too",
         "<image path='p'><camera name='c' cameraId='d'/></image>"
         "<image path='q'><camera cameraId='e' name='f'/></image>",
         "inputs/images",
         "<images><image path='p'><camera name='c'/></image>"
         "<image path='q'><camera name='e'/></image></images>"},
        {"in rigs too",
         "<rig name='r'><camera cameraId='a' name='b' aliasName='c' aliasId='d'/></rig>",
         "inputs/cameras/rig", "<rig name='r'><camera name='a' aliasName='c'/></rig>"},
        {"images",
         "<image path='p'><exifId value='e'/><group value='1'/><new/><camera cameraId='c'/>"
         "<group value='2'/><camera cameraId='d'/></image>",
         "inputs/images",
         "<images><image path='p'><camera name='c'/><group value='1'/><group value='2'/>"
         "<exifID value='e'/></image></images>"},
        {"rigs",
         "<rig name='r'><refCamera name='a'/><camera id='1' cameraId='b' aliasId='c'/>"
         "<cameraDetection type='cameraOrder'/><processing mode='optRot'>"
         "<adjustRefCamera>false</adjustRefCamera></processing></rig>",
         "inputs/cameras",
         "<cameras><rig name='r'><processing mode='optRotRel' adjustRefCamera='false'/>"
         "<cameraDetection value='cameraOrder'/><referenceCamera name='a'/>"
         "<camera name='b' aliasName='c'/></rig></cameras>"},
        {"origin", "<id value='gaiprain'/><projectVersion value='0.3'/>", "software",
         "<software><product>gaiprain</product><projectVersion>2.1.43</projectVersion>"
         "<kpxVersion>0</kpxVersion><convertedFrom>2.0</convertedFrom></software>"},
    };
    for (const Part& one : cases) {
        EXPECT_EQ(part(converted(one.before), one.path), test::outline(one.after)) << one.fact;
    }
}

TEST_F(KpxConversion, TranslatesValues)
{
    const char* modes[][2] = {{"calibrate", "calibrate"}, {"independCalRel", "independCalRel"},
                              {"optRels", "optRels"},     {"optAllRel", "optAllRel"},
                              {"optRotRel", "optRotRel"}, {"optRotRelStatic", "optRotRel"},
                              {"unheard of", "optRotRel"}};
    for (const auto& [before, after] : modes) {
        const QByteArray rig =
            QByteArray("<rig name='r'><processing mode='") + before + "'/></rig>";
        EXPECT_THAT(
            part(converted(rig), "inputs/cameras/rig/processing"),
            HasSubstr(std::string("[") + after + "]"));
    }
    const char* internals[][2] = {{"none", "None"}, {"leading", "Leading"}, {"all", "All"},
                                  {"0", "None"},    {"1", "All"},           {"true", "All"},
                                  {"false", "None"}};
    for (const auto& [before, after] : internals) {
        const QByteArray option = QByteArray("<updateInternals value='") + before + "'/>";
        EXPECT_EQ(
            part(converted(option), "options/initial/internalParamOptimization"),
            std::string("internalParamOptimization value=[") + after + "]\n");
    }
    const char* kinds[][2] = {
        {"aerial", "AutoAerial"},
        {"oblique", "AutoOblique"},
        {"alternative", "AutoAerial"},
        {"Fixed", "Fixed"},
        {"AutoOblique", "AutoOblique"}};
    for (const auto& [before, after] : kinds) {
        const QByteArray option = QByteArray("<projectType value='") + before + "'/>";
        EXPECT_EQ(
            part(converted(option), "options/initial/matchStrategy"),
            std::string("matchStrategy value=[") + after + "]\n");
    }
}

TEST_F(KpxConversion, BringsTimeStampsToOneForm)
{
    const char* fallback = "1970:01:01 00:00:00";
    const char* stamps[][2] = {
        {"2016:05:03 10:11:12", "2016:05:03 10:11:12"},
        {"2016:05:03 10:11:12:5", "2016:05:03 10:11:12"},
        {"Tuesday, May 03, 2016 2:05:09 PM", "2016:05:03 14:05:09"},
        {"Sunday, March 27, 2016 12:30:00 AM", "2016:03:27 00:30:00"},
        {"2016:02:30 10:11:12:5", fallback},
        {"2016:05:03 24:11:12:5", fallback},
        {"2016:05:03 10:11:12:", fallback},
        {"2016-05-03T10:11:12", fallback},
        {"Dienstag, Mai 03, 2016 2:05:09 PM", fallback},
        {"", fallback}};
    for (const auto& [before, after] : stamps) {
        for (const char* form : {"<time value='%1'/>", "<time>%1</time>"}) {
            const QByteArray time = QString(form).arg(before).toUtf8();
            EXPECT_EQ(
                part(converted("<image path='p'>" + time + "</image>"), "inputs/images/image/time"),
                std::string("time \"") + after + "\"\n")
                << before;
        }
    }
}

TEST_F(KpxConversion, WhatIsDoneIsTold)
{
    KpxConversion20_21 step(Mode::Project);
    const QByteArray result = run(
        step,
        "<lumoair a='1' xmlns:x='u'>text\n"
        "<id value='i'/><projectVersion value='2.0'/><projectVersion value='1.3'/>\n"
        "<updateInternals value='all'/>\n"
        "<rig name='r'><processing mode='optRels' adjustRefCamera='false'>"
        "<adjustRefCamera>true</adjustRefCamera></processing>"
        "<cameraDetection type='cameraOrder' old='1'/><camera x:n='1' name='a' cameraId='b'/>"
        "</rig>\n"
        "<rig name='s'><processing><adjustRefCamera>true</adjustRefCamera></processing></rig>\n"
        "<image path='p'><camera cameraId='c'/><time value='2016:05:03 10:11:12' zone='z'/></image>"
        "\n<outputCS><verticalDef value='1' geoidHeight='2'/></outputCS>\n</lumoair>");
    EXPECT_THAT(result.toStdString(), HasSubstr("<lumodesk xmlns:x=\"u\">"));
    EXPECT_THAT(
        test::outline(result), HasSubstr("processing adjustRefCamera=[false] mode=[optRels]\n"));
    std::string told;
    for (const ConversionChange& change : step.changes()) {
        told += QStringLiteral("%1 %2 > %3, line %4\n")
                    .arg(static_cast<int>(change.kind))
                    .arg(change.what, change.into)
                    .arg(change.line)
                    .toStdString();
    }
    for (const char* change :
         {"3 lumoair@a > it has no place in the result, line 1\n",
          "3 lumoair > text beside elements is not kept, line 2\n",
          "0 id > software/product, line 2\n",
          "0 projectVersion > software/convertedFrom, line 2\n",
          "3 projectVersion > it is there before, line 2\n",
          "2 updateInternals@value > internalParamOptimization@value=All, line 3\n",
          "3 rig/camera@cameraId > name is set by name before, line 4\n",
          "0 rig/cameraDetection@type > rig/cameraDetection@value, line 4\n",
          "3 rig/cameraDetection@old > it has no place in the result, line 4\n",
          "3 rig/processing/adjustRefCamera > it is there before, line 4\n",
          "0 rig/processing/adjustRefCamera > rig/processing@adjustRefCamera, line 5\n",
          "0 image/camera@cameraId > image/camera@name, line 6\n",
          "3 image/time@zone > it has no place in the result, line 6\n",
          "3 verticalDef@geoidHeight > it has no place in the result, line 7\n"}) {
        EXPECT_THAT(told, HasSubstr(change));
    }
}

TEST_F(KpxConversion, WhatIsDroppedIsTold)
{
    const log::Capture log;
    KpxConversion20_21 step(Mode::Project);
    const QByteArray result = run(
        step,
        "<lumoair>\n<new value='1'/>\n<camera cameraId='c'/>\n<userObject type='polyline'>"
        "<vertex x='1' y='2' z='3'/></userObject><userObject type='marker'><vertex x='1' y='?' "
        "z='3'/></userObject>\n<image path='p'><x/></image><image path='q'><x/></image></lumoair>");
    EXPECT_EQ(part(result, "inputs/cameras"), "cameras\n");
    EXPECT_EQ(part(result, "objects"), "objects\n");
    for (const char* text :
         {"new is dropped: no such option is known (line 2, 1 times)",
          "Invalid camera-model discarded during kpx convertion",
          "Invaid user-object discarded during kpx convertion",
          "image/x is dropped: it is not known there (line 5, 2 times)"}) {
        EXPECT_TRUE(log.contains(log::Level::Warning, text)) << text;
    }
    const auto dropped = std::count_if(
        step.changes().begin(), step.changes().end(), [](const ConversionChange& change) {
            return change.kind == ConversionChange::Kind::Dropped;
        });
    EXPECT_EQ(dropped, 5);
}

TEST_F(KpxConversion, AnOptionOfSeveralSectionsGoesToTheFirst)
{
    QTemporaryDir app;
    QByteArray schema = test::readFile(sourcePath("resources/xsd/0/lumo.xsd"));
    schema.replace(
        "<xs:element name=\"dsmMethod\"",
        "<xs:element name=\"pclDensity\" type=\"textOption\"/><xs:element name=\"dsmMethod\"");
    ASSERT_TRUE(QDir(app.path()).mkpath("resources/xsd/0"));
    test::writeFile(app.filePath("resources/xsd/0/lumo.xsd"), schema);
    system::setApplicationDirectory(app.path());
    const QByteArray result = converted("<densePointDensity value='v'/>");
    EXPECT_EQ(part(result, "options/dense"), "dense\n pclDensity value=[v]\n");
    EXPECT_EQ(part(result, "options/ortho"), "ortho\n");
}

TEST_F(KpxConversion, RefusesWhatItCannotConvert)
{
    struct Refused
    {
        Mode mode;
        const char* document;
        const char* error;
    };
    const Refused cases[] = {
        {Mode::Project, "", "Start of document not found"},
        {Mode::Project, "<lumotmpl/>", "Initial tag not expected"},
        {Mode::Template, "<lumoair/>", "Initial tag not expected"},
        {Mode::Template, "<lumotmpl><information><version>2.1</version></information></lumotmpl>",
         "Expected template <= 2.0, reading template >= 2.1"},
        {Mode::Project, "<lumoair><new><x/></new></lumoair>", "Unsupported complex tag found: new"},
        {Mode::Project, "<lumoair><image><new><x/></new></image></lumoair>",
         "Unsupported complex tag found: new"},
        {Mode::Project, "<lumoair><gcp><tolerance>1</tolerance></gcp></lumoair>",
         "GCP:tolerance not supported anymore"},
        {Mode::Project, "<lumoair><projectType value='new'/></lumoair>",
         "unexpected value in projectType when converting to new tags"},
        {Mode::Template, "<lumotmpl><updateInternals/></lumotmpl>",
         "unexpected value in updateInternals when converting to new tags"},
    };
    for (const Refused& refused : cases) {
        EXPECT_EQ(errorOf(refused.mode, refused.document), refused.error) << refused.document;
    }
    for (const auto& [name, document] : test::hostileDocuments()) {
        EXPECT_NE(errorOf(Mode::Project, document), "") << name;
    }
    const QByteArray sample = test::readFile(sourcePath("samples/projects/drone_2.0.kpx"));
    for (int size = 0; size < sample.trimmed().size(); size += 1) {
        if (size % 64 == 0 || size < 200) {
            EXPECT_NE(errorOf(Mode::Project, sample.left(size)), "") << size;
        }
    }
    system::setApplicationDirectory("/nowhere");
    EXPECT_EQ(errorOf(Mode::Project, "<lumoair/>"), "Xsd file could not be opened");
}

TEST_F(KpxConversion, TheResultBeginsWithItsDeclaration)
{
    const QByteArray text =
        "<name value='&#13;&#10;&lt;&quot;&#9;'/><imageCS><wkt>a&#13;</wkt></imageCS>";
    const QByteArray result = converted(text);
    EXPECT_THAT(
        result.toStdString(), StartsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<lumodesk>"));
    EXPECT_EQ(part(result, "output/name"), "name value=[\r\n<\"\t]\n");
    EXPECT_EQ(part(result, "inputs/coordinateSystems/image/wkt"), "wkt \"a\r\"\n");
}

} // namespace
} // namespace lumo
