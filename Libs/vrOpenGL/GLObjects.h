#pragma once

/// Names of OpenGL objects and the life of the context that they belong to.
///
/// Who holds a texture may let go of it at any moment: when another context is current, or when the driver's is gone
/// already. So names that are given up wait here until the driver, its context current, deletes them; those of a
/// context that is gone are forgotten.

#include <memory>
#include <mutex>
#include <vector>

enum class GLObjectKind : int
{
    Texture,
    Framebuffer,
    Renderbuffer,
    Buffer,
    VertexArray,
    Sampler,
    Program
};

class GLContextLife
{
public:
    bool Is_Current_Life(unsigned life) const { return IsAlive && life == Life; }
    bool Is_Alive() const { return IsAlive; }
    unsigned Get_Life() const { return Life; }

    /// A new context: whatever is still held belongs to an earlier one.
    void Begin();
    /// The context is gone, and all that was in it.
    void End();
    void Give_Up(GLObjectKind kind, unsigned name, unsigned life);
    /// Expects the context to be current.
    void Delete_Given_Up();

private:
    struct EntryType
    {
        GLObjectKind Kind;
        unsigned Name;
    };

    bool IsAlive = false;
    unsigned Life = 0;
    std::mutex Lock; ///< of what is given up, on whatever thread
    std::vector<EntryType> GivenUp;
};

/// Owner of one name.
class GLObject
{
public:
    GLObject() = default;
    /// A new object of the context that is current, which `life` is about.
    GLObject(std::shared_ptr<GLContextLife> life, GLObjectKind kind);
    /// Takes a name over.
    GLObject(std::shared_ptr<GLContextLife> life, GLObjectKind kind, unsigned name);
    GLObject(GLObject &&other) noexcept;
    GLObject &operator=(GLObject &&other) noexcept;
    ~GLObject();

    /// 0 for none, and for one whose context is gone.
    unsigned Get() const { return Context && Context->Is_Current_Life(Life) ? Name : 0; }
    explicit operator bool() const { return Get() != 0; }

private:
    void Give_Up();

    std::shared_ptr<GLContextLife> Context;
    GLObjectKind Kind = GLObjectKind::Texture;
    unsigned Name = 0;
    unsigned Life = 0;
};
