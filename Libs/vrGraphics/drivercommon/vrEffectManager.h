#pragma once

/// What a driver keeps its compiled effects in: it finds the files of effects in the folders of
/// `vrGraphicsDriver::Add_Effects_Path`, reads each once, and keeps what was made of it. Used on the thread that owns
/// the driver.

#include "MKLib/MKString.h"
#include "MKLib/RefCount.h"
#include "vrGraphics/drivercommon/vrEffectSource.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// Called for each effect that is found, before it is read.
using vrEffectCallback = void (*)(const char *name, void *context);

/// What the managers of all kinds of effects have in common: names, files and the log.
class vrEffectFinder
{
public:
    static constexpr const char *MISSING_EFFECT = "MISSINGEFFECT";

    /// What an effect goes by, whatever folder and extension it is asked with: the file's base name, lowered.
    static MK::String Get_Key(std::string_view name);
    /// Finds and reads the effect of that name. False when there is none, with `error` empty, or when it can't be
    /// read, with the reason in `error`.
    static bool Read_Effect(std::string_view name, vrEffectSource &source, std::string &error);
    /// Reads the effect that stands in for missing ones: the file of that name, or else one that is built in.
    static void Read_Missing_Effect(vrEffectSource &source);
    /// The effects' names in a folder, sorted; in all folders of the path list when it is empty. Tells the log.
    static std::vector<std::string> List_Effects(std::string_view path);

protected:
    vrEffectFinder() = default;
    ~vrEffectFinder() = default;

    // Each tells the log once a name, until all names are forgotten.
    void Report_Missing(std::string_view name);
    void Report_Failure(std::string_view name, std::string_view errors);
    void Forget_Reports() { Reported.clear(); }
    /// Whether the path list is another than it was at the last call.
    bool Has_Path_Changed();
    /// Tells the log when an effect has neither of the two techniques that each should have.
    static void Check_Base_Level(std::string_view name, const vrEffectSource &source);

private:
    std::set<MK::String> Reported;
    std::vector<MK::String> KnownPath; ///< what was searched
};

/// `EffectType` is counted, and has
/// `static SmartPtr<EffectType> Compile_Shader(std::string_view name, vrEffectSource &&source, std::string &errors)`,
/// which answers null, with the reason, for what doesn't compile. A change of the path list makes a manager forget
/// everything: what was missing may be in a folder that came later.
template <typename EffectType>
class vrEffectManager : public vrEffectFinder
{
public:
    /// The effect of that name; what stands in for a missing one where there is none, or where it doesn't compile,
    /// which the log tells once a name. Null only when not even that compiles.
    SmartPtr<EffectType> Get_Effect(std::string_view name)
    {
        Take_Path();
        const MK::String key = Get_Key(name);
        const auto known = Effects.find(key);
        if (known != Effects.end()) return known->second;
        SmartPtr<EffectType> effect = Load_Effect(name);
        if (!effect) effect = Get_Missing_Effect();
        return Effects.emplace(key, std::move(effect)).first->second;
    }

    /// What `Get_Effect` answers for a name that there is none of.
    SmartPtr<EffectType> Get_Missing_Effect()
    {
        Take_Path();
        if (!Missing) {
            vrEffectSource source;
            Read_Missing_Effect(source);
            Missing = Compile(MISSING_EFFECT, std::move(source));
        }
        return Missing;
    }

    bool Is_Missing_Effect(const EffectType *effect) const { return effect && effect == Missing.Get(); }

    /// Loads the effects of a folder, or of all folders of the path list when `path` is empty. Answers how many were
    /// found.
    int Load_All_Effects(std::string_view path, vrEffectCallback callback, void *context)
    {
        const std::vector<std::string> names = List_Effects(path);
        for (const std::string &name : names) {
            if (callback) callback(name.c_str(), context);
            Get_Effect(name);
        }
        return static_cast<int>(names.size());
    }

    /// Forgets everything, so that what is asked for next is read anew. Instances keep what they have.
    void Clear()
    {
        Effects.clear();
        Missing = nullptr;
        Forget_Reports();
    }

private:
    void Take_Path()
    {
        if (Has_Path_Changed()) Clear();
    }

    SmartPtr<EffectType> Load_Effect(std::string_view name)
    {
        vrEffectSource source;
        std::string error;
        if (Read_Effect(name, source, error)) {
            Check_Base_Level(name, source);
            return Compile(name, std::move(source));
        }
        if (error.empty())
            Report_Missing(name);
        else
            Report_Failure(name, error);
        return nullptr;
    }

    SmartPtr<EffectType> Compile(std::string_view name, vrEffectSource &&source)
    {
        std::string errors;
        SmartPtr<EffectType> effect = EffectType::Compile_Shader(name, std::move(source), errors);
        if (!effect) Report_Failure(name, errors);
        return effect;
    }

    std::map<MK::String, SmartPtr<EffectType>> Effects;
    SmartPtr<EffectType> Missing;
};
