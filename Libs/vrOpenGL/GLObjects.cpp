#include "vrOpenGL/GLObjects.h"

#include <epoxy/gl.h>

#include <utility>

namespace
{

GLuint Make_Name(GLObjectKind kind)
{
    GLuint name = 0;
    switch (kind) {
    case GLObjectKind::Texture: glGenTextures(1, &name); break;
    case GLObjectKind::Framebuffer: glGenFramebuffers(1, &name); break;
    case GLObjectKind::Renderbuffer: glGenRenderbuffers(1, &name); break;
    case GLObjectKind::Buffer: glGenBuffers(1, &name); break;
    case GLObjectKind::VertexArray: glGenVertexArrays(1, &name); break;
    case GLObjectKind::Sampler: glGenSamplers(1, &name); break;
    case GLObjectKind::Program: name = glCreateProgram(); break;
    }
    return name;
}

void Delete_Name(GLObjectKind kind, GLuint name)
{
    switch (kind) {
    case GLObjectKind::Texture: glDeleteTextures(1, &name); break;
    case GLObjectKind::Framebuffer: glDeleteFramebuffers(1, &name); break;
    case GLObjectKind::Renderbuffer: glDeleteRenderbuffers(1, &name); break;
    case GLObjectKind::Buffer: glDeleteBuffers(1, &name); break;
    case GLObjectKind::VertexArray: glDeleteVertexArrays(1, &name); break;
    case GLObjectKind::Sampler: glDeleteSamplers(1, &name); break;
    case GLObjectKind::Program: glDeleteProgram(name); break;
    }
}

} // namespace

void GLContextLife::Begin()
{
    const std::lock_guard lock(Lock);
    ++Life;
    IsAlive = true;
    GivenUp.clear();
}

void GLContextLife::End()
{
    const std::lock_guard lock(Lock);
    IsAlive = false;
    GivenUp.clear();
}

void GLContextLife::Give_Up(GLObjectKind kind, unsigned name, unsigned life)
{
    const std::lock_guard lock(Lock);
    if (Is_Current_Life(life)) GivenUp.push_back({kind, name});
}

void GLContextLife::Delete_Given_Up()
{
    const std::lock_guard lock(Lock);
    for (const EntryType &entry : GivenUp) Delete_Name(entry.Kind, entry.Name);
    GivenUp.clear();
}

GLObject::GLObject(std::shared_ptr<GLContextLife> life, GLObjectKind kind)
    : GLObject(std::move(life), kind, Make_Name(kind))
{
}

GLObject::GLObject(std::shared_ptr<GLContextLife> life, GLObjectKind kind, unsigned name)
    : Context(std::move(life)), Kind(kind), Name(name), Life(Context->Get_Life())
{
}

GLObject::GLObject(GLObject &&other) noexcept
    : Context(std::move(other.Context)), Kind(other.Kind), Name(std::exchange(other.Name, 0)), Life(other.Life)
{
}

GLObject &GLObject::operator=(GLObject &&other) noexcept
{
    if (this == &other) return *this;
    Give_Up();
    Context = std::move(other.Context);
    Kind = other.Kind;
    Name = std::exchange(other.Name, 0);
    Life = other.Life;
    return *this;
}

GLObject::~GLObject()
{
    Give_Up();
}

void GLObject::Give_Up()
{
    if (Context && Name) Context->Give_Up(Kind, Name, Life);
    Name = 0;
}
