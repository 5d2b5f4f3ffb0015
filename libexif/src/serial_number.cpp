// SPDX-License-Identifier: Apache-2.0
#include "serial_number.h"

#include "exif_text.h"
#include "maker_note.h"

#include <algorithm>

namespace lumo::exif {
namespace {

/// Cameras without a number of their own write zeros.
bool isSerialNumber(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar character) {
        return character.isLetterOrNumber() && character != QLatin1Char('0');
    });
}

/// The tag's text, or its number if it is one.
QString textOrNumber(const TagReader& tags, const char* key)
{
    const TagValue* value = tags.find(key);
    if (value == nullptr) {
        return {};
    }
    if (value->bytes.isEmpty() && value->numbers.size() == 1) {
        return QString::number(value->numbers.front(), 'f', 0);
    }
    return tags.text(key);
}

/// "NO= 1000f46" of older Nikon cameras.
QString withoutLabel(QString text)
{
    const QLatin1String label("NO=");
    return text.startsWith(label) ? text.mid(label.size()).trimmed() : text;
}

/// CRW files: a number and one without meaning. Compact cameras have others there.
QString ofCrw(const TagReader& tags)
{
    const TagValue* value = tags.find("Exif.Canon.SerialNumber");
    const bool isCrw = value != nullptr && value->bytes.isEmpty() && value->numbers.size() == 2;
    return isCrw && tags.text("Exif.Image.Model").contains(QLatin1String("EOS"))
               ? QString::number(value->numbers.front(), 'f', 0)
               : QString();
}

} // namespace

QString findSerialNumber(const TagReader& tags, const XmpProperties& xmp)
{
    // 0xa431 is BodySerialNumber, which some programs move to the first directory.
    for (const char* key :
         {"Exif.Photo.BodySerialNumber", "Exif.Image.0xa431", "Exif.Image.CameraSerialNumber",
          "Exif.Canon.SerialNumber", "Exif.Nikon3.SerialNumber", "Exif.Nikon3.SerialNO",
          "Exif.OlympusEq.SerialNumber", "Exif.Olympus.SerialNumber2", "Exif.Olympus.SerialNumber1",
          "Exif.Pentax.SerialNumber", "Exif.Sigma.SerialNumber"}) {
        const QString text = withoutLabel(textOrNumber(tags, key));
        if (isSerialNumber(text)) {
            return text;
        }
    }
    for (const QString& text : {ofCrw(tags), findMakerNoteSerialNumber(tags)}) {
        if (isSerialNumber(text)) {
            return text;
        }
    }
    for (const char* property :
         {"exifEX:BodySerialNumber", "aux:SerialNumber", "Camera:SerialNumber",
          "drone-dji:CameraSerialNumber"}) {
        const QString text = xmp.text(property);
        if (isSerialNumber(text)) {
            return text;
        }
    }
    return {};
}

} // namespace lumo::exif
