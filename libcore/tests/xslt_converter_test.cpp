// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/core/xml/xslt_converter.h"
#include "xml_test_tools.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QUrl>
#include <gmock/gmock.h>

namespace lumo {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// One stylesheet in both engines: the version attribute chooses.
class XsltConverter_ : public testing::TestWithParam<const char*>
{
protected:
    QString stylesheet(const QByteArray& body)
    {
        return test::writeFile(
            m_folder.filePath("step.xsl"),
            QByteArray("<xsl:stylesheet version=\"") + GetParam() +
                "\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">" + body +
                "</xsl:stylesheet>");
    }

    static QByteArray run(const QString& xslFile, const QByteArray& document)
    {
        XsltConverter converter;
        converter.setXslFile(xslFile);
        QBuffer input;
        input.setData(document);
        EXPECT_TRUE(input.open(QIODevice::ReadOnly));
        return converter.convert(&input);
    }

    /// The error of a conversion; empty if there is none.
    static std::string errorOf(const QString& xslFile, const QByteArray& document)
    {
        try {
            return "converted to " + run(xslFile, document).toStdString();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    QTemporaryDir m_folder;
};

constexpr const char* kFailed = "Cannot transform XML using XSLT";

TEST_P(XsltConverter_, EnginesGiveTheSameDocument)
{
    const QString xsl =
        stylesheet("<xsl:output method='xml' encoding='ISO-8859-1' omit-xml-declaration='no'/>"
                   "<xsl:template match='/old'><new count='{count(item)}'>"
                   "<xsl:apply-templates select='item'><xsl:sort select='@n' data-type='number'/>"
                   "</xsl:apply-templates></new></xsl:template>"
                   "<xsl:template match='item'><xsl:copy><xsl:copy-of select='@*'/>"
                   "<xsl:if test='@n &gt; 9'><big/></xsl:if><xsl:value-of select='.'/></xsl:copy>"
                   "</xsl:template>");
    const QByteArray result = run(
        xsl,
        "<?xml version=\"1.0\"?><!-- c -->\n<old>\n <item n='10'>\xc3\xa4 &lt;&amp;&gt;</item>\n"
        " <item n='9' q='&quot;&apos;&lt;'><![CDATA[]]&gt;]]></item><item n='2'/></old>");
    EXPECT_THAT(
        result.toStdString(), StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<new"));
    EXPECT_EQ(
        test::outline(result), "new count=[3]\n item n=[2]\n item n=[9] q=[\"'<] \"]]&gt;\"\n"
                               " item n=[10] \"\xc3\xa4 <&>\"\n  big\n");
}

TEST_P(XsltConverter_, RefusesWhatItCannotRun)
{
    const QByteArray copy = "<xsl:template match='/'><xsl:copy-of select='.'/></xsl:template>";
    EXPECT_EQ(errorOf(m_folder.filePath("missing.xsl"), "<a/>"), kFailed);
    EXPECT_EQ(errorOf(stylesheet("<xsl:template"), "<a/>"), kFailed);
    EXPECT_EQ(errorOf(stylesheet("<xsl:template match='//['/>"), "<a/>"), kFailed);
    for (const auto& [name, document] : test::hostileDocuments()) {
        EXPECT_EQ(errorOf(stylesheet(copy), document), kFailed) << name;
        EXPECT_EQ(errorOf(test::writeFile(m_folder.filePath("x.xsl"), document), "<a/>"), kFailed)
            << name;
    }
    QBuffer closed;
    EXPECT_THROW(static_cast<void>(XsltConverter().convert(&closed)), std::runtime_error);
}

TEST_P(XsltConverter_, ReachesNoOtherFile)
{
    const QString secret = test::writeFile(m_folder.filePath("secret.xml"), "<s>secret</s>");
    const QString victim = m_folder.filePath("victim.xml");
    const QByteArray secretUrl = QUrl::fromLocalFile(secret).toEncoded();
    const QByteArray victimUrl = QUrl::fromLocalFile(victim).toEncoded();
    const QByteArray bodies[] = {
        "<xsl:template match='/'><r><xsl:value-of select=\"document('" + secretUrl +
            "')\"/></r></xsl:template>",
        "<xsl:template match='/'><r><xsl:value-of select=\"doc('" + secretUrl +
            "')\"/></r></xsl:template>",
        "<xsl:include href='" + secretUrl + "'/><xsl:template match='/'><r/></xsl:template>",
        "<xsl:import href='" + secretUrl + "'/><xsl:template match='/'><r/></xsl:template>",
        "<xsl:template match='/'><xsl:document href='" + victimUrl +
            "'><v/></xsl:document></xsl:template>",
        "<xsl:template match='/'><r><e:output xmlns:e='http://icl.com/saxon' "
        "xsl:extension-element-prefixes='e' href='" +
            victimUrl + "'><v/></e:output></r></xsl:template>"};
    for (const QByteArray& body : bodies) {
        EXPECT_THAT(errorOf(stylesheet(body), "<a/>"), Not(HasSubstr("secret</"))) << body.data();
        EXPECT_FALSE(QFile::exists(victim)) << body.data();
    }
    EXPECT_EQ(errorOf(stylesheet(bodies[0]), "<a/>"), kFailed);
}

INSTANTIATE_TEST_SUITE_P(Engines, XsltConverter_, testing::Values("1.0", "2.0"));

class Xslt1 : public XsltConverter_
{};

TEST_P(Xslt1, StopsWhereTheStylesheetSaysSo)
{
    const char* const bodies[] = {
        "<xsl:template match='/'><a/><xsl:message terminate='yes'/></xsl:template>",
        "<xsl:template match='/' name='t'><xsl:call-template name='t'/></xsl:template>",
        "<xsl:include href='x.xsl'/>",
        "<xsl:import href='x.xsl'/>",
    };
    static_cast<void>(test::writeFile(
        m_folder.filePath("x.xsl"), "<xsl:stylesheet version='1.0' "
                                    "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'/>"));
    for (const char* body : bodies) {
        EXPECT_EQ(errorOf(stylesheet(body), "<a/>"), kFailed) << body;
    }
}

INSTANTIATE_TEST_SUITE_P(Libxslt, Xslt1, testing::Values("1.0"));

std::unique_ptr<IXmlConversion> nothing()
{
    return nullptr;
}

TEST(ExtensibleFactory, NamesAnUnknownKeyAndTakesTheLastCreator)
{
    ExtensibleFactory<IXmlConversion> factory;
    EXPECT_THROW(factory.registerCreator("Xslt", nullptr), std::invalid_argument);
    try {
        static_cast<void>(factory.create("Xslt"));
        FAIL() << "an unknown key was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(
            error.what(),
            std::string(typeid(IXmlConversion).name()) + " - The type (Xslt) is not registered");
    }
    factory.registerCreator(
        "Xslt", [] { return std::unique_ptr<IXmlConversion>(std::make_unique<XsltConverter>()); });
    EXPECT_NE(factory.create("Xslt"), nullptr);
    factory.registerCreator("Xslt", &nothing);
    EXPECT_EQ(factory.create("Xslt"), nullptr);
}

TEST(ExtensibleFactory, RegisteredStepsCanBeMadeAgainAndAgain)
{
    registerXmlConverters();
    registerXmlConverters();
    for (const char* key : {"CamDB16_17", "Xslt"}) {
        const auto one = extensibleFactoryInstance<IXmlConversion>().create(key);
        const auto other = extensibleFactoryInstance<IXmlConversion>().create(key);
        EXPECT_NE(one, other) << key;
    }
}

} // namespace
} // namespace lumo
