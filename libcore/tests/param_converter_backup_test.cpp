// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "param_converter_fixture.h"

namespace lumo {
namespace {

TEST_F(ParamConverter_, ProjectsAreBackedUpOnce)
{
    const QByteArray old = test::readFile(sample("projects/terrestrial_1.2.kpx"));
    const QString input = file(QString::fromUtf8("Höhe #1 %20.kpx"), old);
    const auto convert = [&](const QString& setting) {
        ParamConverter converter(input, kTarget);
        converter.setKpxBackupPath(setting);
        EXPECT_TRUE(converter.convert(path("out")));
        return converter.backupPath();
    };
    EXPECT_EQ(convert(QString()), "");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 2) << "in and out";

    const log::Capture log;
    const QString automatic = path(QString::fromUtf8("Höhe #1 %20_backup_1.2.0.kpx"));
    EXPECT_EQ(convert("auto"), automatic);
    EXPECT_TRUE(log.contains(log::Level::Info, "Creating backup of the kpx file in: " + automatic));
    EXPECT_EQ(test::readFile(automatic), old);
    test::writeFile(automatic, "an older one");
    EXPECT_EQ(convert("auto"), automatic);
    EXPECT_EQ(test::readFile(automatic), "an older one");

    EXPECT_EQ(convert(path("own")), path("own"));
    EXPECT_EQ(test::readFile(path("own")), old);
    EXPECT_EQ(convert(path("no folder/b")), path("no folder/b")) << "it goes on without";
    EXPECT_EQ(log.records().back().level, log::Level::Important);
}

TEST_F(ParamConverter_, ABackupStaysInTheFolderOfTheFile)
{
    const QString input = file("in.kpx", project("2.1.43/../../x"));
    ParamConverter converter(input, kTarget);
    converter.setKpxBackupPath("auto");
    EXPECT_EQ(converter.backupPath(), path("in_backup_2.1.43_.._.._x.kpx"));
    ParamConverter shortNamed(file("abc", project("2.1.43")), kTarget);
    shortNamed.setKpxBackupPath("auto");
    EXPECT_EQ(shortNamed.backupPath(), path("_backup_2.1.43.kpx"));
}

TEST_F(ParamConverter_, TemplatesAreBackedUpByAge)
{
    const QString input = file("t.tmpl", test::readFile(sample("templates/quick_2.0.tmpl")));
    const auto convert = [&] {
        const log::Capture log;
        ParamConverter converter(input, kTarget);
        converter.setKpxBackupPath(path("not for templates"));
        EXPECT_TRUE(converter.convert(path("out")));
        return !log.contains(log::Level::Warning, "Template backup cannot be created");
    };
    EXPECT_FALSE(convert()) << "there is no location";
    ParamConverter::setTemplatesDataLocation(input + "/is a file");
    EXPECT_FALSE(convert());
    ParamConverter::setTemplatesDataLocation(path("data"));
    EXPECT_TRUE(convert());
    EXPECT_EQ(test::readFile(path("data/templates_backups20/t.tmpl")), test::readFile(input));
    test::writeFile(input, test::readFile(sample("templates/quick_format_0.tmpl")));
    EXPECT_TRUE(convert());
    EXPECT_EQ(test::readFile(path("data/templates_backups21/t.tmpl")), test::readFile(input));
    EXPECT_FALSE(QFile::exists(path("not for templates")));
}

} // namespace
} // namespace lumo
