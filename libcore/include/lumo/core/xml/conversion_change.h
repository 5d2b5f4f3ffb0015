// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo {

/// One change that a conversion step made to a document.
struct ConversionChange
{
    /// What was done.
    enum class Kind {
        Renamed,   ///< an element or attribute has another name
        Moved,     ///< an element has another parent, under the same name
        Rewritten, ///< a value has another form, or something was added
        Dropped,   ///< something is missing from the result
    };
    Kind kind = Kind::Renamed;
    /// The place in the old document: "element", "parent/element" or
    /// "element@attribute". The shortest form that is unambiguous; a name may end in
    /// "*".
    QString what;
    QString into;  ///< the place in the new document, in the same form; for Dropped the reason
    int line = 0;  ///< of the first occurrence in the step's input, from 1
    int count = 1; ///< occurrences
};

} // namespace lumo
