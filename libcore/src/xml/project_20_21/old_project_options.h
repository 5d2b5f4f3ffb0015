// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/xsd_type_element_index.h"
#include "xml/project_20_21/old_project_element.h"

#include <array>
#include <map>

namespace lumo::kpx {

class Changes;

/// The options of a project or template, each in a section. The section is the first
/// one whose type in the schema lists the option.
class OptionSections
{
public:
    explicit OptionSections(const XsdTypeElementIndex& index);

    /// Gives an element of the old document its current name and section. Of several
    /// elements for one option the first is used; the others are dropped. Elements
    /// that no section lists are dropped, too.
    /// \returns whether it was placed
    bool place(Element element, Changes& changes);

    /// As place(element, changes), for an element that has its current name already.
    /// \param before  its name in the old document
    bool placeRenamed(const QString& before, Element element, Changes& changes);

    /// Whether an option of this current name was placed.
    [[nodiscard]] bool has(const QString& name) const;

    /// Writes the element "options", each section in the schema's order.
    void write(QXmlStreamWriter& writer) const;

private:
    /// By their position in the section's type.
    using Section = std::multimap<int, Element>; // a name listed twice may share a position
    static constexpr std::array<const char*, 4> kNames{"initial", "dense", "ortho", "index"};

    std::array<XsdTypeElementIndex::Positions, kNames.size()> m_positions;
    std::array<Section, kNames.size()> m_sections;
    std::map<QString, QString> m_placed; ///< current name -> name in the old document
};

} // namespace lumo::kpx
