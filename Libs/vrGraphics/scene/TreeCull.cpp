#include "vrGraphics/scene/TreeCull.h"

#include "vrGraphics/drivercommon/vrCamera.h"

#include <glm/common.hpp>

#include <algorithm>

namespace
{

constexpr int LEAF_SIZE = 4;
/// Boxes whose surface has grown by this factor overlap too much to be of use.
constexpr float WORN_OUT = 2.0f;
/// Part of its size and place by which a node's box is larger than what it holds, so that rounding loses nothing.
constexpr float SLACK = 1e-5f;

bool Is_Valid_Box(const vrBounds &box)
{
    return Is_Valid(box.Center) && Is_Valid(box.Extent);
}

} // namespace

void TreeCull::Take_Box(Entry &entry)
{
    const bool hadBox = entry.HasBox;
    entry.HasBox = entry.Renderable->Get_Cull_Box(entry.Box) && Is_Valid_Box(entry.Box);
    NeedsBuild |= entry.HasBox != hadBox;
    NeedsFit = true;
}

void TreeCull::Insert(vrRenderable &renderable, uint64_t order)
{
    Entries.push_back({&renderable, order, {}, false});
    Take_Box(Entries.back());
    NeedsBuild = true;
}

void TreeCull::Remove(const vrRenderable &renderable)
{
    NeedsBuild |= std::erase_if(Entries, [&](const Entry &entry) { return entry.Renderable == &renderable; }) > 0;
}

void TreeCull::Refresh_Bounds()
{
    for (Entry &entry : Entries) Take_Box(entry);
}

void TreeCull::Refresh_Bounds(const vrRenderable &renderable)
{
    for (Entry &entry : Entries)
        if (entry.Renderable == &renderable) Take_Box(entry);
}

void TreeCull::Prepare()
{
    if (NeedsBuild) return Build();
    if (NeedsFit && Fit() > BuiltSurface * WORN_OUT) Build();
    NeedsFit = false;
}

void TreeCull::Build()
{
    NeedsBuild = NeedsFit = false;
    Nodes.clear();
    const auto unbounded =
        std::partition(Entries.begin(), Entries.end(), [](const Entry &entry) { return entry.HasBox; });
    const int count = static_cast<int>(unbounded - Entries.begin());
    if (count > 0) Build_Node(0, count);
    BuiltSurface = Fit();
}

int TreeCull::Build_Node(int first, int last)
{
    const int index = static_cast<int>(Nodes.size());
    Nodes.push_back({{}, first, last - first});
    if (last - first <= LEAF_SIZE) return index;
    const auto begin = Entries.begin() + first;
    const auto end = Entries.begin() + last;
    Vector3 low = begin->Box.Center;
    Vector3 high = low;
    for (auto entry = begin; entry != end; ++entry) {
        low = glm::min(low, entry->Box.Center);
        high = glm::max(high, entry->Box.Center);
    }
    const Vector3 size = high - low;
    const int axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
    const int middle = first + (last - first) / 2;
    std::nth_element(begin, Entries.begin() + middle, end, [axis](const Entry &left, const Entry &right) {
        return left.Box.Center[axis] < right.Box.Center[axis];
    });
    Build_Node(first, middle);
    const int second = Build_Node(middle, last);
    Nodes[static_cast<size_t>(index)].First = second;
    Nodes[static_cast<size_t>(index)].Count = 0;
    return index;
}

/// Children stand behind their parents.
float TreeCull::Fit()
{
    float surface = 0.0f;
    for (size_t index = Nodes.size(); index-- > 0;) {
        Node &node = Nodes[index];
        if (node.Count == 0) {
            const Box &left = Nodes[index + 1].Bounds;
            const Box &right = Nodes[static_cast<size_t>(node.First)].Bounds;
            node.Bounds = {glm::min(left.Low, right.Low), glm::max(left.High, right.High)};
        } else {
            for (int at = 0; at < node.Count; ++at) {
                const vrBounds &box = Entries[static_cast<size_t>(node.First + at)].Box;
                const Vector3 slack = (glm::abs(box.Center) + box.Extent) * SLACK;
                const Vector3 low = box.Center - box.Extent - slack;
                const Vector3 high = box.Center + box.Extent + slack;
                node.Bounds.Low = at == 0 ? low : glm::min(node.Bounds.Low, low);
                node.Bounds.High = at == 0 ? high : glm::max(node.Bounds.High, high);
            }
        }
        const Vector3 size = node.Bounds.High - node.Bounds.Low;
        surface += size.x * size.y + size.y * size.z + size.z * size.x;
    }
    return surface;
}

void TreeCull::Find_Visible(const vrCamera &camera, std::vector<const Entry *> &visible)
{
    Prepare();
    if (!Nodes.empty()) Visit(camera, 0, visible);
    for (auto entry = Entries.rbegin(); entry != Entries.rend() && !entry->HasBox; ++entry) visible.push_back(&*entry);
}

void TreeCull::Visit(const vrCamera &camera, int index, std::vector<const Entry *> &visible) const
{
    const Node &node = Nodes[static_cast<size_t>(index)];
    const Box &box = node.Bounds;
    if (!camera.Sees({(box.Low + box.High) * 0.5f, (box.High - box.Low) * 0.5f})) return;
    if (node.Count == 0) {
        Visit(camera, index + 1, visible);
        Visit(camera, node.First, visible);
        return;
    }
    for (int at = 0; at < node.Count; ++at) {
        const Entry &entry = Entries[static_cast<size_t>(node.First + at)];
        if (camera.Sees(entry.Box)) visible.push_back(&entry);
    }
}
