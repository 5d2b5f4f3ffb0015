// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point_xy.hpp>

namespace lumo {

/// A region of an image in whole pixels: from its first column and row to one
/// past its last column and row. Default-built at (0, 0) to (0, 0).
using box = boost::geometry::model::box<boost::geometry::model::d2::point_xy<int>>;

} // namespace lumo
