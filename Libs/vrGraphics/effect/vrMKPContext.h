#pragma once

/// The process-wide switches of the particle system.
struct vrMKPContext
{
    /// In an editor each clone of an effect owns its plugins, so that an edit changes one instance alone; otherwise all
    /// instances share one set. False at the start. Set through `vrMKPRenderable::Set_In_Editor`, before effects load.
    static bool InEditor;
};
