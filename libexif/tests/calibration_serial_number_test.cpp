// SPDX-License-Identifier: Apache-2.0
#include "calibration_serial_number.h"
#include "lumo/exif/read_exif.h"
#include "lumo/foundation/log.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

TEST(CalibrationSerialNumber, IsReadInEachForm)
{
    const char* const cases[] = {
        "serial: PI04-01",
        "first line\r\nSERIAL_NUMBER=PI04-01\r\nlast line\r\n",
        "\xef\xbb\xbf[device]\nSerial Number \t PI04-01",
        "serialNo = \"PI04-01\";",
        "{\n  \"serialNumber\": \"PI04-01\",\n  \"values\": [1, 2]\n}\n",
        "<a><serialNumber> PI04-01 </serialNumber></a>",
        "<device model='x' serial-number='PI04-01' kind=\"1\"/>",
        "serial: PI04-01\nnumbers 1 2 3\nserial number PI04-01\n",
    };
    for (const char* text : cases) {
        QString error;
        EXPECT_EQ(findCalibrationSerialNumber(text, error), "PI04-01") << text;
        EXPECT_EQ(error, "");
    }
}

TEST(CalibrationSerialNumber, IsEmptyWithAReasonInAllElse)
{
    const QString none = "names no serial number";
    const std::pair<QByteArray, QString> cases[] = {
        {"", none},
        {"PI04-01\n", none},
        {"serial number\n", none},
        {"serial: none", none},
        {"serial: 000000", none},
        {"my serial: PI04-01", none},
        {"serial: PI04 01", none},
        {"serials: PI04-01", none},
        {"serial: " + QByteArray(65, '1'), none},
        {"<!-- serial=\"PI04-01\" -->", none},
        {QByteArray(4096, ' ').prepend('x') + "<serial>PI04-01</serial>", none},
        {"serial: A1\nserial: B2\nserial: C3", "names several serial numbers: A1, B2"},
        {QByteArray("serial: PI04-01\n\0", 17), "not a text file"},
    };
    for (const auto& [text, reason] : cases) {
        QString error;
        EXPECT_EQ(findCalibrationSerialNumber(text, error), "") << text.left(40).data();
        EXPECT_EQ(error, reason) << text.left(40).data();
    }
}

TEST(CalibrationSerialNumber, IsThatOfAFileOfThatName)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("sequoia_therm.dat");
    const auto put = [&path](const QByteArray& content) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    };
    put("serial: PI04-01\n");
    EXPECT_EQ(getSerialNumber(path), "PI04-01");

    const log::Capture log;
    put("serial: PI04-01\n" + QByteArray(kMaxCalibrationBytes, '\n'));
    EXPECT_EQ(getSerialNumber(path), "");
    EXPECT_EQ(getSerialNumber(folder.filePath("none/sequoia_therm.dat")), "");
    ASSERT_EQ(log.records().size(), 2u);
    EXPECT_EQ(log.records()[0].text, path + ": no serial number: larger than 1024 KiB");
    EXPECT_TRUE(log.records()[1].text.endsWith(": no serial number: no such file"));
}

} // namespace
} // namespace lumo::exif
