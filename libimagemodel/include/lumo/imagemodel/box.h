// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point_xy.hpp>

namespace lumo {

/// A region of an image in whole pixels. min_corner() is the first column (x) and row (y)
/// of the region, max_corner() one past the last. Value-initialised, `box{}`, it is empty
/// at (0, 0).
using box = boost::geometry::model::box<boost::geometry::model::d2::point_xy<int>>;

} // namespace lumo
