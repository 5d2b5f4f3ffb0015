// SPDX-License-Identifier: Apache-2.0
// ImageIdentifier: listing the candidates and what refused them.
#include "cameraInfo/identify/known_modes.h"
#include "cameraInfo/identify/without_debug_lines.h"
#include "cameraInfo/record/exif_id_parts.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"

#include <algorithm>

namespace lumo {
namespace {

/// How the database's rules lead from the identifiers to this name.
QString ruleFor(const CameraModelDb& database, const ExifID& id, const QString& name)
{
    const bool byFirst = database.exifId2cameraName(id.first, false) == name;
    const QString& identifier = byFirst ? id.first : id.second;
    const QString kind = byFirst ? QStringLiteral("the image's identifier")
                                 : QStringLiteral("the image's identifier without the lens");
    return identifier == name ? QStringLiteral("%1 is its name").arg(kind)
                              : QStringLiteral("%1, %2, is mapped to it").arg(kind, identifier);
}

/// Why a model of another name than the one found does not serve.
QString refusalOf(const CameraModelFromDB& model, const ExifInfo& exif)
{
    const CameraParams& params = model.params;
    if (!params.equalImageSize(exif.imageWidth, exif.imageHeight)) {
        return QStringLiteral("its pictures are %1x%2")
            .arg(params.imageWidth)
            .arg(params.imageHeight);
    }
    const std::optional<ExifIdParts> own = exifIdParts(model.identifier());
    const std::optional<ExifIdParts> wanted = exifIdParts(exif.exifId().second);
    if (own && wanted && own->focalLengthMm != wanted->focalLengthMm) {
        return QStringLiteral("its focal length is %1 mm").arg(own->focalLengthMm);
    }
    return QStringLiteral("another rule goes before");
}

/// Why of several models of one name this one was not taken.
QString refusalAmongNamesakes(const CandidateModel& candidate, const CameraModelFromDB& taken)
{
    if (candidate.serialNumber != taken.serialNumber) {
        return candidate.serialNumber.isEmpty()
                   ? QStringLiteral("the model of this body goes before")
                   : QStringLiteral("it is for body %1 alone").arg(candidate.serialNumber);
    }
    return QStringLiteral("your own model of this name goes before");
}

class CandidateList
{
public:
    CandidateList(const CameraModelDb& database, const ExifInfo& exif)
        : m_exif(exif)
        , m_id(exif.exifId())
        , m_name(database.exifId2cameraName(m_id, false))
    {
        m_taken = database.storedCameraModel(m_id, exif.serialNumber, false).model;
        if (m_taken != nullptr) {
            m_rule = ruleFor(database, m_id, m_name);
        }
        for (const QString& identifier : {m_id.first, m_id.second}) {
            m_keys.append(exifIdKey(identifier));
        }
    }

    void add(const cameradb::CameraDBData& table, bool own)
    {
        for (const auto& [name, model] : table.cameras) {
            const QString key = exifIdKey(model.identifier());
            if ((m_taken != nullptr && name == m_name) ||
                m_keys.contains(key, Qt::CaseInsensitive)) {
                m_result.push_back(judge(name, model, own));
            }
        }
    }

    [[nodiscard]] std::vector<CandidateModel> result() const { return m_result; }

private:
    [[nodiscard]] CandidateModel judge(
        const QString& name, const CameraModelFromDB& model, bool own) const
    {
        CandidateModel candidate{name, model.serialNumber, own, false, {}};
        if (m_taken == nullptr || name != m_name) {
            candidate.rule = refusalOf(model, m_exif);
            return candidate;
        }
        candidate.taken = &model == m_taken;
        candidate.rule = candidate.taken ? m_rule : refusalAmongNamesakes(candidate, *m_taken);
        return candidate;
    }

    const ExifInfo& m_exif;
    ExifID m_id;
    QString m_name;
    const CameraModelFromDB* m_taken = nullptr;
    QString m_rule;
    QStringList m_keys;
    std::vector<CandidateModel> m_result;
};

} // namespace

std::vector<CandidateModel> ImageIdentifier::candidates(const ExifInfo& recorded) const
{
    const ExifInfo exif = withoutDebugLines(recorded);
    if (exif.exifId().second.isEmpty()) {
        return {};
    }
    CandidateList list(m_database, exif);
    list.add(m_database.userData(), true);
    list.add(m_database.internalData(), false);
    return list.result();
}

} // namespace lumo
