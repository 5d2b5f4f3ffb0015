// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/bands.h"
#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/camera_params.h"
#include "lumo/core/export.h"
#include "lumo/foundation/npos.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

class QDomElement;
class QXmlStreamWriter;

namespace lumo {

/// One entry of the camera model database: the calibrated parameters of a
/// camera model, or of one camera body of it, with every band configuration in
/// which it can deliver images.
///
/// The constructors and operations leave at least one band configuration. A record
/// that is filled by hand may have none.
struct LUMO_CORE_EXPORT CameraModelFromDB
{
    QString serialNumber; ///< of one body; empty for the model that serves every body
    CameraParams params;  ///< its name is the record's name and the database key
    std::vector<bands_t> bandConfigs;
    std::size_t defaultBandConfig = 0; ///< index into bandConfigs, or npos
    QString exifId;                    ///< identifier of its images; empty if it equals the name

    /// One RGB configuration, all else empty.
    CameraModelFromDB();

    /// The camera's serial number and parameters, and its bands as the only configuration.
    CameraModelFromDB(const CameraData& camera, const QString& exifIdentifier);

    /// An image's camera with these parameters and the default bands, not fixed.
    [[nodiscard]] CameraData camera() const;

    /// The identifier of its images: `exifId`, or the name if that is empty.
    [[nodiscard]] const QString& identifier() const;

    /// Higher than wide. A square image is not portrait.
    [[nodiscard]] bool portraitImage() const;

    /// The default configuration; the first one if the default index is out of
    /// range; no bands if there is no configuration.
    [[nodiscard]] const bands_t& defaultBands() const;

    /// Replaces configuration `index`; false, with nothing changed, if there is none.
    [[nodiscard]] bool setBands(const bands_t& bands, std::size_t index);

    /// Takes parameters and bands (as the only configuration) from the camera;
    /// serial number and identifier stay.
    void setParamsAndReplaceBands(const CameraData& camera);

    /// Back to a default-built record, except that the identifier stays.
    void clearData();

    /// Same parameters (vignetting aside), bands, default and identifier. Serial
    /// numbers are not compared.
    [[nodiscard]] bool equal(const CameraModelFromDB& other) const;

    /// Adds a configuration, or replaces the one of the same names and band count.
    /// \returns whether anything changed
    bool addBands(const bands_t& bands);

    /// Whether the parameters and configuration `index` (npos: all of them and
    /// the default index) can be used.
    /// \param[out] error  the first reason if not, else untouched
    [[nodiscard]] bool valid(QString& error, std::size_t index) const;
    /// As valid(error, index), without a reason and without log records.
    /// \param checkBands  also check each single band
    [[nodiscard]] bool valid(std::size_t index, bool checkBands) const;

    /// The first configuration with these band names, in order, ignoring case and
    /// blanks; failing that, the first one that has them without its garbage
    /// bands; else npos.
    [[nodiscard]] std::size_t bandConfigIndexByNames(const bands_t& bands) const;
    [[nodiscard]] std::size_t bandConfigIndexByNames(const QStringList& names) const;

    /// The first configuration whose bands equal these in every field, else npos.
    [[nodiscard]] std::size_t bandConfigIndexByValues(const bands_t& bands) const;

    /// The configuration that fits an image's camera best: by values, by names,
    /// by the number of bands; for fixed bands by names only. npos if none does.
    [[nodiscard]] std::size_t bestBandConfigIndex(const CameraData& camera) const;

    /// Whether the camera could have got its parameters and bands from here.
    /// \param strict  compare vignetting that the camera keeps, and only ask of
    ///     fixed bands that they need nothing from their configuration; fixed
    ///     bands that fit no configuration count as contained
    [[nodiscard]] bool contains(const CameraData& camera, bool strict) const;

    /// Writes an element "camera" with all fields. The default configuration is
    /// written first, so reading makes it number 0. The identifier is left out if
    /// it equals the name.
    void saveXML(QXmlStreamWriter& writer) const;

    /// Reads all fields from an element that saveXML wrote. A missing field becomes
    /// empty, except that a missing identifier leaves `exifId` unchanged. An
    /// identifier that equals the name becomes empty. Configurations without bands
    /// are left out; if none is left, the record gets one RGB configuration.
    /// \param version  of the enclosing document; has no effect so far
    void readXML(const QDomElement& element, std::size_t version);

private:
    [[nodiscard]] bool valid(
        QString& error, bool checkBands, bool verbose, std::size_t index) const;
};

/// Gives an image's camera the parameters, serial number and bands of a model,
/// except for the values that the camera's keep flags and fixed bands protect. The
/// camera's source becomes `source`, or Custom if a protected value differs from
/// the model's.
/// \param bandIndex  the band configuration; out of range: the one that fits best
LUMO_CORE_EXPORT void copyCameraModelToParams(
    const CameraModelFromDB& model, CameraSource source, CameraData& camera, std::size_t bandIndex);

} // namespace lumo
