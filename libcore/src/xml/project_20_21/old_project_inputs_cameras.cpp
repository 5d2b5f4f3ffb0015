// SPDX-License-Identifier: Apache-2.0
// Converting the camera models and rigs of an old project.
#include "lumo/camerageometry/rig_enums.h"
#include "lumo/core/xml/camera_params_xml.h"
#include "xml/camera/old_camera_names.h"
#include "xml/project_20_21/old_project_changes.h"
#include "xml/project_20_21/old_project_inputs.h"

#include <QDomDocument>

#include <optional>

namespace lumo::kpx {
namespace {

void renameChildren(Element& parent, QString (*renamed)(const QString&), Changes& changes)
{
    for (Element& child : parent.children) {
        const QString name = renamed(child.name);
        if (name != child.name) {
            const QString path = parent.name + QLatin1Char('/');
            changes.renamed(path + child.name, path + name, child.line);
            child.name = name;
        }
    }
}

/// The identifier was an attribute, and is an element like the others now.
void moveIdentifier(Element& camera, Changes& changes)
{
    if (const std::optional<QString> id = camera.takeAttribute(QStringLiteral("id"))) {
        changes.moved(QStringLiteral("camera@id"), QStringLiteral("camera/id"), camera.line);
        camera.children.insert(
            camera.children.begin(), {QStringLiteral("id"), *id, {}, {}, camera.line});
    }
}

/// Why a camera model cannot be used, if it cannot.
std::optional<QString> faultOf(const Element& camera)
{
    constexpr std::size_t kLatestCameraDb = 19;
    QDomDocument document;
    const CameraData data = io::readCamera(toDom(document, camera), kLatestCameraDb);
    QString reason;
    return data.params.valid(reason, true) ? std::nullopt : std::optional(reason);
}

/// Before it was an attribute, whether the reference camera is adjusted was an element.
void convertProcessing(Element& processing, Changes& changes)
{
    const QString adjusted = QStringLiteral("adjustRefCamera");
    attributeFromChild(processing, QStringLiteral("rig/processing"), adjusted, adjusted, changes);
    arrange(processing, {}, {}, changes);
    const QString* const mode = processing.attribute(QStringLiteral("mode"));
    if (mode == nullptr) {
        return;
    }
    bool known = false;
    const QString current = text::toString(text::fromOldString(*mode, &known));
    if (!known) {
        changes.dropped(
            QStringLiteral("rig/processing@mode"),
            QStringLiteral("\"%1\" is not a known mode, %2 is used").arg(mode->left(40), current),
            processing.line);
    } else if (*mode != current) {
        changes.rewritten(QStringLiteral("rig/processing@mode"), current, processing.line);
    }
    processing.setAttribute(QStringLiteral("mode"), current);
}

/// The value is that of the first attribute, whatever its name, or else the text.
void convertDetection(Element& detection, Changes& changes)
{
    const QString path = QStringLiteral("rig/cameraDetection");
    const Attribute said =
        detection.attributes.empty() ? Attribute{{}, detection.text} : detection.attributes.front();
    const QString after = QStringLiteral("value");
    if (said.name != after) {
        changes.renamed(
            said.name.isEmpty() ? path : path + QLatin1Char('@') + said.name,
            path + QLatin1Char('@') + after, detection.line);
    }
    clearAttributes(detection, path, said.name, changes);
    detection.attributes = {{after, said.value}};
    detection.text.clear();
}

void convertRigCamera(Element& camera, Changes& changes)
{
    static const Positions positions{{"band", 0}};
    if (camera.name == QLatin1String("camera")) {
        renameAttributesOfCamera(camera, QStringLiteral("rig/camera"), changes);
    }
    if (camera.takeAttribute(QStringLiteral("id"))) {
        changes.dropped(
            QStringLiteral("rig/camera@id"), QStringLiteral("cameras of rigs have names"),
            camera.line);
    }
    arrange(camera, positions, {QStringLiteral("band")}, changes);
}

} // namespace

bool convertCamera(Element& camera, const Positions& positions, Changes& changes)
{
    static const QStringList repeatable{
        QStringLiteral("pixelValue"), QStringLiteral("vignettingPoly"), QStringLiteral("band")};
    renameAttributesOfCamera(camera, camera.name, changes);
    renameChildren(camera, &xml::renamedInCamera, changes);
    moveIdentifier(camera, changes);
    arrange(camera, positions, repeatable, changes);
    if (const std::optional<QString> fault = faultOf(camera)) {
        const QString* const name = camera.attribute(QStringLiteral("name"));
        changes.dropped(
            QStringLiteral("camera \"%1\"").arg(name != nullptr ? *name : QString()), *fault,
            camera.line);
        return false;
    }
    changes.moved(QStringLiteral("camera"), QStringLiteral("inputs/cameras/camera"), camera.line);
    return true;
}

void convertRig(Element& rig, Changes& changes)
{
    static const Positions positions{
        {"processing", 0}, {"cameraDetection", 1}, {"referenceCamera", 2}, {"camera", 3}};
    renameChildren(rig, &xml::renamedInRig, changes);
    arrange(rig, positions, {QStringLiteral("camera")}, changes);
    for (Element& child : rig.children) {
        if (child.name == QLatin1String("processing")) {
            convertProcessing(child, changes);
        } else if (child.name == QLatin1String("cameraDetection")) {
            convertDetection(child, changes);
        } else {
            convertRigCamera(child, changes);
        }
    }
    changes.moved(QStringLiteral("rig"), QStringLiteral("inputs/cameras/rig"), rig.line);
}

} // namespace lumo::kpx
