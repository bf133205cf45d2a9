#include "vrOpenGL/GLProgram.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr GLsizei MAX_UNIFORM_NAME = 256;

/// Pictures are kept with their top row first, as files are, where OpenGL's first row is the bottom one. So everything
/// is drawn upside down, and shown the other way up at the end. Shaders know nothing of it.
std::string Turn_Rows(const std::string &vertexText)
{
    const size_t firstLine = vertexText.find('\n');
    if (firstLine == std::string::npos) return vertexText;
    return vertexText.substr(0, firstLine + 1) + "#define main Effect_Main_\n" + vertexText.substr(firstLine + 1) +
           "\n#undef main\nvoid main()\n{\n    Effect_Main_();\n    gl_Position.y = -gl_Position.y;\n}\n";
}

/// 0 for what doesn't compile.
GLuint Compile_Stage(GLenum stage, const std::string &text, std::string &errors)
{
    const GLuint shader = glCreateShader(stage);
    const char *source = text.c_str();
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE, length = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled) return shader;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    std::string log(static_cast<size_t>(std::max(length, 1)), '\0');
    glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), nullptr, log.data());
    glDeleteShader(shader);
    errors += stage == GL_VERTEX_SHADER ? "vertex stage: " : "fragment stage: ";
    errors += log.c_str();
    return 0;
}

int Get_Float_Count(GLenum type)
{
    switch (type) {
    case GL_BOOL:
    case GL_FLOAT: return 1;
    case GL_FLOAT_VEC2: return 2;
    case GL_FLOAT_VEC3: return 3;
    case GL_FLOAT_VEC4: return 4;
    case GL_FLOAT_MAT4: return 16;
    default: return 0;
    }
}

} // namespace

bool GLProgram::Build(GLDevice &device, const std::string &vertexText, const std::string &fragmentText,
                      std::string &errors)
{
    const GLuint vertex = Compile_Stage(GL_VERTEX_SHADER, Turn_Rows(vertexText), errors);
    const GLuint fragment = Compile_Stage(GL_FRAGMENT_SHADER, fragmentText, errors);
    if (vertex && fragment) {
        GLObject program(device.Life, GLObjectKind::Program);
        glAttachShader(program.Get(), vertex);
        glAttachShader(program.Get(), fragment);
        glLinkProgram(program.Get());
        GLint linked = GL_FALSE, length = 0;
        glGetProgramiv(program.Get(), GL_LINK_STATUS, &linked);
        glDetachShader(program.Get(), vertex);
        glDetachShader(program.Get(), fragment);
        if (linked) {
            Program = std::move(program);
            Read_Uniforms();
        } else {
            glGetProgramiv(program.Get(), GL_INFO_LOG_LENGTH, &length);
            std::string log(static_cast<size_t>(std::max(length, 1)), '\0');
            glGetProgramInfoLog(program.Get(), static_cast<GLsizei>(log.size()), nullptr, log.data());
            errors += "link: ";
            errors += log.c_str();
        }
    }
    // 0 is ignored.
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    return static_cast<bool>(Program);
}

void GLProgram::Read_Uniforms()
{
    Uniforms.clear();
    Known.clear();
    KnownOffsets.clear();
    GLint count = 0;
    glGetProgramiv(Program.Get(), GL_ACTIVE_UNIFORMS, &count);
    for (GLint i = 0; i < count; ++i) {
        std::array<char, MAX_UNIFORM_NAME> name{};
        GLint size = 0;
        GLenum type = 0;
        glGetActiveUniform(Program.Get(), static_cast<GLuint>(i), MAX_UNIFORM_NAME, nullptr, &size, &type, name.data());
        GLUniform uniform;
        uniform.Name = name.data();
        uniform.Location = glGetUniformLocation(Program.Get(), name.data());
        uniform.Type = type;
        uniform.Count = Get_Float_Count(type);
        uniform.IsTexture = type == GL_SAMPLER_2D || type == GL_SAMPLER_CUBE;
        if (size != 1 || uniform.Location < 0) continue;
        Uniforms.push_back(std::move(uniform));
    }
    // A linked program starts with zeros everywhere.
    for (const GLUniform &uniform : Uniforms) {
        KnownOffsets.push_back(Known.size());
        Known.resize(Known.size() + static_cast<size_t>(uniform.Count), 0.0f);
    }
}

void GLProgram::Set(size_t index, const float *values)
{
    const GLUniform &uniform = Uniforms[index];
    float *known = Known.data() + KnownOffsets[index];
    if (std::equal(values, values + uniform.Count, known)) return;
    std::copy_n(values, uniform.Count, known);
    switch (uniform.Type) {
    case GL_BOOL: glUniform1i(uniform.Location, values[0] != 0.0f); break;
    case GL_FLOAT: glUniform1f(uniform.Location, values[0]); break;
    case GL_FLOAT_VEC2: glUniform2fv(uniform.Location, 1, values); break;
    case GL_FLOAT_VEC3: glUniform3fv(uniform.Location, 1, values); break;
    case GL_FLOAT_VEC4: glUniform4fv(uniform.Location, 1, values); break;
    case GL_FLOAT_MAT4: glUniformMatrix4fv(uniform.Location, 1, GL_FALSE, values); break;
    default: break;
    }
}
