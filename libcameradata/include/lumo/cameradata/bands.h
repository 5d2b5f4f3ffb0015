// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/export.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

class QDomElement;
class QXmlStreamWriter;

namespace lumo {

/// One spectral band of an image.
struct LUMO_CAMERADATA_EXPORT band_t
{
    QString name;
    double wavelength = 0.0; ///< centre (nm); 0 if not known
    double width = 0.0;      ///< full width at half maximum (nm); 0 if not known
    double weight = 1.0;     ///< share of the band where bands are combined into one

    /// A band that carries no image content: named "Garbage", ignoring case.
    [[nodiscard]] bool garbage() const;

    /// All four fields, the name case-sensitive.
    bool operator==(const band_t&) const = default;
};

/// The bands of an image or camera, in the order of the image's channels.
class LUMO_CAMERADATA_EXPORT bands_t
{
public:
    bands_t() = default;
    bands_t(std::initializer_list<band_t> bands);

    [[nodiscard]] std::size_t size() const { return m_bands.size(); }
    [[nodiscard]] bool empty() const { return m_bands.empty(); }
    [[nodiscard]] band_t& operator[](std::size_t i) { return m_bands[i]; }
    [[nodiscard]] const band_t& operator[](std::size_t i) const { return m_bands[i]; }
    [[nodiscard]] auto begin() const { return m_bands.begin(); }
    [[nodiscard]] auto end() const { return m_bands.end(); }
    [[nodiscard]] auto begin() { return m_bands.begin(); }
    [[nodiscard]] auto end() { return m_bands.end(); }
    void append(const band_t& band) { m_bands.push_back(band); }
    void clear() { m_bands.clear(); }

    [[nodiscard]] QStringList names() const;

    /// Same names in the same order, ignoring case and blanks.
    [[nodiscard]] bool sameNames(const bands_t& other) const;
    [[nodiscard]] bool sameNames(const QStringList& names) const;

    /// Same number of bands, and their centres agree within half a nanometre.
    [[nodiscard]] bool sameCentralWaveLengths(const bands_t& other) const;

    [[nodiscard]] std::size_t garbageBandCount() const;
    void removeGarbage();

    /// Fills each number that is 0 from the band of the same name (ignoring
    /// case and blanks) in `other`.
    void copyData(const bands_t& other);

    /// Whether copyData would change anything, or the names differ.
    [[nodiscard]] bool needsCopyDataFrom(const bands_t& other) const;

    /// \param checkBands  also look into each band: it has a name that no other
    ///     band has (except garbage), and finite numbers, none negative
    /// \param verbose  say why in `error`; otherwise it is left alone
    /// \param allowEmpty  whether no band at all is valid
    [[nodiscard]] bool valid(QString& error, bool checkBands, bool verbose, bool allowEmpty) const;

    /// Writes one element "band" a band into the element that is open, with the
    /// attributes name, wavelength, width and weight (10 digits).
    void saveXML(QXmlStreamWriter& writer) const;

    /// Takes the bands of an element that saveXML wrote into, in place of these.
    void readXML(const QDomElement& element);

    /// Equal band by band, in order.
    bool operator==(const bands_t&) const = default;

private:
    std::vector<band_t> m_bands;
};

namespace band {

/// Red, Green, Blue, without wavelengths: colour cameras do not publish theirs.
[[nodiscard]] LUMO_CAMERADATA_EXPORT bands_t makeRGBBands();

} // namespace band
} // namespace lumo
