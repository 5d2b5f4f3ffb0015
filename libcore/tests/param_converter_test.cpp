// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/lumo_xml_validator.h"
#include "lumo/foundation/log.h"
#include "param_converter_fixture.h"

#include <QBuffer>
#include <gmock/gmock.h>

namespace lumo {
namespace {

using testing::HasSubstr;

QString validationError(const QString& file, int version, bool isTemplate)
{
    xml::XmlValidator validator;
    const QString schema =
        sourcePath("resources/xsd/%1/%2.xsd").arg(version).arg(isTemplate ? "template" : "lumo");
    QString error;
    return validator.loadXsd(schema) && validator.validateXml(file, error) ? QString()
                                                                           : "invalid: " + error;
}

std::string constructionError(const QString& path)
{
    try {
        const ParamConverter converter(path, kTarget);
        return {};
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

class AcceptedSample : public ParamConverter_, public testing::WithParamInterface<const char*>
{};

TEST_P(AcceptedSample, BecomesValidAtEachVersionAndTheSameByEveryWay)
{
    const QString input = sample(GetParam());
    const ParamConverter start(input, kTarget);
    QByteArray byHand = test::readFile(input);
    for (int version = 0; version <= kTarget; ++version) {
        SCOPED_TRACE(version);
        const QString previous = file("by hand", byHand);
        if (ParamConverter(previous, version).needsConversion()) {
            byHand = converted(previous, version);
        }
        const QString current = file("current", byHand);
        EXPECT_EQ(ParamConverter(current, version).getProjectVersion().left(3), "2.1");
        if (ParamConverter(current, version).kpxVersion() == version) {
            EXPECT_EQ(validationError(current, version, start.isTemplate()), "");
        }
    }
    if (start.needsConversion()) {
        EXPECT_EQ(test::outline(converted(input, kTarget)), test::outline(byHand));
    }
    EXPECT_FALSE(ParamConverter(file("current", byHand), kTarget).needsConversion());
}

INSTANTIATE_TEST_SUITE_P(
    Files, AcceptedSample,
    testing::Values(
        "projects/drone_2.0.kpx", "projects/terrestrial_1.2.kpx", "projects/multispectral_1.4.kpx",
        "projects/field_2.1.1.kpx", "projects/field_2.1.43.kpx", "projects/drone_format_0.kpx",
        "projects/drone_format_1.kpx", "projects/drone_format_2.kpx", "projects/drone_format_3.kpx",
        "templates/quick_2.0.tmpl", "templates/quality_1.4.tmpl", "templates/quick_format_0.tmpl",
        "templates/quick_format_1.tmpl", "templates/quick_format_2.tmpl",
        "templates/quick_format_3.tmpl"));

TEST_F(ParamConverter_, EachStepGivesTheNextSample)
{
    for (const QString& name :
         {QStringLiteral("projects/drone_%1.kpx"), QStringLiteral("templates/quick_%1.tmpl")}) {
        QString before = sample(name.arg("2.0"));
        for (int version = 0; version <= kTarget; ++version) {
            const QString after = sample(name.arg(QStringLiteral("format_%1").arg(version)));
            EXPECT_EQ(
                test::outline(converted(before, version)), test::outline(test::readFile(after)))
                << qPrintable(after);
            before = after;
        }
    }
}

TEST_F(ParamConverter_, SchemasRefuseWhatCouldNotBeRead)
{
    const std::pair<const char*, const char*> edits[] = {
        {"<kpxVersion>3", "<kpxVersion>2"},
        {"pclExportLAZ value=\"true\"", "pclExportLAZ value=\"yes\""},
        {"imageScale value=\"1\"", "imageScale value=\"NaN\""},
        {"imageScale value=\"1\"", "imageScale"},
        {"\"AllPrior\"", "\"prior\""},
        {"<mesh>", "<mesh><unknown/>"},
        {"2016-05-03T10:11:12", "2016-02-30T10:11:12"},
        {"2016-05-03T10:11:12", "2016:05:03 10:11:12"},
        {"<imageWidth>5472</imageWidth>", ""},
        {"<model>constShift</model>", ""},
        {"<vertex x=\"0\"", "<vertex"},
        {"type=\"2D\"", "type=\"4D\""},
        {" path=\"D:/Flüge/2016/DJI_0004.JPG\"", ""},
    };
    const QByteArray document = test::readFile(sample("projects/drone_format_3.kpx"));
    for (const auto& [good, bad] : edits) {
        QByteArray edited = document;
        EXPECT_NE(edited.replace(good, bad), document) << good;
        EXPECT_NE(validationError(file("edited", edited), kTarget, false), "") << bad;
    }
}

TEST_F(ParamConverter_, EveryOptionOfAnOldProjectKeepsItsValue)
{
    // "old,new" a line. An option of several old names takes as many projects.
    QList<QByteArray> rows =
        test::readFile(sourcePath("libcore/tests/kpx_option_names.csv")).trimmed().split('\n');
    EXPECT_EQ(rows.size(), 91);
    while (!rows.empty()) {
        QByteArray content;
        std::map<QByteArray, QByteArray> expected;
        QList<QByteArray> others;
        for (const QByteArray& row : rows) {
            const QByteArray before = row.split(',')[0];
            const QByteArray after = row.split(',')[1];
            if (expected.count(after) != 0) {
                others << row;
                continue;
            }
            // The two whose content is looked at.
            const QByteArray value = before == "projectType" ? "Custom" : "value of " + before;
            const bool isBare = before == "classes";
            content += isBare ? "<classes/>" : "<" + before + " value='" + value + "' b='2'/>";
            expected[after] = isBare ? "" : " b=[2] value=[" + value + "]";
        }
        const std::string result = test::outline(
            converted(file("in", kDeclaration + "<lumoair>" + content + "</lumoair>"), kTarget));
        for (const auto& [name, attributes] : expected) {
            EXPECT_THAT(result, HasSubstr(("\n   " + name + attributes + "\n").toStdString()));
        }
        rows = others;
    }
}

TEST_F(ParamConverter_, StepsKeepWhatTheyDoNotKnow)
{
    const QByteArray document =
        kDeclaration + "<!-- first --><lumodesk a='1'><inputs><images><image path='p' b='2'>"
                       "<new>t<!-- in --></new><group value='g'/></image></images></inputs>"
                       "<other><gcp/></other><?pi data?></lumodesk>";
    const QByteArray result = converted(file("in", document), kTarget);
    for (const char* kept :
         {"<!-- first -->", "<!-- in -->", "<?pi data?>", "a=\"1\"", "b=\"2\"", "<gcp/>",
          "<group name=\"g\"/>", "<kpxVersion>3</kpxVersion>"}) {
        EXPECT_THAT(result.toStdString(), HasSubstr(kept));
    }
}

struct Planned
{
    const char* document; ///< after the declaration
    const char* version;
    int format;
    int steps;              ///< to format version 3
    const char* error = ""; ///< that ends them
};

TEST_F(ParamConverter_, ReadsTheVersionPlansTheStepsAndTakesThem)
{
    const Planned cases[] = {
        {"<lumodesk/>", "2.1.43", 0, 3},
        {"<lumodesk><software/></lumodesk>", "2.1.43", 0, 3},
        {"<lumodesk><software><projectVersion>2.1.1</projectVersion></software></lumodesk>",
         "2.1.1", 0, 3},
        {"<lumodesk><x/><software><kpxVersion> 2 </kpxVersion></software></lumodesk>", "2.1.43", 2,
         1},
        {"<lumodesk><software><kpxVersion>x</kpxVersion></software></lumodesk>", "2.1.43", 0, 3},
        {"<lumodesk><software><kpxVersion/></software></lumodesk>", "2.1.43", 0, 3},
        {"<lumodesk><software><kpxVersion>1.5</kpxVersion></software></lumodesk>", "2.1.43", 0, 3},
        {"<lumodesk><software><kpxVersion>4294967298</kpxVersion></software></lumodesk>", "2.1.43",
         0, 3},
        {"<lumodesk><software><kpxVersion>+2</kpxVersion></software></lumodesk>", "2.1.43", 2, 1},
        {"<lumodesk><software/><software><kpxVersion>2</kpxVersion></software></lumodesk>",
         "2.1.43", 0, 3},
        {"<lumodesk><software><kpxVersion>-5</kpxVersion></software></lumodesk>", "2.1.43", 0, 3},
        {"<lumodesk><software><kpxVersion>3</kpxVersion></software></lumodesk>", "2.1.43", 3, 0},
        {"<lumodesk><software><projectVersion>2.0</projectVersion></software></lumodesk>", "2.0", 0,
         4, "Initial tag not expected"},
        {"<lumodesk><software><kpxVersion>4</kpxVersion></software></lumodesk>", "2.1.43", 4, 0},
        {"<lumoair/>", "2.0", 0, 4},
        {"<lumoair><projectVersion/><projectVersion value='1.3'/></lumoair>", "2.0", 0, 4},
        {"<lumoair><projectVersion value='1.3'/></lumoair>", "1.3", 0, 4},
        {"<lumoair><projectVersion value='2.1'/><id value='gaiprain'/></lumoair>", "2.0", 0, 4},
        {"<lumotmpl/>", "2.0", 0, 4},
        {"<lumotmpl><information><version>2.1.50</version><kpxVersion>1</kpxVersion></information>"
         "</lumotmpl>",
         "2.1.50", 1, 2},
        {"<lumotmpl><information><version>2.1.50</version><kpxVersion>\u00a02"
         "</kpxVersion></information></lumotmpl>",
         "2.1.50", 0, 3},
    };
    for (const Planned& planned : cases) {
        ParamConverter converter(file("in", kDeclaration + planned.document), kTarget);
        EXPECT_EQ(converter.getProjectVersion(), planned.version) << planned.document;
        EXPECT_EQ(converter.kpxVersion(), planned.format) << planned.document;
        EXPECT_EQ(converter.plannedSteps().size(), planned.steps) << planned.document;
        EXPECT_EQ(converter.needsConversion(), planned.steps > 0) << planned.document;
        EXPECT_EQ(converter.biggerVersion(), planned.format > kTarget) << planned.document;
        QByteArray result;
        QString error;
        if (planned.steps > 0 && !converter.convertInMemory(result, error)) {
            EXPECT_EQ(error, planned.error) << planned.document;
        } else if (planned.steps > 0) {
            EXPECT_FALSE(ParamConverter(file("out", result), kTarget).needsConversion())
                << planned.document;
        }
    }
    const log::Capture log;
    const ParamConverter unreadable(
        file(
            "in", kDeclaration + "<lumodesk><software>\n<kpxVersion>x\n</kpxVersion></software>"
                                 "</lumodesk>"),
        kTarget);
    EXPECT_TRUE(log.contains(
        log::Level::Warning, "line 3: element kpxVersion: \"x\" is not a version, 0 is used"));
}

TEST_F(ParamConverter_, RefusesWhatItCannotReadOrConvert)
{
    const char* beta = "Project generated with 2.1 beta version.";
    const char* unreadable = "Could not read XML from input file";
    EXPECT_EQ(
        constructionError(path("none")), "XML file does not exist: " + path("none").toStdString());
    EXPECT_EQ(constructionError(m_folder.path()), unreadable);
    EXPECT_EQ(constructionError(file("a", "<lumodesk/>")), "Invalid first line in XML file");
    EXPECT_EQ(
        constructionError(file("a", kDeclaration + "<other/>")),
        "Invalid first tag in kpx/tmpl file");
    EXPECT_EQ(
        constructionError(sample("templates/refused/no_version.tmpl")),
        "template version tag not found");
    EXPECT_EQ(constructionError(sample("projects/refused/beta_2.1.20.kpx")), beta);
    EXPECT_EQ(constructionError(file("a", project("2.1.42"))), beta);
    for (const auto& [name, document] : test::hostileDocuments()) {
        EXPECT_EQ(constructionError(file("a", document)), unreadable) << name;
    }
    const std::pair<const char*, const char*> refused[] = {
        {"projects/refused/below_1.2.0.kpx",
         "conversion not supported for very old project version (1.1.9). Please, re-create the "
         "project from scratch."},
        {"projects/refused/very_old_tag.kpx",
         "conversion not supported for very old tag: sensorHeightmm"},
        {"projects/refused/unknown_complex_tag.kpx", "Unsupported complex tag found: area"},
        {"projects/refused/gcp_tolerance.kpx", "GCP:tolerance not supported anymore"},
        {"projects/refused/classes_with_attribute.kpx",
         "classes tag should not have any attribute"},
        {"projects/refused/update_internals.kpx",
         "unexpected value in updateInternals when converting to new tags"},
        {"templates/refused/unknown_complex_tag.tmpl", "Unsupported complex tag found: image"},
    };
    for (const auto& [name, reason] : refused) {
        const log::Capture log;
        ParamConverter converter(sample(name), kTarget);
        QString error;
        EXPECT_FALSE(converter.convert(path("out"), error)) << name;
        EXPECT_EQ(error, reason) << name;
        EXPECT_TRUE(log.contains(
            log::Level::Important, QStringLiteral("Failure converting kpx file [%1]. %2")
                                       .arg(sample(name), QLatin1String(reason))))
            << name;
        EXPECT_FALSE(QFile::exists(path("out"))) << name;
    }
}

TEST_F(ParamConverter_, AFailedStepTouchesNothingAndMayBeRepeated)
{
    const QString input = file("in.kpx", project("2.1.43"));
    const QString output = file("out.kpx", "as before");
    ParamConverter converter(input, 2);
    QString error;
    system::setApplicationDirectory(m_folder.path());
    {
        const log::Capture log;
        EXPECT_FALSE(converter.convert(output, error));
        EXPECT_EQ(log.records().back().source, "kpx_converter");
        EXPECT_EQ(
            log.records().back().text, QStringLiteral("Failure converting kpx file [%1]. Cannot "
                                                      "transform XML using XSLT")
                                           .arg(input));
        EXPECT_THAT(
            error.toStdString(), HasSubstr(m_folder.path().toStdString() + "/resources/xsl/0/"));
    }
    EXPECT_EQ(test::readFile(output), "as before");

    system::setApplicationDirectory(sourcePath());
    const QString nowhere = path("no folder/out.kpx");
    const log::Capture log;
    EXPECT_FALSE(converter.convert(nowhere));
    EXPECT_TRUE(
        log.contains(log::Level::Important, "Failure opening converter output file " + nowhere));
    EXPECT_TRUE(converter.convert(input)) << "the input may be the output";
    EXPECT_FALSE(converter.needsConversion());
    EXPECT_EQ(ParamConverter(input, 2).kpxVersion(), 2);
    EXPECT_FALSE(converter.convert(output)) << "nothing is left";
    EXPECT_EQ(test::readFile(output), "as before");
}

TEST_F(ParamConverter_, ADevelopmentStepAppliesOnTopOfTheNewest)
{
    const QString app = applicationCopy(QString::fromUtf8("app #1 %2 ä"));
    ASSERT_TRUE(QDir(app).mkpath("resources/xsd/9999") && QDir(app).mkpath("resources/xsl/9999"));
    test::writeFile(app + "/resources/xsd/9999/lumo.xsd", "");
    const auto develop = [&](const QString& name, const QByteArray& result) {
        test::writeFile(
            app + "/resources/xsl/9999/" + name,
            "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
            "<xsl:template match='/'>" +
                result + "</xsl:template></xsl:stylesheet>");
    };
    develop("lumo.xsl", "<developed><xsl:value-of select='//kpxVersion'/></developed>");
    develop("template.xsl", "<developed>of a template</developed>");
    system::setApplicationDirectory(app);
    const QString input = file("in.kpx", project("2.1.43"));
    ParamConverter converter(input, 1);
    EXPECT_EQ(
        converter.plannedSteps(),
        QStringList(
            {"XSLT conversion from version 0 to 1", "XSLT conversion from version 1 to 9999"}));
    EXPECT_TRUE(ParamConverter(file("new.kpx", project("2.1.43", "2")), 1).plannedSteps().empty());
    EXPECT_THAT(converted(input, 1).toStdString(), HasSubstr("<developed>1</developed>"));
    EXPECT_THAT(
        converted(sample("templates/quick_format_0.tmpl"), 1).toStdString(),
        HasSubstr("<developed>of a template</developed>"));

    develop("lumo.xsl", "<one/><other/>");
    QString error;
    EXPECT_FALSE(converter.convert(input, error));
    EXPECT_THAT(error.toStdString(), HasSubstr("the result is not XML: line 3: "));
    EXPECT_EQ(test::readFile(input), project("2.1.43"));

    for (const char* version : {"0", "1"}) {
        ASSERT_TRUE(QDir(app + "/resources/xsd/" + version).removeRecursively());
    }
    const log::Capture log;
    EXPECT_FALSE(converter.convert(path("other"), error));
    EXPECT_EQ(error, "Folders in $AppDir/resources/xsd have been removed.");
    EXPECT_TRUE(log.contains(log::Level::Important, error));
    EXPECT_TRUE(
        log.contains(log::Level::Important, "Could not create kpx converter with invalid type"));
}

TEST_F(ParamConverter_, ADryRunTellsStepsAndChangesAndWritesNothing)
{
    const QString input = file("in.kpx", test::readFile(sample("projects/drone_2.0.kpx")));
    ParamConverter converter(input, kTarget);
    converter.setKpxBackupPath("auto");
    QStringList told;
    converter.setStepListener([&](int done, int total, const QString& label) {
        told << QStringLiteral("%1/%2 %3").arg(done).arg(total).arg(label);
    });
    QByteArray result;
    QString error;
    ASSERT_TRUE(converter.convertInMemory(result, error)) << qPrintable(error);
    EXPECT_EQ(
        test::outline(result),
        test::outline(test::readFile(sample("projects/drone_format_3.kpx"))));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList("in.kpx"));
    EXPECT_TRUE(converter.needsConversion());
    EXPECT_EQ(
        told, QStringList(
                  {"0/4 old version (<= 2.0) -> 2.1", "1/4 XSLT conversion from version 0 to 1",
                   "2/4 XSLT conversion from version 1 to 2",
                   "3/4 XSLT conversion from version 2 to 3", "4/4 "}));

    QStringList changes;
    for (const ConversionStepReport& step : converter.report()) {
        for (const ConversionChange& change : step.changes) {
            changes << QStringLiteral("%1 %2 > %3, %4x in line %5")
                           .arg(static_cast<int>(change.kind))
                           .arg(change.what, change.into)
                           .arg(change.count)
                           .arg(change.line);
        }
    }
    for (const char* change :
         {"0 thresHom > options/initial/threshHom, 1x in line 13",
          "3 denseSamplingScale > pclImageScale is set by denseImageScale before, 1x in line 25",
          "1 camera@id > camera/id, 2x in line 85",
          "3 userObject \"Notiz\" > its type is not known, 1x in line 149",
          "1 options/dense/mesh* > options/mesh, 7x in line 37",
          "1 verticalDef@model > vertical/model, 2x in line 140"}) {
        EXPECT_TRUE(changes.contains(change)) << change << "\nin\n"
                                              << qPrintable(changes.join('\n'));
    }
    EXPECT_EQ(changes.filter("aliasName").size(), 0) << "the file has none";
}

} // namespace
} // namespace lumo
