#pragma once

/// The arithmetic of "Sequenced UV". Private to its source.

#include "vrGraphics/particle/ParticleMath.h"

/// A run of frames over the cells of a texture sheet, which is a grid of cells of one size. Made for a run of slots.
/// Numbers of frames and cells are floats, so that none is out of range.
struct vrMKPCellSequence
{
    /// `start` is the first cell (u, v, du, dv); a negative size shows the same cell mirrored. False for a sheet that
    /// has no cells or no place for the start, and for less than one frame.
    bool Set_Sheet(const Vector4 &start, float frames);
    /// 0 loops or less go on for ever.
    void Set_Loops(float loops, bool isReverse, bool isPingPong);
    /// Call after `Set_Sheet`. By bits of the ID, or else as the size of the first cell says.
    void Set_Flips(bool isRandom);
    /// Origins and sizes are pairs of floats. Particles whose loops are over, or that have no time, keep what they
    /// show.
    void Write(float *origins, float *sizes, const float *times, const uint32_t *ids, int count) const;

    float FramesPerTime = 0.0f; ///< of the `times`
    float RandomFrames = 0.0f;  ///< the most that an ID is ahead

    // What the functions above set.
    Vector2 Size;   ///< of a cell as told, with its signs
    Vector2 Cell;   ///< without
    Vector2 Offset; ///< what the start stands off the grid
    float CellsPerRow;
    float CellCount;
    float FirstCell; ///< number of the first cell
    float FrameCount;
    float LoopsPerFrame;
    float LoopLimit;
    uint32_t ReverseBit = 0;
    uint32_t PingPongBit = 0;
    uint32_t RandomFlipBit = 0;
    uint32_t FlipU = 0; ///< 1 where all are mirrored
    uint32_t FlipV = 0;
    /// Whether cell numbers are whole numbers, so small that the quick forms of the arithmetic are exact.
    bool IsRegular = false;
};
