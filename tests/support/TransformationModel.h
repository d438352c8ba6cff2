#pragma once

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace marlet::test
{

// What the matrices of layers must be, in plain double precision, from textbook rotations about the three
// axes.
namespace model
{

using Row = std::array<double, 4>;
using Matrix = std::array<Row, 4>;
using Triple = std::array<double, 3>;

constexpr Matrix kIdentity = {Row{1, 0, 0, 0}, Row{0, 1, 0, 0}, Row{0, 0, 1, 0}, Row{0, 0, 0, 1}};

inline Matrix operator*(const Matrix &a, const Matrix &b)
{
    Matrix product{};
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            for (int k = 0; k < 4; ++k)
                product[row][column] += a[row][k] * b[k][column];
    return product;
}

inline Matrix Translation(const Triple &t)
{
    return {Row{1, 0, 0, t[0]}, Row{0, 1, 0, t[1]}, Row{0, 0, 1, t[2]}, Row{0, 0, 0, 1}};
}

inline Matrix Scaling(const Triple &s)
{
    return {Row{s[0], 0, 0, 0}, Row{0, s[1], 0, 0}, Row{0, 0, s[2], 0}, Row{0, 0, 0, 1}};
}

inline Matrix AboutX(double degrees)
{
    const double a = degrees * std::numbers::pi / 180;
    return {Row{1, 0, 0, 0}, Row{0, std::cos(a), -std::sin(a), 0}, Row{0, std::sin(a), std::cos(a), 0},
            Row{0, 0, 0, 1}};
}

inline Matrix AboutY(double degrees)
{
    const double a = degrees * std::numbers::pi / 180;
    return {Row{std::cos(a), 0, std::sin(a), 0}, Row{0, 1, 0, 0}, Row{-std::sin(a), 0, std::cos(a), 0},
            Row{0, 0, 0, 1}};
}

inline Matrix AboutZ(double degrees)
{
    const double a = degrees * std::numbers::pi / 180;
    return {Row{std::cos(a), -std::sin(a), 0, 0}, Row{std::sin(a), std::cos(a), 0, 0}, Row{0, 0, 1, 0},
            Row{0, 0, 0, 1}};
}

/// A layer's values: pixels, degrees and percent.
struct Layer {
    bool flat = false;
    Triple position{};
    Triple anchor{};
    Triple scale = {100, 100, 100};
    Triple orientation{};
    Triple rotation{};
};

inline Matrix Rotation(const Layer &layer)
{
    const auto &[ox, oy, oz] = layer.orientation;
    const auto &[rx, ry, rz] = layer.rotation;
    if (layer.flat)
        return AboutZ(-rz);
    return AboutX(-ox) * AboutY(-oy) * AboutZ(-oz) * AboutX(-rx) * AboutY(-ry) * AboutZ(-rz);
}

inline Matrix Placement(const Layer &layer)
{
    const auto &[x, y, z] = layer.scale;
    return Translation(layer.position) * Rotation(layer) * Scaling({x / 100, y / 100, z / 100});
}

inline Matrix WorldRotation(const std::vector<Layer> &chain)
{
    Matrix rotation = kIdentity;
    for (const Layer &layer : chain)
        rotation = rotation * Rotation(layer);
    return rotation;
}

/// The picture of an asset, from its corner, in pixels of their own shape.
inline Matrix Picture(double width, double height, double pixelAspect)
{
    return Scaling({pixelAspect, 1, 1}) * Translation({-width / 2, -height / 2, 0});
}

/// The content of the last layer of a chain that begins at the root.
inline Matrix World(const std::vector<Layer> &chain)
{
    Matrix world = kIdentity;
    for (const Layer &layer : chain)
        world = world * Placement(layer) * Translation({-layer.anchor[0], -layer.anchor[1], layer.anchor[2]});
    return world;
}

} // namespace model

} // namespace marlet::test
