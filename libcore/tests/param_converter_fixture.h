// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/param_converter.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/foundation/system.h"
#include "source_dir.h"
#include "xml_test_tools.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lumo {

inline constexpr int kTarget = kpx::kCurrentVersion;
inline const QByteArray kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

inline QString sample(const QString& name)
{
    return sourcePath("samples/") + name;
}

inline QByteArray project(const QByteArray& version, const QByteArray& format = "")
{
    return kDeclaration + "<lumodesk><software><projectVersion>" + version + "</projectVersion>" +
           (format.isEmpty() ? "" : "<kpxVersion>" + format + "</kpxVersion>") +
           "</software><inputs><images/></inputs></lumodesk>";
}

/// With the installed schemas and stylesheets, and a folder of its own.
class ParamConverter_ : public testing::Test
{
protected:
    void SetUp() override
    {
        registerXmlConverters();
        system::setApplicationDirectory(sourcePath());
    }
    void TearDown() override
    {
        system::setApplicationDirectory(QString());
        ParamConverter::setTemplatesDataLocation(QString());
    }

    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }

    QString file(const QString& name, const QByteArray& content)
    {
        return test::writeFile(path(name), content);
    }

    QByteArray converted(const QString& input, int target)
    {
        ParamConverter converter(input, target);
        QString error;
        EXPECT_TRUE(converter.convert(path("out"), error)) << qPrintable(error);
        return test::readFile(path("out"));
    }

    /// An application directory of the test's own, with all that is installed.
    QString applicationCopy(const QString& name)
    {
        const QDir source(sourcePath("resources"));
        for (const QString& part :
             {QStringLiteral("xsd/0"), QStringLiteral("xsd/1"), QStringLiteral("xsl/0")}) {
            EXPECT_TRUE(QDir(path(name)).mkpath("resources/" + part));
            for (const QString& entry : QDir(source.filePath(part)).entryList(QDir::Files)) {
                EXPECT_TRUE(QFile::copy(
                    source.filePath(part + '/' + entry),
                    path(name + "/resources/" + part + '/' + entry)));
            }
        }
        return path(name);
    }

    QTemporaryDir m_folder;
};

} // namespace lumo
