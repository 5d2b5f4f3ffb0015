// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/xml/camera_params_xml.h"

#include <QDomDocument>
#include <QXmlStreamWriter>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    constexpr std::size_t kVersion = 19;
    QDomDocument document;
    QString error;
    if (!xml::domFromBytes(fuzz::toBytes(data, size), document, error)) {
        return 0;
    }
    const CameraData camera = io::readCamera(document.documentElement(), kVersion);
    QString written;
    QXmlStreamWriter writer(&written);
    io::writeCamera(writer, camera);
    fuzz::require(xml::domFromString(written, document, error), "what is written is XML", error);
    const CameraData back = io::readCamera(document.documentElement(), kVersion);
    fuzz::require(
        back.params.name == camera.params.name && back.params.lensType == camera.params.lensType &&
            back.params.vignetting.size() == camera.params.vignetting.size() &&
            back.params.pixelValues.size() == camera.params.pixelValues.size(),
        "what is written comes back", written);
    return 0;
}
