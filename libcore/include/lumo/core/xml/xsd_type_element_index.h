// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QString>

#include <map>
#include <memory>

namespace lumo {

/// The elements of six complex types of a project schema. Maps each element's name
/// to its position in its type, from 0, in the order of the schema. If a type lists
/// a name twice, the position is the number of different names before the last
/// occurrence. The map of a type is empty if the schema does not declare the type, or
/// declares it with attributes other than its name.
class LUMO_CORE_EXPORT XsdTypeElementIndex
{
public:
    using Positions = std::map<QString, int>; ///< by element name, from 0

    /// Reads the schema; the file stays open as long as the index lives.
    /// \throws std::runtime_error "Xsd file could not be opened", "Error parsing
    ///     XSD. Start of document not found", or "Error parsing XSD. line L: reason"
    explicit XsdTypeElementIndex(const QString& xsdFile);
    XsdTypeElementIndex(const XsdTypeElementIndex&) = delete;
    XsdTypeElementIndex& operator=(const XsdTypeElementIndex&) = delete;
    ~XsdTypeElementIndex();

    [[nodiscard]] const Positions& imageElements() const;
    [[nodiscard]] const Positions& cameraElements() const;
    [[nodiscard]] const Positions& indexOptionsElements() const;
    [[nodiscard]] const Positions& orthoOptionsElements() const;
    [[nodiscard]] const Positions& denseOptionsElements() const;
    [[nodiscard]] const Positions& initialOptionsElements() const;

private:
    class State;
    std::unique_ptr<State> m_state;
};

} // namespace lumo
