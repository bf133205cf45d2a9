#pragma once

/// Shader programs: from GLSL to something that can be drawn with, and values on their way there.

#include "vrOpenGL/GLDevice.h"

#include <string>
#include <string_view>
#include <vector>

/// A uniform that a linked program really has.
struct GLUniform
{
    std::string Name;
    int Location = -1;
    unsigned Type = 0; ///< OpenGL's
    int Count = 0;     ///< of floats, 16 for a matrix; 0 for a texture or what else no parameter has
    bool IsTexture = false;
};

class GLProgram
{
public:
    /// Compiles and links both stages, whose texts are whole GLSL. The picture's rows are turned so that the first is
    /// the top one. False with the compiler's messages in `errors`. Expects the context to be current.
    bool Build(GLDevice &device, const std::string &vertexText, const std::string &fragmentText, std::string &errors);
    explicit operator bool() const { return static_cast<bool>(Program); }
    unsigned Get() const { return Program.Get(); }
    /// What the compiler kept, arrays left out.
    const std::vector<GLUniform> &Get_Uniforms() const { return Uniforms; }
    /// Sets a uniform of the program in use, unless it has that value already. `uniform` is an index.
    void Set(size_t uniform, const float *values);

private:
    void Read_Uniforms();

    GLObject Program;
    std::vector<GLUniform> Uniforms;
    std::vector<float> Known;         ///< the values that the uniforms have
    std::vector<size_t> KnownOffsets; ///< of each uniform in them
};
