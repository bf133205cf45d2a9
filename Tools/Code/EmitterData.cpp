#include "Code/EmitterData.h"

#include "Code/Application.h"
#include "Code/ManagedUtility.h"
#include "Code/ParticleData.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Files.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <utility>

using MKDebug::LogLevel;

namespace
{

MKDebug::Logger SaveLog("FlareTrimLog");

/// zlib, not sectioned, not validated, native byte order.
constexpr uint32_t SAVE_MODE = 129;
constexpr uint32_t SAVE_COMPRESSION_LEVEL = 6;

constexpr const char *CANT_CHECK_OUT_CAPTION = "Unable to check out file.";
constexpr const char *CANT_CHECK_OUT_TEXT =
    "Unable to check out file.\nMake sure that it has been added to Perforce and is checked out, or that the Read-only "
    "tag hasn't been set in Windows.";

/// The box doesn't name the file, so the log does.
bool Fail(const char *text, const std::string &path)
{
    MK_LOG(SaveLog, LogLevel::Error, "%s: %s", path.c_str(), text);
    Application::Get_Instance().Show_Message_Box(text, "Flare Trim Error", MessageBoxButtons::OK,
                                                 MessageBoxIcon::Error);
    return false;
}

/// The tool stands still for as long as `p4` takes.
bool Check_Out(const std::string &path)
{
    Application &application = Application::Get_Instance();
    application.Begin_Wait("Waiting for p4 edit " + path);
    const bool writable = ManagedUtility::Cmd::Check_Out(path);
    application.End_Wait();
    return writable;
}

} // namespace

EmitterData::EmitterData(vrMKParticleEmitter *source, std::string path)
    : emitterName(std::string_view(source->Get_Name())), emitter(source), emitterPath(std::move(path))
{
}

EmitterData::~EmitterData() = default;

std::shared_ptr<ParticleData> EmitterData::Add_Row(ParticleGrid &grid, vrMKParticle *particle)
{
    particles.push_back(std::make_unique<ParticleData>(grid, particle, *this));
    return {shared_from_this(), particles.back().get()};
}

bool EmitterData::Save(bool autoCheckout)
{
    // A file whose name differs in case alone would be found too, and isn't the one that was scanned.
    const bool isThere = MKPlatform::File_Exists(emitterPath) && MKPlatform::To_System_Path(emitterPath) == emitterPath;
    if (!isThere) return Fail("File not found!", emitterPath);
    if (MKPlatform::File_Is_Read_Only(emitterPath) && !Make_Writable(autoCheckout)) {
        MK_LOG(SaveLog, LogLevel::Error, "%s: it is read-only and wasn't checked out", emitterPath.c_str());
        return false;
    }
    return Write_File() || Fail("Failed to save emitter!", emitterPath);
}

bool EmitterData::Make_Writable(bool autoCheckout) const
{
    Application &application = Application::Get_Instance();
    if (!autoCheckout) {
        const std::string question =
            "Checkout '" + std::string(MKPlatform::Path_Base_Name(emitterPath)) + "' from perforce?";
        const DialogResult answer =
            application.Show_Message_Box(question, "Flare Trim", MessageBoxButtons::YesNo, MessageBoxIcon::Question);
        if (answer == DialogResult::No) return false;
    }
    while (!Check_Out(emitterPath)) {
        const DialogResult answer = application.Show_Message_Box(CANT_CHECK_OUT_TEXT, CANT_CHECK_OUT_CAPTION,
                                                                 MessageBoxButtons::RetryCancel, MessageBoxIcon::None);
        if (answer != DialogResult::Retry) return false;
    }
    return true;
}

/// The answer is the emitter's own. What the disk refuses of it is known only when the writer closes, and doesn't
/// count: the log tells it.
bool EmitterData::Write_File() const
{
    FileClass file(emitterPath);
    ChunkFileWriterClass writer(&file, SAVE_MODE, SAVE_COMPRESSION_LEVEL, false);
    const bool saved = emitter->Save(&writer);
    if (!writer.Close())
        MK_LOG(SaveLog, LogLevel::Error, "%s: the file could not be written in full", emitterPath.c_str());
    file.Close();
    return saved;
}
