#pragma once

#include "common/EmitterBuilder.h"

#include "MKLib/LoadReport.h"
#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace MKTest
{

/// An emitter that was loaded from bytes, with all that the load had to say.
struct LoadedEmitter
{
    SmartPtr<vrMKParticleEmitter> emitter;
    bool result = false;
    std::vector<LoadReport::Finding> findings;

    vrMKParticleEmitter *operator->() const { return emitter.Get(); }
    /// The renderable as a T, or a test failure's exception.
    template <typename T>
    T &Get(int index) const
    {
        T *renderable = MK_Dynamic_Cast<T>(emitter->Get_Particle_Renderable(index).Get());
        if (!renderable) throw std::runtime_error("no such renderable");
        return *renderable;
    }
    vrMKParticleGroup &Group_At(int index) const { return Get<vrMKParticleGroup>(index); }
    vrMKParticle &Layer_At(int group, int layer) const { return *Group_At(group).Get_Particle(layer); }
    /// Whether some finding has these parts.
    testing::AssertionResult Has_Finding(std::string_view place, std::string_view found, std::string_view result) const;
    std::string Describe_Findings() const;
};

/// Opens the first chunk and loads it as an emitter, as the asset manager does. The result is that of load and closing.
LoadedEmitter Load_Emitter(const Bytes &file, std::string_view name = "Art\\Models\\smoke.vro");
Bytes Save_Emitter(vrMKParticleEmitter &emitter, uint32_t mode = 0);

/// A file with every kind of renderable, plugins in every slot, texts and changed values, as a save of ours writes it.
Bytes Rich_File(uint32_t mode = 0);
/// One group with one layer, for damage of every kind.
Bytes Small_File(uint32_t mode = 0);

int Plugin_ID(const vrMKPPlugin *plugin); ///< -1 for null
std::vector<int> Modifier_IDs(const vrMKParticle &layer);

/// Sets the editor mode for as long as it lives.
class EditorMode
{
public:
    explicit EditorMode(bool inEditor);
    EditorMode(const EditorMode &) = delete;
    EditorMode &operator=(const EditorMode &) = delete;
    ~EditorMode();

private:
    bool Before;
};

} // namespace MKTest
