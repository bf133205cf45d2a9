#include "vrGraphics/plugins/modifiers/UVModifiers.h"

namespace
{

void Add_Slots(ParameterListClass &parameters, const char *description)
{
    parameters.Add_UV_List(200, "Slot UV Coordinates", description);
}

} // namespace

vrMKPConstantUVModifier::vrMKPConstantUVModifier()
{
    Parameters.Add_UV(200, "TexCoords", Vector4(0.0f, 0.0f, 1.0f, 1.0f), "Texture coordinates of particle");
}

vrMKPKeyedUVModifier::vrMKPKeyedUVModifier()
{
    Parameters.Add_Keyed_UV(300, "TexCoords", "Texture Coordinates");
    Parameters.Add_Float(301, "Loop Count", 1.0f, 1.0f, 50.0f,
                         "Number of times to loop over the lifetime of the particle");
    Parameters.Add_Bool(302, "Use Global Time", false, "Use a global timer instead of particle lifetime");
    Parameters.Add_Float(303, "Global Anim. Length", 1.0f, 0.0f, 120.0f,
                         "Time in seconds that counts as one 'lifetime' when global time active");
    Parameters.Add_Bool(304, "Random Start Key", false, "Pick a random keyframe to start looped animation from.");
}

vrMKPSlottedRandomUVModifier::vrMKPSlottedRandomUVModifier()
{
    Add_Slots(Parameters, "UV Coordinates for each random 'slot'.");
}

vrMKPSlottedUVModifier::vrMKPSlottedUVModifier()
{
    Add_Slots(Parameters, "UV Coordinates for each 'slot'.");
}

vrMKPSequencedUVModifier::vrMKPSequencedUVModifier()
{
    Parameters.Add_UV(200, "Start Slot", Vector4(0.0f, 0.0f, 0.125f, 0.125f), "The starting frame of the animation.");
    Parameters.Add_Int(201, "Num Frames", 10, 1, 1000,
                       "The number of frames to play.\nEach slot will be the same size as the starting slot, and be "
                       "played in sequence from upper left to lower right.");
    Parameters.Add_Bool(202, "Random Start", false,
                        "Pick a random starting frame between Start Slot and the last slot from which to begin "
                        "playback.\n");
    Parameters.Add_Bool(208, "Random Flip", false, "Randomly flip the sequence horizontally, vertically, or both.\n");
    Parameters.Add_Bool(203, "Reverse", false,
                        "Plays the animation in reverse, ending on the starting slot and beginning at the last slot.");
    Parameters.Add_Bool(204, "Ping Pong", false,
                        "Reverses the direction fo playback once the last frame of each loop is reached.");
    Parameters.Add_Bool(207, "Normalized Time", false,
                        "Use this to ignore framerate and instead play a fixed number of loops over the lifetime of "
                        "each particle.");
    Parameters.Add_Float(205, "Frame Rate", 15.0f, 0.0f, 180.0f, "The playback speed.");
    Parameters.Add_Int(206, "Num Loops", 0, 0, 100,
                       "The number of times to loop.  A value of 0 represents a continuous loop.");
}
