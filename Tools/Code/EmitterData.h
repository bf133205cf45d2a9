#pragma once

#include "MKLib/RefCount.h"

#include <memory>
#include <string>
#include <vector>

class ParticleData;
class ParticleGrid;
class vrMKParticle;
class vrMKParticleEmitter;

/// One loaded emitter and its file. It owns the rows of its layers; a handle on a row keeps the emitter alive. Made on
/// the scan's thread, used on the user interface's.
class EmitterData : public std::enable_shared_from_this<EmitterData>
{
public:
    /// `path` is absolute. Takes a reference on the emitter.
    EmitterData(vrMKParticleEmitter *emitter, std::string path);
    EmitterData(const EmitterData &) = delete;
    EmitterData &operator=(const EmitterData &) = delete;
    ~EmitterData();

    /// Makes the next row. Expects that a shared_ptr holds this object.
    std::shared_ptr<ParticleData> Add_Row(ParticleGrid &grid, vrMKParticle *particle);

    vrMKParticleEmitter *Get_Emitter() const { return emitter.Get(); }
    const std::string &Get_Name() const { return emitterName; } ///< as it was when the file was loaded
    const std::string &Get_Path() const { return emitterPath; }
    bool Get_Modified() const { return modified; } ///< unsaved changes exist
    void Set_Modified(bool value) { modified = value; }
    const std::vector<std::unique_ptr<ParticleData>> &Get_Particles() const { return particles; }

    /// Writes the emitter over its file, after making the file writable: with `autoCheckout` at once, otherwise after
    /// asking. The file is emptied before the tree is made, and nothing of the old one is kept. False, told in a
    /// message box, when the file is gone, can't be made writable or the emitter didn't write itself; what the disk
    /// refused goes to the log alone.
    bool Save(bool autoCheckout);

private:
    bool Make_Writable(bool autoCheckout) const;
    bool Write_File() const;

    std::string emitterName;
    bool modified = false;
    SmartPtr<vrMKParticleEmitter> emitter;
    std::vector<std::unique_ptr<ParticleData>> particles;
    std::string emitterPath;
};
