#pragma once

#include "MKLib/Parameters/Parameter.h"

#include <array>

/// A volume to draw points or velocities from. The number is a file format.
enum ShapeTypeEnum : uint32_t
{
    SHAPE_POINT = 0,
    SHAPE_RAY = 1,
    SHAPE_SPHERE = 2,
    SHAPE_BOX = 3,
    SHAPE_SPHERE_CAP = 4,
    SHAPE_CYLINDER = 5,
    SHAPE_TORUS = 6,
    SHAPE_RADIAL = 7, ///< a velocity shape only: outward from the position's shape
    SHAPE_COUNT = 8
};

/// The fields of a shape, in file order; world units, speeds in world units per second.
struct ShapeStruct
{
    uint32_t ShapeType = SHAPE_POINT;
    Vector3 Center{0.0f};                          ///< shape 0
    Vector3 Direction{0.0f, 0.0f, 10.0f};          ///< shape 1
    float A = 0.0f, B = 10.0f;                     ///< shape 1: least and greatest distance along the direction
    float C = 0.0f, D = 10.0f;                     ///< shape 2: inner and outer radius
    Vector3 BoxMinimum{-10.0f}, BoxMaximum{10.0f}; ///< shape 3
    /// 0, 1: shape 4, low and high limit of the cap as fractions of a quarter turn; 2, 3: shape 4, inner and outer
    /// radius; 4: shape 5, radius; 5, 6: shape 5, least and greatest height; 7, 8: shape 6, ring and tube radius; 9,
    /// 10: shape 7, least and greatest speed.
    float E[11] = {0.0f, 0.5f, 0.0f, 10.0f, 10.0f, -10.0f, 10.0f, 10.0f, 5.0f, 0.0f, 10.0f};
};

class ShapeParameterClass final : public ParameterClass
{
public:
    ShapeParameterClass(const char *name, const char *description, ShapeTypeEnum type);

    const ShapeStruct &Get_Value() const { return Value; }
    void Set_Value(const ShapeStruct &value);
    /// Direction scaled to unit length; zero when Direction is.
    const Vector3 &Get_Normal_Direction() const { return NormalDirection; }

    void Copy_From(const ParameterClass &other) override;
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return ParameterType::Shape; }
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    bool Load_Fields(ChunkFile::ChunkFileReaderClass &reader, int firstExtra, int lastExtra);
    void Update_Normal_Direction();

    ShapeStruct Value;
    Vector3 NormalDirection{0.0f};
    std::array<float, 6> SurfaceTable{1.0f}; ///< cumulative surface fractions, made before sampling
};
