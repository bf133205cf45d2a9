#include "TextureMaker/OtherTextures.h"
#include "TextureMaker/ParticleSheet.h"
#include "TextureMaker/TextureFiles.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

/// Paints the samples' textures, which are the same bytes on every machine.
int main(int argc, char **argv)
{
    using namespace TextureMaker;
    constexpr struct
    {
        const char *Place;
        Canvas (*Make)();
        void (*Write)(const std::string &path, const Canvas &canvas);
    } TEXTURES[] = {
        {"Game/p_particle_master.tga", Make_Particle_Sheet, Write_Targa},
        {"Game/backdrop.tga", Make_Backdrop, Write_Targa},
        {"Game/p_bubble.tga", Make_Bubble, Write_Targa},
        {"Game/p_leaf.tga", Make_Leaf, Write_Targa},
        {"Game/p_ring.tga", Make_Ring, Write_Targa},
        {"Game/p_swirl.tga", Make_Swirl, Write_Targa},
        {"Game/W_Clouds01.tga", Make_Clouds, Write_Targa},
        {"Game/w_beam.tga", Make_Beam, Write_Targa},
        {"Game/w_glints.tga", Make_Glints, Write_Targa},
        {"Game/w_trail.tga", Make_Trail, Write_Targa},
        {"Bump/smokenormals.tga", Make_Smoke_Normals, Write_Targa},
        {"DDS/p_runes.dds", Make_Rune_Circle, Write_Block_Compressed},
        {"Heat/p_particle_heat_master.tga", Make_Heat_Sheet, Write_Targa},
    };
    if (argc != 2) {
        std::fprintf(stderr, "usage: TextureMaker DIRECTORY\n");
        return 2;
    }
    try {
        for (const auto &texture : TEXTURES) {
            const std::filesystem::path path = std::filesystem::path(argv[1]) / texture.Place;
            std::filesystem::create_directories(path.parent_path());
            texture.Write(path.string(), texture.Make());
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "TextureMaker: %s\n", error.what());
        return 1;
    }
    return 0;
}
