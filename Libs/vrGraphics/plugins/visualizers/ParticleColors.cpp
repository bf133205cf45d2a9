#include "vrGraphics/plugins/visualizers/ParticleColors.h"

#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/particle/ParticleMath.h"

namespace
{

constexpr float UNIT_BYTE = 0.003921569f; ///< 1 / 255
constexpr auto LAST_ENTRY = static_cast<float>(GAMMA_TABLE_RESOLUTION);

MK_INLINE float Channel(vrColor color, int shift)
{
    return static_cast<float>(static_cast<int32_t>((color >> shift) & 0xff)) * UNIT_BYTE;
}

/// What a table of the entries i / 1024 makes of a channel in 0 to 1.
MK_INLINE uint32_t Byte_By_Identity(float channel)
{
    const auto entry = static_cast<int32_t>(channel * LAST_ENTRY + 0.5f);
    return static_cast<uint32_t>(static_cast<int32_t>(static_cast<float>(entry) * (1.0f / LAST_ENTRY) * 255.0f));
}

MK_INLINE uint32_t Byte_By_Table(const float *table, float channel)
{
    const float raised = channel > 0.0f ? channel : 0.0f;
    const auto entry = static_cast<int32_t>((raised < 1.0f ? raised : 1.0f) * LAST_ENTRY + 0.5f);
    return Particle::Color_Byte(table[entry]);
}

/// A multiplier may brighten: what is brighter than white is white, and not what is left of it in a byte.
MK_INLINE uint32_t Limited_Byte(float channel)
{
    return static_cast<uint32_t>(static_cast<int32_t>(Particle::Clamp_01(channel) * 255.0f));
}

MK_SIMD void Multiply(vrColor *__restrict to, const vrColor *__restrict from, int count, RGBAClass by)
{
    for (int at = 0; at < count; ++at) {
        const vrColor color = from[at];
        to[at] = Limited_Byte(Channel(color, 0) * by.R) | Limited_Byte(Channel(color, 8) * by.G) << 8 |
                 Limited_Byte(Channel(color, 16) * by.B) << 16 | Limited_Byte(Channel(color, 24) * by.A) << 24;
    }
}

MK_SIMD void Apply_Identity(vrColor *colors, int count)
{
    for (int at = 0; at < count; ++at) {
        const vrColor color = colors[at];
        colors[at] = Byte_By_Identity(Channel(color, 0)) | Byte_By_Identity(Channel(color, 8)) << 8 |
                     Byte_By_Identity(Channel(color, 16)) << 16 | (color & 0xff000000u);
    }
}

MK_SIMD void Make_Bytes(uint32_t *__restrict bytes, const float *__restrict table)
{
    for (uint32_t byte = 0; byte < 256; ++byte) bytes[byte] = Byte_By_Table(table, Channel(byte, 0));
}

MK_SIMD void Apply_Bytes(vrColor *__restrict colors, const uint32_t *__restrict bytes, int count)
{
    for (int at = 0; at < count; ++at) {
        const vrColor color = colors[at];
        colors[at] = bytes[color & 0xff] | bytes[(color >> 8) & 0xff] << 8 | bytes[(color >> 16) & 0xff] << 16 |
                     (color & 0xff000000u);
    }
}

template <bool IS_IDENTITY>
MK_SIMD void Fade(vrColor *__restrict to, const vrColor *__restrict from, const float *__restrict fades,
                  const float *__restrict table, int count, RGBAClass by)
{
    const auto byte = [table](float channel) __attribute__((always_inline))
    {
        if constexpr (IS_IDENTITY) return Byte_By_Identity(Particle::Clamp_01(channel));
        return Byte_By_Table(table, channel);
    };
    for (int at = 0; at < count; ++at) {
        const vrColor color = from[at];
        const float fade = fades[at];
        to[at] = byte(Channel(color, 0) * by.R * fade) | byte(Channel(color, 8) * by.G * fade) << 8 |
                 byte(Channel(color, 16) * by.B * fade) << 16 | Limited_Byte(Channel(color, 24) * by.A * fade) << 24;
    }
}

} // namespace

void vrMKPColorPath::Begin(const RGBAClass &multiplier)
{
    Multiplier = multiplier;
    Table = &vrGraphicsDriver::Get_Gamma_Table(0);
    IsIdentity = vrGraphicsDriver::Get_Gamma() == 1.0f;
    if (!IsIdentity) Make_Bytes(Bytes.data(), Table->Entries.data());
}

void vrMKPColorPath::Convert(vrColor *to, const vrColor *from, int count) const
{
    Multiply(to, from, count, Multiplier);
    if (IsIdentity)
        Apply_Identity(to, count);
    else
        Apply_Bytes(to, Bytes.data(), count);
}

void vrMKPColorPath::Convert_Faded(vrColor *to, const vrColor *from, const float *fades, int count) const
{
    if (IsIdentity)
        Fade<true>(to, from, fades, nullptr, count, Multiplier);
    else
        Fade<false>(to, from, fades, Table->Entries.data(), count, Multiplier);
}
