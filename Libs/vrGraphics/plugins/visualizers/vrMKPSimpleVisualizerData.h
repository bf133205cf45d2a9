#pragma once

#include "MKLib/MKMath/Mat3D.h"
#include "vrGraphics/particle/vrMKPBufferPluginData.h"

#include <cstdint>
#include <vector>

/// A visible particle in the order of its draw.
struct vrMKPSortEntry
{
    float Key;      ///< not written where nothing is sorted
    uint32_t Index; ///< the slot in the buffer

    friend bool operator<(const vrMKPSortEntry &left, const vrMKPSortEntry &right) { return left.Key < right.Key; }
};

/// What a visualizer keeps for one buffer: the vertices between their building and their draw, which live in scratch
/// memory and so no longer than the driver's frame.
class vrMKPSimpleVisualizerData : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override { Drop_Vertices(); }
    void Set_Vertices(void *vertices, int count, int vertexSize)
    {
        VertexCount = count;
        Vertices = vertices;
        VertexBytes = count * vertexSize;
    }
    void Drop_Vertices() { Set_Vertices(nullptr, 0, 0); }

    Mat3DClass SavedCamera;  ///< while a depth offset is in force
    int32_t VertexCount = 0; ///< 0 when nothing is pending
    void *Vertices = nullptr;
    int32_t VertexBytes = 0;
    // Kept between frames, so that no frame allocates once they are long enough.
    std::vector<vrMKPSortEntry> SortEntries; ///< the visible particles in draw order
    std::vector<vrMKPSortEntry> SortRoom;    ///< the other half of the sort
};
