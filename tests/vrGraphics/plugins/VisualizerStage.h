#pragma once

#include "BufferBuilder.h"
#include "PluginBuilders.h"

#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrRenderContext.h"
#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"
#include "vrGraphics/plugins/visualizers/vrMKPVisualizer.h"

#include <vector>

namespace MKTest
{

/// A visualizer with a buffer to draw and scratch memory for it, seen from (0, 0, 10) down the z axis, x to the right.
struct VisualizerStage
{
    BufferBuilder Built;
    vrPreRenderContext Context;
    SmartPtr<vrMKPPlugin> Plugin;

    explicit VisualizerStage(int kind, int capacity = 16, size_t scratchBytes = ParticleScratch::DEFAULT_BYTES)
        : Built(capacity), Plugin(Make_Plugin(kind))
    {
        ParticleScratch::Start(scratchBytes);
        Context.Camera = Mat3DClass::From_Translation({0.0f, 0.0f, 10.0f});
        Built.Buffer->VisualizerData = Get_Visualizer().Create_Buffer_Data(Built.State);
    }
    ~VisualizerStage() { ParticleScratch::Shutdown(); }

    vrMKPVisualizer &Get_Visualizer() const { return static_cast<vrMKPVisualizer &>(*Plugin); }
    vrMKPBuffer &Get_Buffer() const { return *Built.Buffer; }
    vrMKPSimpleVisualizerData &Get_Data() const
    {
        return static_cast<vrMKPSimpleVisualizerData &>(*Built.Buffer->VisualizerData);
    }
    void Set(const char *name, const Value &value) { Set_Value(*Plugin, name, value); }

    /// A particle with half a width of 2 and half a height of 1, which takes the texture from (0.25, 0.5) to
    /// (0.75, 0.75).
    int Add(const Vector3 &position)
    {
        const int slot = Built.Add(position);
        vrMKPBuffer &buffer = Get_Buffer();
        buffer.Size[slot] = {2.0f, 1.0f};
        buffer.UV[slot] = {0.25f, 0.5f};
        buffer.DUV[slot] = {0.5f, 0.25f};
        return slot;
    }
    /// Selects and builds; empty when nothing is pending, or when the layout is another one.
    template <typename Vertex>
    std::vector<Vertex> Build()
    {
        Get_Visualizer().Select_Visible_Particles(Get_Buffer(), Context);
        Get_Visualizer().Pre_Visualize(Get_Buffer(), Context);
        const vrMKPSimpleVisualizerData &data = Get_Data();
        if (data.VertexBytes != data.VertexCount * static_cast<int>(sizeof(Vertex))) return {};
        const auto *vertices = static_cast<const Vertex *>(data.Vertices);
        return {vertices, vertices + data.VertexCount};
    }
    /// The slots in the order of the last draw.
    std::vector<uint32_t> Get_Order() const
    {
        std::vector<uint32_t> slots;
        for (const vrMKPSortEntry &entry : Get_Data().SortEntries) slots.push_back(entry.Index);
        return slots;
    }
};

} // namespace MKTest
