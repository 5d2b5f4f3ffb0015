// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/document/document_fault.h"

#include "cameraInfo/rig/finite_pose.h"
#include "lumo/cameradata/xml_values.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace lumo::cameradb {
namespace {

/// Looks at the fields of one record after the other and keeps the first fault.
class FaultFinder
{
public:
    void record(const char* kind, const QString& name)
    {
        m_record = QStringLiteral("%1 \"%2\"").arg(QLatin1String(kind), name);
    }

    void text(const char* field, const QString& text)
    {
        const QString character = xml::invalidCharacter(text);
        if (!character.isEmpty()) {
            fault(field, QStringLiteral("has character %1, which XML forbids").arg(character));
        }
    }

    /// Checks a count, which the format stores in 32 bits.
    void count(const char* field, std::size_t count)
    {
        constexpr std::size_t kMax = std::numeric_limits<std::uint32_t>::max();
        if (count > kMax) {
            fault(field, QStringLiteral("is more than %1").arg(kMax));
        }
    }

    void bands(const bands_t& bands)
    {
        for (const band_t& band : bands) {
            text("band name", band.name);
            if (!std::isfinite(band.wavelength) || !std::isfinite(band.width) ||
                !std::isfinite(band.weight)) {
                fault("bands", QStringLiteral("have a number that is not finite"));
            }
        }
    }

    void fault(const char* field, const QString& reason)
    {
        if (!m_fault) {
            m_fault =
                m_record + QStringLiteral(": ") + QLatin1String(field) + QLatin1Char(' ') + reason;
        }
    }

    [[nodiscard]] const std::optional<QString>& first() const { return m_fault; }

private:
    QString m_record;
    std::optional<QString> m_fault;
};

void findInHeader(const HeaderPairs& headerPairs, FaultFinder& finder)
{
    static const QRegularExpression elementName(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_.-]*\\z"));
    static const QStringList own{
        QStringLiteral("cameraModelDB"), QStringLiteral("version"), QStringLiteral("rigs"),
        QStringLiteral("cameras"), QStringLiteral("mappings")};
    for (const auto& [name, value] : headerPairs) {
        finder.record("header pair", name);
        if (!elementName.match(name).hasMatch()) {
            finder.fault("name", QStringLiteral("is not the name of an element"));
        } else if (own.contains(name)) {
            finder.fault("name", QStringLiteral("is one of the database's own elements"));
        }
        finder.text("value", value);
    }
}

void findInCamera(const CameraModelFromDB& camera, FaultFinder& finder)
{
    finder.record("camera", camera.params.name);
    finder.text("name", camera.params.name);
    finder.text("serial number", camera.serialNumber);
    finder.text("EXIF identifier", camera.exifId);
    finder.count("image size", std::max(camera.params.imageWidth, camera.params.imageHeight));
    for (const bands_t& bands : camera.bandConfigs) {
        finder.bands(bands);
    }
}

void findInRigCamera(const RigModelCameraAttr& camera, FaultFinder& finder)
{
    finder.text("camera name", camera.name);
    finder.text("serial number", camera[RigKey::SerialNumber]);
    finder.text("EXIF string", camera[RigKey::ExifString]);
    finder.text("detection string", camera[RigKey::DetectionString]);
    finder.bands(camera.bands());
}

void findInRig(const RigModel& rig, FaultFinder& finder)
{
    finder.record("rig", rig.name);
    finder.text("name", rig.name);
    findInRigCamera(rig.refCamera, finder);
    finder.count("reference camera's index", rig.refCameraIndex);
    for (const RigModel::Secondary& secondary : rig.secondaries) {
        findInRigCamera(secondary.attributes, finder);
        if (!isFinite(secondary.relatives)) {
            finder.fault("pose", QStringLiteral("has a number that is not finite"));
        }
    }
}

} // namespace

std::optional<QString> documentFault(const HeaderPairs& headerPairs, const CameraDBData& data)
{
    FaultFinder finder;
    findInHeader(headerPairs, finder);
    for (const auto& [name, rig] : data.rigs) {
        findInRig(rig, finder);
    }
    for (const auto& [name, camera] : data.cameras) {
        if (camera.valid(npos, true)) {
            findInCamera(camera, finder);
        }
    }
    for (const auto& [exifId, camera] : data.mappings) {
        finder.record("mapping", exifId);
        finder.text("EXIF identifier", exifId);
        finder.text("camera", camera);
    }
    return finder.first();
}

} // namespace lumo::cameradb
