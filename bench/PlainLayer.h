#pragma once

#include <cstdint>
#include <memory>
#include <vector>

/// The limit of the steady workload: the same ring, arithmetic and births as its layer has, written as one plain loop a
/// behaviour over separate arrays, with nothing that an engine needs besides.
class PlainLayer
{
public:
    /// `measuresBounds` adds the box and the centroid.
    PlainLayer(int capacity, float rate, float life, bool measuresBounds);
    /// One frame of `dt` seconds.
    void Step(float dt);
    int Get_Live_Count() const { return Count; }
    float Get_Checksum() const;

    /// The births alone, `count` of them from an empty ring.
    void Spawn_All(int count);

private:
    struct Span
    {
        int First;
        int Count;
    };
    template <typename Work>
    void For_Spans(Work &&work);
    void Spawn(int count, float dt);
    float *Take();

    int Capacity;
    float Rate;
    float Life;
    bool MeasuresBounds;
    int Head = 0;
    int Count = 0;
    float Owed = 0.0f;
    uint32_t Seed = 7;
    std::vector<std::unique_ptr<float[]>> Arrays;
    float *X, *Y, *Z, *OldX, *OldY, *OldZ, *VX, *VY, *VZ, *WX, *WY, *WZ;
    float *Age, *MaxAge, *Time, *Width, *Height;
    std::vector<uint32_t> Color, Rotation, ID;
    float Lowest[3] = {}, Highest[3] = {}, Sum[3] = {};
};
