// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xsd_type_element_index.h"
#include "xml/project_20_21/old_project_element.h"

#include <QStringList>

/// Elements of projects up to 2.0, each brought to the form of 2.1. All throw
/// std::runtime_error for what must not be lost and cannot be converted.
namespace lumo::kpx {

class Changes;

using Positions = XsdTypeElementIndex::Positions;

[[noreturn]] void refuseComplex(const QString& tag);

/// Sorts the children of an element into the order of `positions`. Drops children
/// that are not listed there. Drops repeated children, except for names in
/// `repeatable`.
/// \throws std::runtime_error if a child to be dropped has children itself
void arrange(
    Element& parent, const Positions& positions, const QStringList& repeatable, Changes& changes);

/// Renames an attribute from `before` to `after`. If the element has both, keeps the
/// one that comes first and drops the other.
/// \param path  the element's path, for the report of changes
void renameAttribute(
    Element& element, const QString& path, const QString& before, const QString& after,
    Changes& changes);

/// Replaces the first child `child` by an attribute with the child's value. If the
/// attribute exists already, drops the child. Drops all further children of that name.
/// Children without value, or with children of their own, stay.
/// \param path  the element's path, for the report of changes
void attributeFromChild(
    Element& element, const QString& path, const QString& child, const QString& attribute,
    Changes& changes);

/// Removes all attributes, and reports all but `used` as dropped.
void clearAttributes(Element& element, const QString& path, const QString& used, Changes& changes);

/// Gives the attributes of an element "camera", of whatever parent, their current names.
void renameAttributesOfCamera(Element& camera, const QString& path, Changes& changes);

/// \param positions  of the children, from the schema
void convertImage(Element& image, const Positions& positions, Changes& changes);

/// \param positions  of the children, from the schema
/// \returns false if the camera model is not valid: it is to be dropped
[[nodiscard]] bool convertCamera(Element& camera, const Positions& positions, Changes& changes);

void convertRig(Element& rig, Changes& changes);

/// \param name  of the element in the result
void convertCoordinateSystem(Element& system, const QString& name, Changes& changes);

void convertGcp(Element& gcp, Changes& changes);

/// \returns false if the object is of an unknown type, or not of the shape of its
///     type: it is to be dropped
[[nodiscard]] bool convertUserObject(Element& object, Changes& changes);

/// A time of capture as "yyyy:MM:dd hh:mm:ss". Known are that form itself, the
/// same followed by a colon and parts of the second, and the English form
/// "Tuesday, May 03, 2016 2:05:09 PM".
/// \param[out] known  false if the text is none of these, or no time that exists:
///     the result is then 1970:01:01 00:00:00
[[nodiscard]] QString normalisedTime(const QString& text, bool& known);

} // namespace lumo::kpx
