// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/camera_params.h"

#include <utility>

namespace lumo {

void CameraParams::clearData()
{
    *this = CameraParams();
}

void CameraParams::setImageSize(std::size_t width, std::size_t height)
{
    imageWidth = width;
    imageHeight = height;
}

void CameraParams::setVignettingModels(const std::map<int, VignettingData>& models)
{
    vignetting = models;
}

double CameraParams::mm2pixel(double mm) const
{
    // Without a pixel size 0, which callers treat as unknown, instead of infinity.
    return pixelSize == 0.0 ? 0.0 : mm / pixelSize;
}

std::array<double, 2> CameraParams::principalPointPixel() const
{
    return {mm2pixel(principalPointXMm), mm2pixel(principalPointYMm)};
}

void CameraParams::setPrincipalPointPixel(const std::array<double, 2>& pixels)
{
    principalPointXMm = pixel2mm(pixels[0]);
    principalPointYMm = pixel2mm(pixels[1]);
}

double CameraParams::focalLengthPixel() const
{
    return mm2pixel(perspective.focalLengthMm);
}

void CameraParams::setFocalLengthPixel(double pixels)
{
    perspective.focalLengthMm = pixel2mm(pixels);
}

bool CameraParams::equalImageSize(std::size_t width, std::size_t height) const
{
    return (imageWidth == width && imageHeight == height) ||
           (imageWidth == height && imageHeight == width);
}

CameraParams CameraParams::turned() const
{
    // A clockwise quarter turn takes (x, y), seen from the centre, to (-y, x).
    // Distances to the left edge become distances to the upper edge, and those to the lower
    // edge distances to the left one.
    CameraParams result = *this;
    std::swap(result.imageWidth, result.imageHeight);
    result.principalPointXMm = pixel2mm(static_cast<double>(imageHeight)) - principalPointYMm;
    result.principalPointYMm = principalPointXMm;
    result.perspective.tangentialT1 = perspective.tangentialT2;
    result.perspective.tangentialT2 = -perspective.tangentialT1;
    result.fisheye.c = fisheye.f;
    result.fisheye.d = -fisheye.e;
    result.fisheye.e = -fisheye.d;
    result.fisheye.f = fisheye.c;
    return result;
}

} // namespace lumo
