#include "TextureMaker/Noise.h"

#include <cmath>
#include <initializer_list>

namespace TextureMaker
{

namespace
{

int Wrap(int cell, int period)
{
    if (period == 0) return cell;
    const int rest = cell % period;
    return rest < 0 ? rest + period : rest;
}

float Fade(float t)
{
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float Mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

/// The offset along one of the twelve directions to the middles of a cube's edges.
float Gradient(uint32_t hash, float x, float y, float z)
{
    const uint32_t which = (hash >> 16) % 12;
    const float sign = (which & 1) != 0 ? -1.0f : 1.0f;
    const float other = (which & 2) != 0 ? -1.0f : 1.0f;
    if (which < 4) return sign * x + other * y;
    return which < 8 ? sign * x + other * z : sign * y + other * z;
}

template <typename Octave>
float Sum_Octaves(float x, float y, float z, int octaves, uint32_t seed, Periods periods, Octave &&octave)
{
    float sum = 0.0f;
    float whole = 0.0f;
    float height = 1.0f;
    for (int index = 0; index < octaves; ++index) {
        sum += octave(Gradient_Noise(x, y, z, seed + static_cast<uint32_t>(index) * 101u, periods)) * height;
        whole += height;
        height *= 0.5f;
        x *= 2.0f;
        y *= 2.0f;
        z *= 2.0f;
        periods = {periods.X * 2, periods.Y * 2, periods.Z * 2};
    }
    return sum / whole;
}

} // namespace

uint32_t Hash(int x, int y, int z, uint32_t seed)
{
    uint32_t word = seed * 0x9E3779B1u;
    for (const int part : {x, y, z}) {
        word ^= static_cast<uint32_t>(part) * 0x85EBCA77u;
        word = (word ^ (word >> 15)) * 0x2C1B3C6Du;
        word = (word ^ (word >> 12)) * 0x297A2D39u;
        word ^= word >> 15;
    }
    return word;
}

float Hash_To_Unit(int x, int y, int z, uint32_t seed)
{
    return static_cast<float>(Hash(x, y, z, seed) >> 8) * (1.0f / 16777216.0f);
}

float Gradient_Noise(float x, float y, float z, uint32_t seed, Periods periods)
{
    const float floorX = std::floor(x);
    const float floorY = std::floor(y);
    const float floorZ = std::floor(z);
    const float restX = x - floorX;
    const float restY = y - floorY;
    const float restZ = z - floorZ;
    const auto corner = [&](int atX, int atY, int atZ) {
        const uint32_t hash =
            Hash(Wrap(static_cast<int>(floorX) + atX, periods.X), Wrap(static_cast<int>(floorY) + atY, periods.Y),
                 Wrap(static_cast<int>(floorZ) + atZ, periods.Z), seed);
        return Gradient(hash, restX - static_cast<float>(atX), restY - static_cast<float>(atY),
                        restZ - static_cast<float>(atZ));
    };
    const float fadeX = Fade(restX);
    const float fadeY = Fade(restY);
    const auto plane = [&](int atZ) {
        return Mix(Mix(corner(0, 0, atZ), corner(1, 0, atZ), fadeX), Mix(corner(0, 1, atZ), corner(1, 1, atZ), fadeX),
                   fadeY);
    };
    return Mix(plane(0), plane(1), Fade(restZ));
}

float Fractal_Noise(float x, float y, float z, int octaves, uint32_t seed, Periods periods)
{
    return 1.4f * Sum_Octaves(x, y, z, octaves, seed, periods, [](float value) { return value; });
}

float Billow_Noise(float x, float y, float z, int octaves, uint32_t seed, Periods periods)
{
    return 1.6f * Sum_Octaves(x, y, z, octaves, seed, periods, [](float value) { return std::fabs(value); });
}

CellDistances Cell_Noise(float x, float y, uint32_t seed)
{
    const int cellX = static_cast<int>(std::floor(x));
    const int cellY = static_cast<int>(std::floor(y));
    CellDistances found{8.0f, 8.0f};
    for (int atY = cellY - 1; atY <= cellY + 1; ++atY)
        for (int atX = cellX - 1; atX <= cellX + 1; ++atX) {
            const float dx = static_cast<float>(atX) + Hash_To_Unit(atX, atY, 0, seed) - x;
            const float dy = static_cast<float>(atY) + Hash_To_Unit(atX, atY, 1, seed) - y;
            const float distance = std::sqrt(dx * dx + dy * dy);
            if (distance < found.Nearest) {
                found.Second = found.Nearest;
                found.Nearest = distance;
            } else if (distance < found.Second) {
                found.Second = distance;
            }
        }
    return found;
}

} // namespace TextureMaker
