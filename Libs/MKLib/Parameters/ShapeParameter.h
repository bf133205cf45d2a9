#pragma once

#include "MKLib/Parameters/Parameter.h"

#include <array>

class RandomClass;

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

    /// Draws a point, or a velocity: from the volume, or from its surface when `hollow`. `even` spreads the draws of
    /// round shapes by their space. A radial velocity goes outward from `positionShape`, if there is one, at
    /// `localPosition`, which was drawn from it; both matter to no other shape. How many draws it takes depends on the
    /// shape and the flags alone, but for the generator's own repeats. Bounds in the wrong order are swapped; other
    /// fields without a meaning, like negative radii, may yield what is no number. The zero vector for a type that
    /// there isn't.
    Vector3 Sample(RandomClass &random, bool hollow, bool even, const ShapeParameterClass *positionShape,
                   const Vector3 &localPosition) const;
    /// Works out how a hollow sample is shared out among the shape's surfaces. After loading; setting the value does
    /// it.
    void Prepare_Surface_Table();
    /// Whether no draw of a sample has its bounds in the wrong order.
    bool Are_Bounds_Ordered() const;

    void Copy_From(const ParameterClass &other) override;
    bool Save(ChunkFile::ChunkFileWriterClass &writer) const override;
    bool Load_Plain(ChunkFile::ChunkFileReaderClass &reader) override;
    ParameterType Get_Type() const override { return ParameterType::Shape; }
    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    bool Load_Fields(ChunkFile::ChunkFileReaderClass &reader, int firstExtra, int lastExtra);
    void Update_Normal_Direction();

    Vector3 Sample_Ray(RandomClass &random, bool hollow) const;
    Vector3 Sample_Sphere(RandomClass &random, bool hollow, bool even) const;
    Vector3 Sample_Box(RandomClass &random, bool hollow) const;
    Vector3 Sample_Sphere_Cap(RandomClass &random, bool hollow, bool even) const;
    Vector3 Sample_Cylinder(RandomClass &random, bool hollow, bool even) const;
    Vector3 Sample_Torus(RandomClass &random, bool hollow, bool even) const;
    Vector3 Sample_Radial(RandomClass &random, bool hollow, bool even) const;
    Vector3 Sample_Outward(RandomClass &random, bool even, const ShapeParameterClass &from,
                           const Vector3 &localPosition) const;
    void Prepare_Sphere_Table();
    void Prepare_Box_Table();
    void Prepare_Sphere_Cap_Table();
    float Draw_Speed(RandomClass &random, bool even) const;
    /// Percent of the hollow samples that the first of two surfaces gets.
    int Get_First_Surface_Chance() const;
    /// The first of `count` surfaces whose fraction reaches `draw`, or `count`.
    int Find_Surface(float draw, int count) const;

    ShapeStruct Value;
    Vector3 NormalDirection{0.0f};
    std::array<float, 6> SurfaceTable{1.0f}; ///< cumulative surface fractions, made before sampling
};
