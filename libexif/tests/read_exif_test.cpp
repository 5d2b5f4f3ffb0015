// SPDX-License-Identifier: Apache-2.0
#include "image_files.h"
#include "lumo/exif/read_exif.h"
#include "lumo/exif/read_exif_files.h"
#include "lumo/exif/sequoia.h"
#include "lumo/foundation/log.h"

#include <QDir>
#include <QtEndian>
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace lumo::exif {
namespace {

using Exiv2::asciiString;
using Exiv2::signedRational;
using Exiv2::undefined;
using Exiv2::unsignedLong;
using Exiv2::unsignedRational;
using Exiv2::unsignedShort;

constexpr quint32 kSubfileType = 0xfe;
constexpr quint32 kImageWidth = 0x100;
constexpr quint32 kPhotometric = 0x106;
constexpr quint32 kModel = 0x110;
constexpr quint32 kSamplesPerPixel = 0x115;
constexpr quint32 kSubDirectories = 0x14a;
constexpr quint32 kExtraSamples = 0x152;
constexpr quint32 kXmp = 0x2bc;

class ReadExif : public ImageFiles
{};

bool warnsOf(const log::Capture& log, const QString& field)
{
    const auto records = log.records();
    return std::any_of(records.begin(), records.end(), [&field](const log::Record& record) {
        return record.level == log::Level::Warning && record.text.contains(field);
    });
}

TEST_F(ReadExif, AllFieldsComeFromTheirTags)
{
    const ExifInfo exif = read(jpeg(
        {{"Exif.Image.Make", asciiString, "PARROT"},
         {"Exif.Image.Model", asciiString, "Sequoia  "},
         {"Exif.Photo.FocalLength", unsignedRational, "4294967295/1079137511"},
         {"Exif.Photo.FocalLengthIn35mmFilm", unsignedShort, "30"},
         {"Exif.Photo.FNumber", signedRational, "22/10"},
         {"Exif.Photo.LensModel", asciiString, "Lens 4 mm"},
         {"Exif.Photo.DateTimeOriginal", asciiString, "2018:04:13 08:06:58"},
         {"Exif.Photo.SubSecTimeOriginal", asciiString, "272833"}},
        xmpPacket("<Camera:RigName>Sequoia</Camera:RigName>"
                  "<Camera:RigCameraIndex>3</Camera:RigCameraIndex>"
                  "<Camera:CaptureUUID>BE5AB0</Camera:CaptureUUID>")));
    EXPECT_EQ(exif.model, QStringLiteral("Sequoia"));
    EXPECT_TRUE(sequoia::isSequoia(exif));
    EXPECT_NEAR(exif.focalLengthMm, 3.98, 1e-8);
    EXPECT_EQ(exif.focalLength35Mm, 30.0);
    EXPECT_EQ(exif.fNumber, 2.2);
    EXPECT_EQ(exif.lensModel, QStringLiteral("Lens 4 mm"));
    EXPECT_EQ(
        exif.dateTime.toString(Qt::ISODateWithMs), QStringLiteral("2018-04-13T08:06:58.272Z"));
    EXPECT_EQ(exif.rigName, QStringLiteral("Sequoia"));
    EXPECT_EQ(exif.rigCameraIndex, 3);
    EXPECT_EQ(exif.captureId, QStringLiteral("BE5AB0"));
    EXPECT_EQ(exif.bands, band::makeRGBBands());
    EXPECT_EQ(exif.fileWidth, 40U);
    EXPECT_EQ(exif.fileHeight, 30U);
}

TEST_F(ReadExif, NonsenseBecomesZeroAndIsLogged)
{
    const std::vector<Tag> cases = {
        {"Exif.Photo.FocalLength", unsignedRational, "0/1"},
        {"Exif.Photo.FocalLength", unsignedRational, "0/0"},
        {"Exif.Photo.FocalLength", unsignedRational, "5/0"},
        {"Exif.Photo.FocalLength", signedRational, "-5/1"},
        {"Exif.Photo.FocalLength", unsignedRational, "4000000000/1"},
        {"Exif.Photo.FocalLength", Exiv2::tiffDouble, "nan"},
        {"Exif.Photo.FNumber", Exiv2::tiffDouble, "inf"},
        {"Exif.Photo.FocalLengthIn35mmFilm", Exiv2::signedShort, "-28"},
        {"Exif.Photo.PixelXDimension", unsignedLong, "1000001"},
        {"Exif.Photo.PixelYDimension", unsignedLong, "0"},
        {"Exif.Photo.FocalPlaneXResolution", unsignedRational, "0/0"},
        {"Exif.Photo.FocalPlaneYResolution", signedRational, "-1/2"},
        {"Exif.Photo.FocalPlaneResolutionUnit", unsignedShort, "1"},
        {"Exif.Photo.DateTimeOriginal", asciiString, "2018:13:40 08:06:58"}};
    for (const Tag& tag : cases) {
        SCOPED_TRACE(tag.key + (" " + tag.value));
        Tags tags = kCamera + Tags{
                                  {"Exif.Photo.PixelXDimension", unsignedLong, "100"},
                                  {"Exif.Photo.PixelYDimension", unsignedLong, "80"},
                                  {"Exif.Photo.FocalPlaneXResolution", unsignedRational, "50/1"},
                                  {"Exif.Photo.FocalPlaneYResolution", unsignedRational, "50/1"}};
        tags.erase(
            std::remove_if(
                tags.begin(), tags.end(),
                [&tag](const Tag& other) { return std::string(other.key) == tag.key; }),
            tags.end());
        const log::Capture log;
        const ExifInfo exif = read(jpeg(tags + Tags{tag}));
        EXPECT_TRUE(warnsOf(log, QLatin1String(tag.key)));
        EXPECT_EQ(exif.focalLengthMm, 0.0);
        EXPECT_EQ(exif.focalLength35Mm, 0.0);
        EXPECT_EQ(exif.fNumber, 0.0);
        EXPECT_FALSE(exif.dateTime.isValid());
        const QString key = QLatin1String(tag.key);
        EXPECT_EQ(exif.imageWidth, key.contains(QLatin1String("Dimension")) ? 40U : 100U);
        EXPECT_NE(exif.focalPlane.has_value(), key.contains(QLatin1String("FocalPlane")));
    }
}

TEST_F(ReadExif, FocalPlaneResolutionIsPerMillimetre)
{
    const std::pair<const char*, double> cases[] = {
        {nullptr, 1.0}, {"2", 1.0}, {"3", 2.54}, {"4", 25.4}, {"5", 25400.0}};
    for (const auto& [unit, expected] : cases) {
        Tags tags = kCamera + Tags{
                                  {"Exif.Photo.FocalPlaneXResolution", unsignedRational, "254/10"},
                                  {"Exif.Photo.FocalPlaneYResolution", unsignedRational, "508/10"}};
        if (unit != nullptr) {
            tags.push_back({"Exif.Photo.FocalPlaneResolutionUnit", unsignedShort, unit});
        }
        const auto resolution = read(jpeg(tags)).focalPlane;
        ASSERT_TRUE(resolution.has_value());
        EXPECT_NEAR(resolution->x, expected, 1e-9 * expected);
        EXPECT_NEAR(resolution->y, 2.0 * expected, 1e-9 * expected);
    }
}

TEST_F(ReadExif, TheExifSizeCountsOnlyWhereItIsLarger)
{
    struct Case
    {
        const char* width;
        const char* height;
        std::size_t expectedWidth;
        std::size_t expectedHeight;
    };
    for (const Case& c : {Case{"80", "60", 80, 60}, {"20", "15", 40, 30}, {"30", "40", 40, 30}}) {
        const ExifInfo exif = read(jpeg(
            kCamera + Tags{
                          {"Exif.Photo.PixelXDimension", unsignedLong, c.width},
                          {"Exif.Photo.PixelYDimension", unsignedLong, c.height}}));
        EXPECT_EQ(exif.imageWidth, c.expectedWidth);
        EXPECT_EQ(exif.imageHeight, c.expectedHeight);
        EXPECT_EQ(exif.fileWidth, 40U);
    }
}

TEST_F(ReadExif, TextsAreDecodedAndCleaned)
{
    const std::pair<std::string, QString> cases[] = {
        {"  Name \r\n", QStringLiteral("Name")},
        {std::string("Name\0rest", 9), QStringLiteral("Name")},
        {"N\x1b[31ma\x7fme", QStringLiteral("N[31mame")},
        {"Two\nlines", QStringLiteral("Two lines")},
        {"\xc3\xa4\xe2\x82\xac", QString::fromUtf8("\xc3\xa4\xe2\x82\xac")}, // UTF-8
        {"caf\xe9", QString::fromUtf8("caf\xc3\xa9")},                       // Latin-1
        {std::string(65536, 'x'), QString(65536, QLatin1Char('x'))}};
    for (const auto& [bytes, expected] : cases) {
        EXPECT_EQ(read(tiff({tiffText(kModel, QByteArray::fromStdString(bytes))})).model, expected);
    }
}

TEST_F(ReadExif, AFileThatCannotServeIsOneLineOfReason)
{
    const QString text = QStringLiteral("not an image of a known format");
    const std::pair<QString, QString> cases[] = {
        {m_folder.filePath(QStringLiteral("missing.jpg")), QStringLiteral("no such file")},
        {QStringLiteral("http://maker.example/a.jpg"), QStringLiteral("no such file")},
        {m_folder.path(), QStringLiteral("is a folder")},
        {QStringLiteral("/dev/zero"), QStringLiteral("is not a file")},
        {write({}, QStringLiteral("empty.jpg")), QStringLiteral("the file is empty")},
        {write("only text, no image", QStringLiteral("text.jpg")), text},
        {write(jpeg({}), QStringLiteral("plain.jpg")), QStringLiteral("holds no EXIF data")},
        {write(tiff({tiffShort(kImageWidth, 4)}), QStringLiteral("a.tif")),
         QStringLiteral("holds no EXIF data")},
        {write(jpeg(kCamera).left(60), QStringLiteral("cut.jpg")),
         QStringLiteral("truncated or damaged")}};
    for (const auto& [path, expected] : cases) {
        ExifInfo exif;
        exif.model = QStringLiteral("before");
        const ExifInfo before = exif;
        QString error;
        EXPECT_FALSE(readExif(path, exif, error)) << qPrintable(path);
        EXPECT_EQ(error, expected) << qPrintable(path);
        EXPECT_EQ(exif, before);
    }
}

TEST_F(ReadExif, CutOrSpoiltFilesNeverCrashNorWriteToTheConsole)
{
    const Tags tags =
        kCamera + Tags{
                      {"Exif.Photo.FocalLength", unsignedRational, "40/10"},
                      {"Exif.Photo.ComponentsConfiguration", undefined, "1 2 3 0"},
                      {"Exif.Photo.DateTimeOriginal", asciiString, "2018:04:13 08:06:58"}};
    const QByteArray xmp = xmpPacket("<Camera:BandName><rdf:Seq><rdf:li>Red</rdf:li></rdf:Seq>"
                                     "</Camera:BandName>");
    const std::vector<TiffEntry> tiffTags = {
        tiffShort(kImageWidth, 4),
        tiffText(kModel, "Model of a camera"),
        {kSubDirectories, 4, {}, {tiffShort(kSubfileType, 0), tiffShort(kSamplesPerPixel, 3)}},
        {kXmp, 1, xmp}};
    testing::internal::CaptureStderr();
    for (const QByteArray& whole : {jpeg(tags, xmp), tiff(tiffTags)}) {
        for (int i = 0; i < whole.size(); ++i) {
            QByteArray spoilt = whole;
            spoilt[i] = static_cast<char>(~spoilt[i]);
            for (const QByteArray& content : {whole.left(i), spoilt}) {
                ExifInfo exif;
                QString error;
                const bool ok = readExif(write(content), exif, error);
                EXPECT_EQ(ok, error.isEmpty()) << i;
                EXPECT_FALSE(error.contains(QLatin1Char('\n'))) << i;
            }
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ReadExif, XmpIsMatchedByPrefixWhateverOtherFilesBindItTo)
{
    const auto rigName = [this](const char* prefix, const char* uri) {
        const QByteArray name = QByteArray(prefix) + ":RigName";
        return read(jpeg(kCamera, xmpPacket("<" + name + ">R</" + name + ">", prefix, uri)))
            .rigName;
    };
    const QString found = QStringLiteral("R");
    EXPECT_EQ(rigName("Camera", "http://maker.example/1/"), found);
    EXPECT_EQ(rigName("Camera", "http://other.example/2"), found);
    EXPECT_EQ(rigName("Kamera", "http://other.example/2"), QString());
    EXPECT_EQ(rigName("Camera", "http://other.example/2"), found);
    EXPECT_EQ(rigName("Camera", "Camera/"), found);
    EXPECT_EQ(rigName("Camera", ""), found);
}

TEST_F(ReadExif, ABrokenXmpPacketIsLoggedAndTheTagsAreRead)
{
    const QByteArray cases[] = {
        "<x:xmpmeta><rdf:RDF>", "no XML",
        xmpPacket(QByteArray("<Camera:a>").repeated(300) + QByteArray("</Camera:a>").repeated(300)),
        "<!DOCTYPE a [<!ENTITY b 'c'>]>" + xmpPacket("<Camera:RigName>&b;</Camera:RigName>")};
    for (const QByteArray& packet : cases) {
        const log::Capture log;
        const ExifInfo exif = read(jpeg(kCamera, packet));
        EXPECT_EQ(exif.model, QStringLiteral("Model"));
        EXPECT_EQ(exif.rigName, QString());
        EXPECT_TRUE(warnsOf(log, QStringLiteral("XMP packet"))) << packet.constData();
    }
}

TEST_F(ReadExif, BandsComeFromXmpElseFromTheChannels)
{
    const auto model = tiffText(kModel, "M");
    const auto channels = [&model](quint32 photometric, quint32 samples) {
        return tiff(
            {tiffShort(kPhotometric, photometric), model, tiffShort(kSamplesPerPixel, samples)});
    };
    const auto tiffWithXmp = [](const QByteArray& inside) {
        return tiff({tiffShort(kSamplesPerPixel, 1), {kXmp, 1, xmpPacket(inside)}});
    };
    const Tags colour = {{"Exif.Photo.ComponentsConfiguration", undefined, "1 2 3 0"}};
    const bands_t gray = {{QStringLiteral("Gray")}};
    const bands_t rgb = band::makeRGBBands();
    const std::pair<QByteArray, bands_t> cases[] = {
        {channels(1, 1), gray},
        {channels(32803, 1), rgb},
        {tiff({model, tiffShort(kSamplesPerPixel, 4), tiffShort(kExtraSamples, 2)}), rgb},
        {channels(1, 2), {{QStringLiteral("Band 1")}, {QStringLiteral("Band 2")}}},
        {tiff(
             {tiffShort(kSubfileType, 1),
              model,
              tiffShort(kSamplesPerPixel, 1),
              {kSubDirectories,
               4,
               {},
               {tiffShort(kSubfileType, 0), tiffShort(kSamplesPerPixel, 3)}}}),
         rgb},
        {jpeg(kCamera, {}, 40, 30, 1), gray},
        {jpeg(kCamera + colour, {}, 40, 30, 1), rgb},
        {tiffWithXmp("<Camera:BandName><rdf:Seq><rdf:li>Green</rdf:li></rdf:Seq></Camera:BandName>"
                     "<Camera:CentralWavelength>550.0</Camera:CentralWavelength>"
                     "<Camera:WavelengthFWHM>40</Camera:WavelengthFWHM>"),
         {{QStringLiteral("Green"), 550.0, 40.0}}},
        {tiffWithXmp("<drone-dji:BandName>Blue</drone-dji:BandName>"
                     "<drone-dji:BandFreq>450(+/-16)nm</drone-dji:BandFreq>"
                     "<Camera:WavelengthFWHM>16</Camera:WavelengthFWHM>"),
         {{QStringLiteral("Blue"), 450.0, 32.0}}},
        {tiff(
             {tiffShort(kSamplesPerPixel, 1),
              {kXmp, 1,
               xmpPacket(
                   "<FLIR:BandName>LWIR</FLIR:BandName>"
                   "<FLIR:CentralWavelength>10000</FLIR:CentralWavelength>",
                   "FLIR")}}),
         {{QStringLiteral("LWIR"), 10000.0}}},
        {tiffWithXmp("<Camera:BandName>NIR</Camera:BandName>"
                     "<Camera:CentralWavelength>-1</Camera:CentralWavelength>"),
         {{QStringLiteral("NIR")}}}};
    for (const auto& [file, bands] : cases) {
        const bands_t found = read(file).bands;
        EXPECT_EQ(found, bands) << qPrintable(found.names().join(QLatin1Char(',')));
    }
}

/// Fifteen characters.
QByteArray utf16(const QByteArray& text)
{
    QByteArray result(30, '\0');
    for (int i = 0; i < text.size(); ++i) {
        result[2 * i] = text[i];
    }
    return result;
}

/// A TIFF file whose maker note exiv2 does not know.
QByteArray withMakerNote(const QByteArray& make, const QByteArray& note)
{
    constexpr quint32 kMake = 0x10f;
    constexpr quint32 kExifDirectory = 0x8769;
    constexpr quint32 kMakerNote = 0x927c;
    constexpr quint32 kUndefined = 7;
    return tiff({tiffText(kMake, make), {kExifDirectory, 4, {}, {{kMakerNote, kUndefined, note}}}});
}

TEST_F(ReadExif, SerialNumbersAreTheTextOfTheirTag)
{
    struct Case
    {
        Tags tags;
        const char* expected;
    };
    const Case cases[] = {
        {{{"Exif.Photo.BodySerialNumber", asciiString, " PI04 "}}, "PI04"},
        {{{"Exif.Photo.BodySerialNumber", asciiString, "-1000f46"}}, "-1000f46"},
        {{{"Exif.Photo.BodySerialNumber", asciiString, "0"},
          {"Exif.Image.CameraSerialNumber", undefined, "80 73 50 0"}},
         "PI2"},
        {{{"Exif.Photo.BodySerialNumber", asciiString, "000-000"}}, ""},
        {{{"Exif.Image.Make", asciiString, "Canon"},
          {"Exif.Canon.SerialNumber", unsignedLong, "3301001380"}},
         "3301001380"},
        {{{"Exif.Image.Make", asciiString, "NIKON"},
          {"Exif.Nikon3.SerialNO", asciiString, "NO= 12ab "}},
         "12ab"}};
    for (const Case& c : cases) {
        const QString path = write(jpeg(c.tags + kCamera));
        EXPECT_EQ(getSerialNumber(path), QLatin1String(c.expected));
    }
    const std::pair<QByteArray, const char*> notes[] = {
        {withMakerNote("RECONYX", QByteArray("\x01\xf1", 2).leftJustified(42, 'x') + utf16("HC6")),
         "HC6"},
        {withMakerNote(
             "RECONYX", QByteArray("RECONYXUF").leftJustified(75, '\0') +
                            QByteArray("U12").leftJustified(15, '\0')),
         "U12"},
        {withMakerNote("RECONYX", QByteArray("RECONYXH2").leftJustified(126, '\0') + utf16("HP2")),
         "HP2"},
        {withMakerNote("RECONYX", QByteArray("RECONYXH2").leftJustified(140, '\0')), ""},
        {withMakerNote(
             "EASTMAN KODAK COMPANY", QByteArray("KCGMM62500120").leftJustified(99, '\0')),
         "KCGMM62500120"},
        {withMakerNote("EASTMAN KODAK COMPANY", QByteArray("KDK INFO").leftJustified(99, '\0')),
         ""}};
    for (const auto& [file, expected] : notes) {
        EXPECT_EQ(getSerialNumber(write(file)), QLatin1String(expected));
    }
    EXPECT_EQ(
        getSerialNumber(
            write(jpeg(kCamera, xmpPacket("<aux:SerialNumber>S2.0F</aux:SerialNumber>", "aux")))),
        QStringLiteral("S2.0F"));
}

/// A thermal block of one record, for the camera, cut into two segments.
QByteArray thermalSegments(quint32 recordAt, float angle)
{
    constexpr int kRecordSize = 0x200;
    QByteArray record(kRecordSize, '\0');
    record.replace(0, 2, QByteArray("\x02\0", 2));
    record.replace(0x104, 3, "S12");
    record.replace(0x170, 4, "FOL7");
    qToLittleEndian(angle, record.data() + 0x1b4);
    QByteArray block = QByteArray("FFF\0", 4).leftJustified(0x14, '\0') + littleEndian(101, 4) +
                       littleEndian(0x40, 4) + littleEndian(1, 4);
    block = block.leftJustified(0x40, '\0') + littleEndian(0x20, 2);
    block =
        block.leftJustified(0x4c, '\0') + littleEndian(recordAt, 4) + littleEndian(kRecordSize, 4);
    block = block.leftJustified(0x60, '\0') + record;
    const QByteArray mark("FLIR\0\1", 6);
    const QByteArray end("\1", 1);
    return segment('\xe1', mark + QByteArray(1, '\0') + end + block.left(100)) +
           segment('\xe1', mark + end + end + block.mid(100));
}

TEST_F(ReadExif, AThermalBlockIsReadWhereverItIsWhole)
{
    struct Case
    {
        const char* what;
        QByteArray segments;
        const char* serialNumber;
        double angleDeg;
    };
    const QByteArray good = thermalSegments(0x60, 25.0F);
    const Case cases[] = {
        {"whole", good, "S12", 25.0},
        {"no angle of a lens", thermalSegments(0x60, 1e9F), "S12", 0.0},
        {"record outside", thermalSegments(0xffffff00U, 25.0F), "", 0.0},
        {"second segment missing", good.left(112), "", 0.0},
        {"first segment missing", good.mid(112), "", 0.0}};
    for (const Case& c : cases) {
        QByteArray file = jpeg(kCamera);
        file.insert(2, c.segments);
        const ExifInfo exif = read(file);
        EXPECT_EQ(exif.serialNumber, QLatin1String(c.serialNumber)) << c.what;
        EXPECT_EQ(exif.fieldOfView.value_or(FieldOfView{}).horizontalDeg, c.angleDeg) << c.what;
    }
}

TEST_F(ReadExif, AnglesAndPanoramasComeFromXmp)
{
    struct Case
    {
        const char* what;
        QByteArray inside;
        FieldOfView angles;
        std::size_t width; ///< 40 x 20 in the file
        bool spherical;
    };
    const QByteArray whole =
        "<GPano:ProjectionType>equirectangular</GPano:ProjectionType>"
        "<GPano:CroppedAreaImageWidthPixels>80</GPano:CroppedAreaImageWidthPixels>"
        "<GPano:CroppedAreaImageHeightPixels>40</GPano:CroppedAreaImageHeightPixels>";
    const Case cases[] = {
        {"all angles",
         "<e:CameraHorizontalFOV>70</e:CameraHorizontalFOV><e:CameraVerticalFOV>50"
         "</e:CameraVerticalFOV><e:CameraDiagonalFOV>80.5</e:CameraDiagonalFOV>",
         {70.0, 50.0, 80.5},
         40,
         false},
        {"portrait",
         "<e:CameraHorizontalFOV>50</e:CameraHorizontalFOV><e:CameraVerticalFOV>70"
         "</e:CameraVerticalFOV>",
         {70.0, 50.0, 0.0},
         40,
         false},
        {"no angle", "<e:CameraHorizontalFOV>200</e:CameraHorizontalFOV>", {}, 40, false},
        {"panorama that was scaled", whole, {}, 80, true},
        {"part of a panorama",
         whole + "<GPano:FullPanoWidthPixels>160</GPano:FullPanoWidthPixels>"
                 "<GPano:FullPanoHeightPixels>80</GPano:FullPanoHeightPixels>",
         {},
         80,
         false}};
    for (const Case& c : cases) {
        const QByteArray prefix = c.inside.startsWith("<e:") ? "e" : "GPano";
        const ExifInfo exif = read(jpeg(kCamera, xmpPacket(c.inside, prefix), 40, 20));
        EXPECT_EQ(exif.fieldOfView.value_or(FieldOfView{}), c.angles) << c.what;
        EXPECT_EQ(exif.imageWidth, c.width) << c.what;
        EXPECT_EQ(exif.spherical, c.spherical) << c.what;
    }
}

TEST_F(ReadExif, IrradianceIsOneNumberARecord)
{
    const auto irradiance = [this](const QByteArray& property, const QByteArray& text) {
        const QByteArray name = "Camera:" + property;
        return read(jpeg(kCamera, xmpPacket("<" + name + ">" + text + "</" + name + ">")))
            .irradiance;
    };
    QByteArray record(28, '\7');
    record[8] = 0x22;
    record[9] = 0x01;
    const QByteArray list = (record + record).toBase64();
    const QByteArray folded = list.left(30) + "\n " + list.mid(30);
    using testing::ElementsAre;
    EXPECT_THAT(irradiance("IrradianceList", "\n" + folded), ElementsAre(290.0, 290.0));
    EXPECT_THAT(irradiance("IrradianceList", record.left(27).toBase64()), ElementsAre());
    EXPECT_THAT(irradiance("IrradianceList", "$$$$"), ElementsAre());
    EXPECT_THAT(irradiance("Irradiance", "1.25"), ElementsAre(1.25));
    EXPECT_THAT(irradiance("Irradiance", "nan"), ElementsAre());
}

TEST_F(ReadExif, TimesAreTheCamerasOwnClock)
{
    struct Case
    {
        Tags tags;
        const char* expected;
    };
    const char* original = "Exif.Photo.DateTimeOriginal";
    const char* changed = "Exif.Image.DateTime";
    const Case cases[] = {
        {{{original, asciiString, "    :  :     :  :  "}}, ""},
        {{{original, asciiString, "0000:00:00 00:00:00"},
          {changed, asciiString, "2020:01:02 03:04:05"}},
         "2020-01-02T03:04:05.000Z"},
        // In many time zones this hour does not exist.
        {{{original, asciiString, "2020:03:29 02:30:00"}}, "2020-03-29T02:30:00.000Z"},
        {{{original, asciiString, "2020:01:02 03:04:05"},
          {changed, asciiString, "2020:01:02 03:04:05"},
          {"Exif.Photo.SubSecTime", asciiString, "200173789"}},
         "2020-01-02T03:04:05.200Z"},
        {{{original, asciiString, "2020:01:02 03:04:05"},
          {"Exif.Photo.SubSecTimeOriginal", asciiString, "5"}},
         "2020-01-02T03:04:05.500Z"}};
    for (const Case& c : cases) {
        EXPECT_EQ(
            read(jpeg(kCamera + c.tags)).dateTime.toString(Qt::ISODateWithMs),
            QLatin1String(c.expected));
    }
}

// Each file binds the prefix to another address, which disturbs exiv2's own tables.
TEST_F(ReadExif, ManyFilesComeInOrderWhateverTheNumberOfThreads)
{
    constexpr int kFiles = 200;
    QStringList paths;
    for (int i = 0; i < kFiles; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray xmp = xmpPacket(
            "<Camera:RigCameraIndex>" + number + "</Camera:RigCameraIndex>", "Camera",
            "http://maker.example/" + number);
        paths.append(
            write(i % 7 == 3 ? "no image" : jpeg(kCamera, xmp), QString::fromLatin1(number)));
    }
    for (const int threads : {0, 1, 2, 8}) {
        SCOPED_TRACE(threads);
        int next = 0;
        readExifFiles(paths, threads, [&](const FileMetadata& file) {
            EXPECT_EQ(file.path, paths[next]);
            EXPECT_EQ(file.error.isEmpty(), next % 7 != 3);
            EXPECT_EQ(file.exif.rigCameraIndex.value_or(next), next);
            return ++next < kFiles - 20;
        });
        EXPECT_EQ(next, kFiles - 20) << "the rest was not asked for";
    }
}

} // namespace
} // namespace lumo::exif
