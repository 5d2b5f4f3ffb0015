// SPDX-License-Identifier: Apache-2.0
#include "irradiance.h"

#include "lumo/foundation/text.h"

#include <QtEndian>

#include <cmath>

namespace lumo::exif {
namespace {

constexpr const char* kListProperty = "Camera:IrradianceList";

// A record of the Sequoia's list, little-endian: time stamp (uint64, us);
// channels 0 and 1, gain index, integration time in ms (uint16 each); yaw,
// pitch and roll of the sensor (float, rad).
constexpr int kRecordBytes = 28;
constexpr int kChannel0Offset = 8;

std::vector<double> decodeList(const QString& text, const TagReader& tags)
{
    QByteArray base64 = text.toLatin1();
    base64.replace(' ', "").replace('\n', "").replace('\r', "").replace('\t', "");
    const auto decoded =
        QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || decoded.decoded.size() % kRecordBytes != 0) {
        tags.warn(
            QLatin1String(kListProperty),
            QStringLiteral("not a list of records of %1 bytes").arg(kRecordBytes));
        return {};
    }
    std::vector<double> readings;
    for (int at = 0; at < decoded.decoded.size(); at += kRecordBytes) {
        readings.push_back(
            qFromLittleEndian<quint16>(decoded.decoded.constData() + at + kChannel0Offset));
    }
    return readings;
}

} // namespace

std::vector<double> findIrradiance(const XmpProperties& xmp, const TagReader& tags)
{
    if (xmp.contains(kListProperty)) {
        return decodeList(xmp.values(kListProperty).front(), tags);
    }
    for (const char* property :
         {"Camera:Irradiance", "DLS:SpectralIrradiance", "Camera:SunSensor",
          "drone-dji:Irradiance"}) {
        if (!xmp.contains(property)) {
            continue;
        }
        bool ok = false;
        const double value = text::fromString<double>(xmp.text(property), &ok);
        if (ok && std::isfinite(value)) {
            return {value};
        }
        tags.warn(QLatin1String(property), QStringLiteral("not a number"));
    }
    return {};
}

} // namespace lumo::exif
