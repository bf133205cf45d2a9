#include "vrGraphics/plugins/ensembles/Bullet.h"

#include "MKLib/Parameters/KeyedParameters.h"

namespace
{

// Indices into these are a file format.
constexpr const char *TRAJECTORY_TYPES[] = {"Linear", "Arc", "Ground"};
constexpr const char *TRACK_MODES[] = {"Normal", "Homing"};

} // namespace

vrMKPBulletModifier::vrMKPBulletModifier()
{
    Parameters.Add_Enum(2, "Trajectory Types", TRAJECTORY_TYPES, 0,
                        "WARNING:  Turrets are unable to aim to match the Arc setting of Bullet modifiers;\nInstead, "
                        "put a Simple Projectile modifier on the Group.");
    Parameters.Add_Enum(5, "Track Mode", TRACK_MODES, 0, "How the projectile tracks the target.");
    // The text breaks off there, and is kept.
    Parameters.Add_Float(0, "Spread", 0.0f, 0.0f, 250.0f,
                         "Maximum distance variation from the target.\n0.0 will make the particles hi");
    KeyedFloatParameterClass *spread =
        Parameters.Add_Keyed_Float(7, "Keyed Spread", "Use to keyframe the spread over the bullet's lifetime.");
    spread->Add_Key(0.0f, 0.0f);
    spread->Add_Key(1.0f, 0.0f);
    KeyedFloatParameterClass *blend =
        Parameters.Add_Keyed_Float(1, "Blend", "Use to blend the bullet effect in and out.");
    blend->Add_Key(0.0f, 1.0f);
    blend->Add_Key(1.0f, 1.0f);
    Parameters.Add_Float(3, "Gravity", 100.0f, 0.0f, 1000.0f, "The downward acceleration for Arc projectiles.");
    Parameters.Add_Float(4, "Hover Height", 0.0f, 0.0f, 100.0f, "Amount Ground projectiles hover above ground.");
    Parameters.Add_Bool(8, "Use Keyed Spread", false, "Do we keyframed spread?");
    Parameters.Add_Bool(6, "Spread From Target Radius", false,
                        "Do we use a spread value passed in from the game logic?");
    Parameters.Add_Bool(9, "Use XY Spread", false, "Apply spread in the horizontal X-Y plane?");
}

vrMKPBulletStomper::vrMKPBulletStomper()
{
    Parameters.Add_Float(200, "SpeedMultiplier", 1.0f, 0.01f, 100.0f,
                         "The visual particles associated with a projectile can travel at a multiple of the logicial "
                         "projectile speed.");
}
