#pragma once

#include "vrGraphics/drivercommon/vrBounds.h"
#include "vrGraphics/scene/vrRenderable.h"

#include <cstdint>
#include <vector>

class vrCamera;

/// Finds the renderables that a camera may see without asking each: a tree of boxes, halved along the longest side. It
/// is built anew when things came or went, or moved so far that its boxes overlap too much; until then a refresh fits
/// the boxes to where the things are. Nothing allocates while things only move. One thread at a time.
class TreeCull
{
public:
    /// A thing that a camera may see, with the place in the order of adding that its scene knows it by.
    struct Entry
    {
        vrRenderable *Renderable;
        uint64_t Order;
        vrBounds Box;
        bool HasBox; ///< without one it is always visible
    };

    /// Borrows it. Expects it not to be here.
    void Insert(vrRenderable &renderable, uint64_t order);
    /// Does nothing for one that isn't here.
    void Remove(const vrRenderable &renderable);
    int Get_Count() const { return static_cast<int>(Entries.size()); }
    /// Asks all things, or one, for their boxes.
    void Refresh_Bounds();
    void Refresh_Bounds(const vrRenderable &renderable);
    /// Appends what the camera may see, in no order. Expects boxes that are refreshed.
    void Find_Visible(const vrCamera &camera, std::vector<const Entry *> &visible);

private:
    struct Box
    {
        Vector3 Low;
        Vector3 High;
    };
    /// A leaf has `Count` entries from `First` on. Another one has a count of 0, its first child right behind it and
    /// the second at `First`.
    struct Node
    {
        Box Bounds;
        int First;
        int Count;
    };

    void Take_Box(Entry &entry);
    void Prepare();
    void Build();
    int Build_Node(int first, int last);
    /// The surface of all nodes, after their boxes were fitted to the entries.
    float Fit();
    void Visit(const vrCamera &camera, int node, std::vector<const Entry *> &visible) const;

    std::vector<Entry> Entries; ///< those with a box first, in the order of the leaves
    std::vector<Node> Nodes;
    bool NeedsBuild = false;
    bool NeedsFit = false;
    float BuiltSurface = 0.0f;
};
